#include "plugin/basket/BasketPlacing.h"

#include "plugin/base/Codes.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/orderentry/PlaceOrder.h"

#include <utility>

namespace planfold {

namespace {

std::string_view ValueOf(const sBasketOrderData& row) {
    return row.Text(ValueField(row.Text(BasketField::investType)));
}

sSipOrderData OrderOf(const sBasketOrderData& row) {
    sSipOrderData order;
    for (const auto& [field, member] : kSipOrderFields)
        order.*member = row.Text(field);
    order.amountOrQuantity = ValueOf(row);
    return order;
}

} // namespace

BasketPlacing::BasketPlacing(Pass pass, Session& session, RxControl* control, BasketRows& rows,
                             std::vector<Row> placed)
    : m_session(session), m_control(control), m_rows(rows), m_placed(std::move(placed)) {
    if (session.host.pu_free_allocated_memory) session.host.pu_free_allocated_memory(pass);
}

bool BasketPlacing::Step(Pass pass) {
    if (m_stopped || m_session.Ended()) return false;
    if (m_next == m_placed.size()) {
        if (IsSending()) return false;
        AskHost(pass);
    } else if (IsSending()) {
        Send(pass, m_placed[m_next++]);
    } else {
        TellHost(pass, m_placed[m_next++]);
    }
    return true;
}

void BasketPlacing::TellHost(Pass pass, const Row& placed) {
    const auto tell = m_session.host.pu_build_bskt_caution_order_map;
    if (!tell) return;
    const sBasketOrderData& row = m_rows[placed.record];
    const CString client = m_session.String(row.Text(BasketField::account));
    const CString investType = m_session.String(row.Text(BasketField::investType));
    const CString product = m_session.String(row.Text(BasketField::product));
    const CString value = m_session.String(ValueOf(row));
    const CString symbol = m_session.String(row.Text(BasketField::tradingSymbol));
    const CString exchange = m_session.String(row.Text(BasketField::exchange));
    tell(pass, &client, &investType, &product, &value, &symbol, &exchange, placed.index);
}

void BasketPlacing::AskHost(Pass pass) {
    const auto ask = m_session.host.pu_invoke_bskt_caution_order_confirmation;
    m_confirmed = ask && ask(pass) == 1 ? 1 : 0;
    m_next = 0;
}

void BasketPlacing::Send(Pass pass, const Row& placed) {
    const sBasketOrderData& row = m_rows[placed.record];
    BasketPlace place{row.SerialNumber(), std::nullopt};
    if (const auto state = m_session.host.pu_get_cautionary_bskt_confirm_state) {
        const CString symbol = m_session.String(row.Text(BasketField::tradingSymbol));
        const CString exchange = m_session.String(row.Text(BasketField::exchange));
        switch (state(pass, &symbol, &exchange, placed.index)) {
        case 0:
            return;
        case 1:
            place.cautionary = m_confirmed == 1;
            break;
        default:
            break;
        }
        if (m_stopped || m_session.Ended()) return;
    }
    const sSipOrderData order = OrderOf(row);
    std::string exchange = order.exchange;
    Convert(kExchangeToDisplay, order.exchange, exchange);
    m_rows.SetSending(placed.record);
    const bool sent = SendAddSipOrders(pass, m_session, m_control, m_failures, order, exchange, &place);
    m_rows.SetSending(kNoRecord);
    if (!sent) return;
    m_rows.MarkSent(placed.record);
    m_sent.push_back(placed.record);
}

} // namespace planfold
