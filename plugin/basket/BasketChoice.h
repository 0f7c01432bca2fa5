// Which rows of the basket are placed, and what is asked about them before.
#pragma once

#include "plugin/basket/BasketPlacing.h"
#include "plugin/basket/BasketQuestions.h"
#include "plugin/basket/DeskLimits.h"

#include <vector>

namespace planfold {

class BasketChoice final {
public:
    using Act = BasketQuestions::Act;

    // What a placing is about.
    enum class Placed { all, selected, unsent, refused };

    BasketChoice(Session& session, BasketView& view, BasketQuestions& questions, const BasketRows& rows)
        : m_session(session), m_view(view), m_questions(questions), m_rows(rows) {}

    // In the list's order.
    std::vector<BasketPlacing::Row> Meant(Placed which) const;
    // False when none is to be placed, or that is not clear: `again` begins anew once it can be asked.
    // Otherwise these are what is left.
    bool MayPlace(std::vector<BasketPlacing::Row>& placed, Placed which, const Act& again);
    // The desk's, as the settings have them now.
    DeskLimits Limits() const;

private:
    // Each is false when none is to be placed.
    bool LeaveOutSent(std::vector<BasketPlacing::Row>& placed, Placed which, const Act& again);
    bool LeaveOutLate(std::vector<BasketPlacing::Row>& placed, const Act& again);
    bool LeaveOutLike(std::vector<BasketPlacing::Row>& placed, Placed which, const Act& again);
    bool KeepsLimits(const std::vector<BasketPlacing::Row>& placed, const Act& again);

    Session& m_session;
    BasketView& m_view;
    BasketQuestions& m_questions;
    const BasketRows& m_rows;
};

} // namespace planfold
