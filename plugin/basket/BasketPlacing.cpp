#include "plugin/basket/BasketPlacing.h"

#include "plugin/base/Codes.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/orderentry/RecordedOrders.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

std::string_view ValueOf(const sBasketOrderData& row) {
    return row.Text(ValueField(row.Text(BasketField::investType)));
}

void ReadOrder(const sBasketOrderData& row, sSipOrderData& order) {
    for (const auto& [field, member] : kSipOrderFields)
        order.*member = row.Text(field);
    order.amountOrQuantity = ValueOf(row);
}

} // namespace

BasketPlacing::BasketPlacing(Pass pass, Session& session, RxControl* control, BasketRows& rows,
                             UnansweredRows& unanswered, std::string fileName, AskWithoutRecord ask,
                             std::vector<Row> placed)
    : m_session(session), m_control(control), m_rows(rows), m_unanswered(unanswered),
      m_fileName(std::move(fileName)), m_ask(std::move(ask)), m_placed(std::move(placed)) {
    if (session.host.pu_free_allocated_memory) session.host.pu_free_allocated_memory(pass);
}

BasketPlacing::~BasketPlacing() {
    for (; m_takenOfPortion < m_portion.size(); ++m_takenOfPortion)
        TellNotSent(m_portion[m_takenOfPortion], "Placing was stopped before.");
}

// What was proven not to be registered still is not, and keeps its identifier.
void BasketPlacing::TellNotSent(const Prepared& prepared, std::string_view why) {
    m_session.record.Tell(prepared.recorded, prepared.isAbsent ? OrderEvent::absent : OrderEvent::notSent, why);
}

bool BasketPlacing::Step(Pass pass) {
    if (m_stopped || m_session.Ended()) return false;
    if (m_next == m_placed.size()) {
        if (IsSending()) return false;
        AskHost(pass);
    } else if (!IsSending()) {
        TellHost(pass, m_placed[m_next++]);
    } else if (m_takenOfPortion == m_portion.size()) {
        PreparePortion(pass);
    } else {
        Send(pass, m_placed[m_next++], m_portion[m_takenOfPortion++]);
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

// All of a portion is on the disk, at once, before the first of it goes out.
void BasketPlacing::PreparePortion(Pass pass) {
    constexpr std::size_t most = 250;
    std::vector<Prepared> portion(std::min(most, m_placed.size() - m_next));
    std::vector<RecordedOrder> recorded;
    for (std::size_t i = 0; i < portion.size(); ++i) {
        Prepare(pass, m_placed[m_next + i], portion[i]);
        // The host may have ended everything, or closed the window.
        if (m_stopped || m_session.Ended()) return;
        if (portion[i].goesOut) recorded.push_back(Recorded(m_placed[m_next + i], portion[i]));
    }
    m_waits = false;
    const auto places = m_recording.Places(recorded, [&](std::string_view question) {
        const std::optional<bool> agreed = m_ask(pass, question);
        m_waits = !agreed;
        return agreed.value_or(false) && !m_stopped && !m_session.Ended();
    });
    if (m_waits) return;
    m_stopped = m_stopped || !places;
    if (!places) return;
    auto next = places->begin();
    for (Prepared& prepared : portion)
        if (prepared.goesOut) prepared.recorded = *next++;
    m_portion = std::move(portion);
    m_takenOfPortion = 0;
}

void BasketPlacing::Prepare(Pass pass, const Row& placed, Prepared& prepared) {
    const sBasketOrderData& row = m_rows[placed.record];
    prepared.place.serialNumber = row.SerialNumber();
    ReadOrder(row, prepared.order);
    if (const auto state = m_session.host.pu_get_cautionary_bskt_confirm_state) {
        const CString symbol = m_session.String(prepared.order.tradingSymbol);
        const CString exchange = m_session.String(prepared.order.exchange);
        const int answer = state(pass, &symbol, &exchange, placed.index);
        prepared.goesOut = answer != 0;
        if (answer == 1) prepared.place.cautionary = m_confirmed == 1;
    }
    if (!prepared.goesOut || m_stopped || m_session.Ended()) return;
    // What is proven not to be registered is the same order still.
    prepared.isAbsent = m_rows.State(placed.record) == RowState::absent;
    if (prepared.isAbsent)
        prepared.orderId = m_session.record.Ledger()[m_rows.OrderOf(placed.record)].Text(RecordField::orderId);
    if (prepared.orderId.value_or("").empty()) prepared.orderId = m_session.FreshIdentifier(pass);
}

RecordedOrder BasketPlacing::Recorded(const Row& placed, const Prepared& prepared) {
    const int line = m_rows.LineOf(placed.record);
    const std::string orderId = prepared.orderId.value_or("");
    if (prepared.isAbsent) {
        const RecordedOrder again = m_session.record.Ledger()[m_rows.OrderOf(placed.record)];
        RecordTexts texts = again.Texts();
        texts[RecordField::orderId] = orderId;
        texts[RecordField::text] = again.SentText();
        return RecordedOrder(texts);
    }
    return RecordedNewOrder(m_session, prepared.order, orderId, m_startDates.Text(prepared.order.startDate),
                            line > 0 ? OrderOrigin{m_fileName, line} : OrderOrigin{});
}

void BasketPlacing::Send(Pass pass, const Row& placed, Prepared& prepared) {
    // What is known of an earlier sending stays.
    const bool wasSent = m_rows.IsSent(placed.record) || m_rows.State(placed.record) == RowState::absent;
    if (!prepared.goesOut) {
        if (!wasSent) m_rows.SetNotPlaced(placed.record, "Held back: it was not confirmed.");
        return;
    }
    std::string exchange = prepared.order.exchange;
    Convert(kExchangeToDisplay, prepared.order.exchange, exchange);
    m_unanswered.insert_or_assign(prepared.place.serialNumber, prepared.recorded);
    KeptTexts failure;
    if (SendAddSipOrders(pass, m_session, m_control, failure, prepared.order, prepared.orderId, exchange,
                         &prepared.place)) {
        m_rows.SetOrder(placed.record, prepared.recorded,
                        RowStateOf(m_session.record.Ledger()[prepared.recorded].State()));
        m_sent.push_back(placed.record);
        return;
    }
    if (const std::string text = failure.Text(); !text.empty()) m_failures.Add(text);
    m_unanswered.erase(prepared.place.serialNumber);
    TellNotSent(prepared, failure.Text());
    // What was sent before may be registered all the same.
    if (!wasSent) m_rows.SetNotPlaced(placed.record, failure.Text());
}

} // namespace planfold
