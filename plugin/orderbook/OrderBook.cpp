#include "plugin/orderbook/OrderBook.h"

#include "plugin/base/Text.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderbook/OrderInfo.h"
#include "plugin/orderbook/RecordedRow.h"
#include "plugin/orderentry/OperationMode.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/Tags.h"

namespace planfold {

const AnswerHandler<OrderBook> OrderBook::kAnswers[] = {
    {kGetSipOrders, &OrderBook::HandleRow},
    {"qry_eq_sip", &OrderBook::HandleHistoryRow},
    {"get_sip_operation_mode", &OrderBook::HandleOperationMode, OnError::logAndHandle},
    {"add_sip_orders", &OrderBook::HandleUserText, OnError::logAndHandle},
    {kCancelSipOrder, &OrderBook::HandleCancelled, OnError::logAndHandle},
    {kPauseSipOrder, &OrderBook::HandlePaused, OnError::logAndHandle},
    {kResumeSipOrder, &OrderBook::HandleResumed, OnError::logAndHandle},
};

void OrderBook::Open(const LocalDateTime& today) {
    // Records of an earlier window would never be shown again: only a new one enters the registered book.
    m_actions.Reset();
    for (BookList* list : {&m_view.Registered(), &m_view.Cancelled()})
        list->RemoveAll();
    m_cache.Clear();
    m_filling = true;
    FilterByClient({});
    m_session.m_nSipOperationMode = 0;
    // Each failure is a box.
    const std::function<void(Pass)> steps[] = {
        [&](Pass pass) { SendGetSipOperationMode(pass, m_session, m_controls.requests, m_view); },
        [&](Pass pass) { SubscribeBroadcasts(pass, m_session, m_controls.accountStream, m_view); },
        [&](Pass pass) { SendGetSipOrders(pass, m_session, m_controls.requests, m_view); },
        [&](Pass pass) { SubscribeIdentity(pass, m_session, m_controls.identityStream, m_view); },
        [&](Pass pass) { SendQuerySips(pass, m_session, m_controls.requests, m_view, today); },
    };
    for (const auto& step : steps)
        if (!m_life.Across(step)) return;
}

void OrderBook::Refresh() {
    m_filling = true;
    Lifetime::Last([&](Pass pass) { SendGetSipOrders(pass, m_session, m_controls.requests, m_view); });
}

void OrderBook::FilterByClient(std::string_view client) {
    for (BookList* list : {&m_view.Registered(), &m_view.Cancelled()})
        list->FilterBy(kClientColumn, client);
}

void OrderBook::OnResponse(void* message) {
    if (m_life.IsThere()) Dispatch<OrderBook>(*this, m_session, kAnswers, Answer(message));
}

void OrderBook::OnBroadcast(void* message) {
    if (!m_life.IsThere()) return;
    const RecordId record = ApplyRow(message, Arrival::streamed);
    const auto status = FieldView(message, tag::sipStatus);
    if (record == kNoRecord || !status || !IsCancelled(*status)) return;
    BookList& registered = m_view.Registered();
    if (!registered.Contains(record) || m_runs.OnStreamedCancelled(record)) return;
    registered.Remove(record);
    m_session.LogLast(m_runs.CancelledText(record));
}

RecordId OrderBook::ApplyRow(void* message, Arrival arrival) {
    const auto number = FieldView(message, tag::registrationNumber);
    if (!number || number->empty()) return kNoRecord;
    // Before the record is looked up: the host's answer may let other messages in.
    const auto accountName = m_life.Across([&](Pass pass) { return AskAccountName(pass, m_session, message); });
    if (!accountName) return kNoRecord;

    RecordId record = m_cache.Find(*number);
    const bool isNew = record == kNoRecord;
    if (isNew) record = m_cache.Add(*number);
    ReadOrderRow(message, m_session.m_nSipOperationMode != 0, *accountName, m_cache[record]);
    if (m_session.record.AwaitsRows())
        m_session.record.OnRow(RecordedRow(m_cache[record], m_session.m_nSipOperationMode != 0).Row());
    m_view.Registered().Repaint(record);
    m_view.Cancelled().Repaint(record);
    // A known record enters the cancelled book, but never the registered one.
    const bool cancelled = IsCancelled(m_cache[record].Text(OrderField::sipStatus));
    BookList& list = cancelled ? m_view.Cancelled() : m_view.Registered();
    if ((isNew || cancelled) && !list.Contains(record)) list.InsertFront(record, arrival);
    const bool isThere = m_life.Across([&](Pass pass) { m_view.TellChanged(pass, m_cache[record]); });
    return isThere ? record : kNoRecord;
}

void OrderBook::EachLive(const std::function<void(const BookRow&)>& each) const {
    for (RecordId record = 0; record < m_cache.Size(); ++record) {
        const RecordedRow row(m_cache[record], m_session.m_nSipOperationMode != 0);
        if (row.Row().isLive) each(row.Row());
    }
}

void OrderBook::HandleOperationMode(const Answer& answer) {
    bool periods = !answer.hasError;
    for (std::uint32_t i = 0, count = FieldCount(answer.message, tag::frequency); i < count; ++i)
        if (FieldText(answer.message, tag::frequency, i) == "0") periods = false;
    m_session.m_nSipOperationMode = periods ? 1 : 0;
}

void OrderBook::HandleRow(const Answer& answer) {
    m_filling = FieldCount(answer.message, tag::queriedRow) > 0;
    if (m_filling) ApplyRow(answer.message, Arrival::listed);
}

void OrderBook::HandleHistoryRow(const Answer& answer) {
    const auto status = FieldView(answer.message, tag::sipStatus);
    const auto number = FieldView(answer.message, tag::registrationNumber);
    if (!status || !IsCancelled(*status) || !number || number->empty()) return;
    if (!IsOwnHistory(m_session, answer.message) || m_cache.Find(*number) != kNoRecord) return;
    ApplyRow(answer.message, Arrival::listed);
}

void OrderBook::HandleUserText(const Answer& answer) {
    const std::string text = FieldText(answer.message, tag::userText);
    if (!text.empty()) m_view.ShowLast(text);
}

} // namespace planfold
