// The order that stands in the form: it is added to the basket, or taken into the row that the form was filled
// from.
#pragma once

#include "plugin/basket/BasketForm.h"
#include "plugin/basket/BasketRuns.h"

#include <cstdint>
#include <string>

namespace planfold {

class BasketEntry final {
public:
    BasketEntry(BasketView& view, BasketQuestions& questions, BasketForm& form, const BasketRows& rows,
                RejectedLines& rejected, BasketHistory& history, BasketRuns& runs)
        : m_view(view), m_questions(questions), m_life(questions.Life()), m_form(form), m_rows(rows),
          m_rejected(rejected), m_history(history), m_runs(runs) {}

    // The form was filled anew, from no row.
    void Begin();
    void AddOrModify();
    // A row was chosen for modification.
    void Activate(RecordId record);
    // A rejected line was chosen to be corrected in the form.
    void ActivateRejected(std::size_t index);

private:
    // The form as it is, and the row that it would be taken into.
    struct Pressed {
        SipOrderForm form;
        std::int32_t row;

        bool operator==(const Pressed&) const = default;
    };

    Pressed Press() const;
    void AddAgain();
    void LeaveModifyMode();
    void TakeIn(const BasketTexts& texts);
    void TellNotShown(int fields);
    bool IsModifying() const;
    // kNoRecord when it is no longer there.
    RecordId RowToModify() const;
    std::string NameOf(RecordId record) const;
    // When that is not the row that the form shows.
    std::string OtherRowQuestion(RecordId selected) const;

    BasketView& m_view;
    BasketQuestions& m_questions;
    const Lifetime& m_life;
    BasketForm& m_form;
    const BasketRows& m_rows;
    RejectedLines& m_rejected;
    BasketHistory& m_history;
    BasketRuns& m_runs;
    const BasketQuestions::Act m_addAgain{[this] { AddAgain(); }, [this] { m_pressed = Press(); }};
    Pressed m_pressed{};         // as it was when it had to wait
    std::int32_t m_shownRow = 0; // by serial number: which the form was filled from, to modify it
    std::string m_shownName;
};

} // namespace planfold
