// What has become of the basket's rows, in words.
#pragma once

#include "plugin/basket/BasketRows.h"
#include "plugin/basket/BasketView.h"
#include "plugin/messaging/Session.h"

#include <string>
#include <vector>

namespace planfold {

// A row that was not registered, and why.
struct BasketResult {
    RecordId record;
    std::string reason;
};

class BasketOutcome final {
public:
    BasketOutcome(const Session& session, BasketView& view, const BasketRows& rows)
        : m_session(session), m_view(view), m_rows(rows) {}

    // "Registered SIP2611…", "Refused: ... (code 104)."
    std::string StateText(RecordId record) const;
    // "CL105 BASALTAGRO monthly 1500.00"
    std::string Describe(RecordId record) const;
    // In the order of the rows.
    std::vector<BasketResult> Results() const;
    // What the rows come to, a part of the status line each.
    std::vector<std::string> Status() const;

private:
    const Session& m_session;
    BasketView& m_view;
    const BasketRows& m_rows;
};

} // namespace planfold
