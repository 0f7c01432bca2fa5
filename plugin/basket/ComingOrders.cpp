#include "plugin/basket/ComingOrders.h"

#include "plugin/base/Numbers.h"
#include "plugin/messaging/HostQuestions.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "plugin/record/OrderRecord.h"

#include <utility>

namespace planfold {

std::optional<FormOrder> ComingOrders::Complete(Pass pass, sSipOrderData order) const {
    const auto scrip = AskScripDetails(pass, m_session, order.exchange, order.tradingSymbol);
    if (!scrip) return std::nullopt;
    FormOrder whole;
    whole.data = std::move(order);
    whole.data.token = TextOf(scrip->token);
    const std::string& symbol = whole.data.tradingSymbol;
    const std::size_t dash = symbol.rfind('-');
    whole.symbol = symbol.substr(0, dash);
    if (dash != symbol.npos) whole.series = symbol.substr(dash + 1);
    whole.startDateText = FormatPickerDate(ToLocal(LeadingInteger(whole.data.startDate)));
    return whole;
}

std::size_t ComingOrders::Add(Pass pass, std::vector<sSipOrderData> orders) {
    if (m_runs.IsBusy()) return 0;
    std::vector<ComingOrder> coming;
    for (sSipOrderData& order : orders) {
        auto whole = Complete(pass, std::move(order));
        if (m_session.Ended()) return 0;
        if (whole) coming.push_back({std::move(*whole), kNoOrder});
    }
    return TakeIn(coming);
}

std::size_t ComingOrders::TakeBack(Pass pass, std::span<const OrderPlace> orders) {
    if (m_runs.IsBusy()) return 0;
    std::vector<ComingOrder> coming;
    std::size_t standing = 0;
    for (const OrderPlace place : orders) {
        if (m_rows.ByOrder(place) != kNoRecord) {
            ++standing;
            continue;
        }
        auto sent = OrderOf(m_session.record.Ledger()[place]);
        auto whole = sent ? Complete(pass, std::move(*sent)) : std::nullopt;
        if (m_session.Ended()) return 0;
        if (whole) coming.push_back({std::move(*whole), place});
    }
    return standing + TakeIn(coming);
}

// The host was let in before, and with it perhaps a load.
std::size_t ComingOrders::TakeIn(const std::vector<ComingOrder>& orders) {
    if (m_runs.IsBusy()) return 0;
    {
        const BasketHistory::Change change(m_history);
        for (const auto& [order, place] : orders) {
            if (place != kNoOrder && m_rows.ByOrder(place) != kNoRecord) continue;
            const RecordId row = m_history.Add(order.Texts());
            if (place == kNoOrder) continue;
            m_rows.SetOrder(row, place, RowStateOf(m_session.record.Ledger()[place].State()));
            m_view.List().Repaint(row);
        }
    }
    m_runs.LetPlace(m_view.List().RowCount() > 0);
    m_view.ShowStatusSoon();
    m_runs.KeepUnsentLast();
    return orders.size();
}

} // namespace planfold
