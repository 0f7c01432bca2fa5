#include "plugin/basket/BasketPlacing.h"

#include "plugin/basket/SipOrderFields.h"
#include "plugin/messaging/Codes.h"
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

BasketPlacing::BasketPlacing(Session& session, RxControl* control, BasketRows& rows,
                             std::vector<RecordId> records)
    : m_session(session), m_control(control), m_rows(rows), m_records(std::move(records)) {
    if (session.host.pu_free_allocated_memory) session.host.pu_free_allocated_memory();
}

bool BasketPlacing::Step() {
    if (m_stopped || m_session.Ended()) return false;
    if (m_next == m_records.size()) {
        if (IsSending()) return false;
        AskHost();
    } else if (IsSending()) {
        Send(m_records[m_next++]);
    } else {
        TellHost(m_records[m_next++]);
    }
    return true;
}

void BasketPlacing::TellHost(RecordId record) {
    const auto tell = m_session.host.pu_build_bskt_caution_order_map;
    if (!tell) return;
    const sBasketOrderData& row = m_rows[record];
    const CString client = m_session.String(row.Text(BasketField::clientId));
    const CString investType = m_session.String(row.Text(BasketField::investType));
    const CString product = m_session.String(row.Text(BasketField::product));
    const CString value = m_session.String(ValueOf(row));
    const CString symbol = m_session.String(row.Text(BasketField::tradingSymbol));
    const CString exchange = m_session.String(row.Text(BasketField::exchangeSegment));
    tell(&client, &investType, &product, &value, &symbol, &exchange, static_cast<int>(m_next - 1));
}

void BasketPlacing::AskHost() {
    const auto ask = m_session.host.pu_invoke_bskt_caution_order_confirmation;
    m_confirmed = ask && ask() == 1 ? 1 : 0;
    m_next = 0;
}

void BasketPlacing::Send(RecordId record) {
    const sBasketOrderData& row = m_rows[record];
    BasketPlace place{row.SerialNumber(), std::nullopt};
    if (const auto state = m_session.host.pu_get_cautionary_bskt_confirm_state) {
        const CString symbol = m_session.String(row.Text(BasketField::tradingSymbol));
        const CString exchange = m_session.String(row.Text(BasketField::exchangeSegment));
        switch (state(&symbol, &exchange, static_cast<int>(m_next - 1))) {
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
    std::string exchange = order.exchangeSegment;
    Convert(kExchangeToDisplay, order.exchangeSegment, exchange);
    if (!SendAddSipOrders(m_session, m_control, m_failures, order, exchange, &place)) return;
    m_rows.MarkSent(record);
    m_sent.push_back(record);
}

} // namespace planfold
