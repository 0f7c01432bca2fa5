#include "plugin/basket/BasketOutcome.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/record/OrderRecord.h"

#include <utility>

namespace planfold {

namespace {

std::string SideText(const char* side, const BasketTotals& totals) {
    return Format("%s: amount %s, quantity %lld", side, InRupees(totals.amountPaise).c_str(),
                  static_cast<long long>(totals.quantity));
}

} // namespace

std::string BasketOutcome::StateText(RecordId record) const {
    const RowState state = m_rows.State(record);
    const OrderPlace place = m_rows.OrderOf(record);
    if (state == RowState::notSent || place == kNoOrder)
        return state == RowState::notSent ? "Not sent"
                                          : "Not placed: " + std::string(m_rows.WhyNotPlaced(record));
    const RecordedOrder& order = m_session.record.Ledger()[place];
    std::string said(order.Text(RecordField::text));
    switch (state) {
    case RowState::sent:
        return "Sent";
    case RowState::registered:
        return "Registered " + std::string(order.Text(RecordField::registration));
    case RowState::refused:
        return said;
    case RowState::inDoubt:
        return "In doubt: sent at " + std::string(order.SentAt().substr(11, 5)) + ", no answer";
    case RowState::absent:
        return "Not in the book";
    default:
        return "Not placed: "
               + (m_rows.WhyNotPlaced(record).empty() ? said : std::string(m_rows.WhyNotPlaced(record)));
    }
}

std::string BasketOutcome::Describe(RecordId record) const {
    const sBasketOrderData& row = m_rows[record];
    std::string text;
    for (const BasketField field : {BasketField::account, BasketField::symbol, BasketField::frequency})
        text.append(row.Text(field)).push_back(' ');
    const std::string_view investType = row.Text(BasketField::investType);
    const std::string_view value = row.Text(ValueField(investType));
    return text + (investType == "value" ? InRupees(LeadingInteger(value)) : std::string(value));
}

std::vector<BasketResult> BasketOutcome::Results() const {
    std::vector<BasketResult> results;
    const BasketList& list = m_view.List();
    const auto isTold = [](RowState state) {
        return state != RowState::notSent && state != RowState::sent && state != RowState::registered;
    };
    bool any = false;
    for (std::size_t state = 0; state < static_cast<std::size_t>(RowState::count); ++state)
        any = any || (isTold(static_cast<RowState>(state)) && m_rows.Count(static_cast<RowState>(state)) > 0);
    for (std::size_t row = 0; any && row < list.RowCount(); ++row)
        if (const RecordId record = list.RecordAt(row); isTold(m_rows.State(record)))
            results.push_back({record, StateText(record)});
    return results;
}

std::vector<std::string> BasketOutcome::Status() const {
    const BasketList& list = m_view.List();
    const std::size_t rows = list.RowCount();
    const std::size_t hidden = rows - list.ShownCount();
    std::string counts = Format("Rows: %zu", rows);
    if (hidden) counts += Format(" (%zu hidden)", hidden);
    std::string marks;
    const auto tell = [&](const std::string& text) { marks.append(marks.empty() ? "" : "  ").append(text); };
    if (m_rows.StandingTwice()) tell(Format("Duplicates: %zu", m_rows.StandingTwice()));
    if (const std::size_t sent = m_rows.SentCount(); sent > 0)
        tell(Format("Sent %zu: %zu registered, %zu refused, %zu in doubt", sent,
                    m_rows.Count(RowState::registered), m_rows.Count(RowState::refused),
                    m_rows.Count(RowState::inDoubt)));
    constexpr std::pair<RowState, const char*> others[] = {{RowState::sent, "Waiting: "},
                                                           {RowState::notPlaced, "Not placed: "},
                                                           {RowState::absent, "Not in the book: "}};
    for (const auto& [state, text] : others)
        if (const std::size_t count = m_rows.Count(state); count > 0) tell(text + std::to_string(count));
    return {std::move(counts), SideText("SIP", m_rows.Buy()), SideText("SWP", m_rows.Sell()), std::move(marks)};
}

} // namespace planfold
