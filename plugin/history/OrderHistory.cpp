#include "plugin/history/OrderHistory.h"

#include "plugin/messaging/Request.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

struct Query {
    std::string_view registrationNumber;
};
constexpr RequestField<Query> kFields[] = {
    {tag::registrationNumber, [](Query& query) -> Value { return query.registrationNumber; }, nullptr},
};

} // namespace

bool SendHistoryQuery(Pass pass, Session& session, RxControl* control, Notices& notices,
                      std::string_view request, std::string_view registrationNumber) {
    Query query{registrationNumber};
    return SendRequest(pass, session, control, notices,
                       Request<Query>{request, nullptr, kFields, "Request Failure"}, query);
}

// An error field without a value is how an answer ends, so the handlers judge it.
const AnswerHandler<OrderHistory> OrderHistory::kAnswers[] = {
    {kHistoryOrdersRequest, &OrderHistory::HandleOrder, OnError::handle},
    {kHistoryTradesRequest, &OrderHistory::HandleTrade, OnError::handle},
};

void OrderHistory::Open(Pass pass, const std::string& registrationNumber) {
    if (!SendHistoryQuery(pass, m_session, m_control, m_view, kHistoryOrdersRequest, registrationNumber))
        return;
    m_registrationNumber = registrationNumber;
    ++m_unanswered;
    m_collection.Renew();
    m_collected.clear();
}

void OrderHistory::OnResponse(void* message) {
    if (!m_session.Ended()) Dispatch<OrderHistory>(*this, m_session, kAnswers, Answer(message));
}

void OrderHistory::HandleOrder(const Answer& answer) {
    if (answer.hasError) {
        const bool refused = !answer.errorCode.empty();
        const bool goesOn = m_session.life.Across([&](Pass pass) {
            if (refused) LogErrorAnswer(pass, m_session, answer);
        });
        if (goesOn) EndAnswer(refused);
        return;
    }
    const auto number = FieldView(answer.message, tag::registrationNumber);
    if (!number) {
        if (const auto text = FieldView(answer.message, tag::noRowText)) m_session.LogLast(*text);
        return;
    }
    if (!IsWanted(*number)) return;
    const auto divisor =
        m_collection.Across([&](Pass pass) { return AskPriceDivisor(pass, m_session, answer.message); });
    if (divisor) m_collected.push_back(ReadHistoryOrder(answer.message, *divisor));
}

// What is still coming for an earlier query is dropped. A row of the newest one shows that the earlier ones are
// over, answered or not.
bool OrderHistory::IsWanted(std::string_view registrationNumber) {
    if (m_unanswered > 1 && registrationNumber == m_registrationNumber) m_unanswered = 1;
    return m_unanswered <= 1;
}

void OrderHistory::EndAnswer(bool refused) {
    const bool ofEarlier = m_unanswered > 1;
    if (m_unanswered > 0) --m_unanswered;
    if (!ofEarlier && !refused) List();
}

void OrderHistory::List() {
    m_collection.Renew();
    m_records = std::exchange(m_collected, {});
    m_described.reset();
    m_view.ListRecords();
    // A failure is a box.
    const bool goesOn = m_session.life.Across([&](Pass pass) {
        if (std::ranges::any_of(m_records, &sOrderHistory::fillPending))
            SendHistoryQuery(pass, m_session, m_control, m_view, kHistoryTradesRequest,
                             std::string(m_registrationNumber));
    });
    if (!goesOn) return;
    Describe();
    m_view.Show(!m_records.empty());
    if (m_records.empty() && !m_session.Ended()) m_view.ShowLast("No orders yet: " + m_registrationNumber);
}

void OrderHistory::HandleTrade(const Answer& answer) {
    if (answer.hasError) {
        if (!answer.errorCode.empty())
            Lifetime::Last([&](Pass pass) { LogErrorAnswer(pass, m_session, answer); });
        return;
    }
    if (!FieldView(answer.message, tag::registrationNumber) && FieldView(answer.message, tag::noRowText))
        return;
    const auto divisor =
        m_session.life.Across([&](Pass pass) { return AskPriceDivisor(pass, m_session, answer.message); });
    if (!divisor) return;
    const sOrderHistory trade = ReadHistoryTrade(answer.message, *divisor);
    const auto order = std::ranges::find_if(m_records, [&](const sOrderHistory& record) {
        return record.fillPending && record[HistoryField::orderNumber] == trade[HistoryField::orderNumber]
               && record[HistoryField::registrationNumber] == trade[HistoryField::registrationNumber];
    });
    if (order == m_records.end()) return;
    ApplyTrade(trade, *order);
    m_view.OnRecordChanged();
    if (m_view.FocusedRecord() == static_cast<std::size_t>(order - m_records.begin())) Describe();
}

void OrderHistory::OnFocusChanged() {
    if (m_view.FocusedRecord() != m_described) Describe();
}

void OrderHistory::Describe() {
    m_described = m_view.FocusedRecord();
    const bool any = m_described && *m_described < m_records.size();
    if (any)
        m_view.ShowDetails(TakeDetails(m_records[*m_described]),
                           m_records[*m_described][HistoryField::userText]);
    else
        m_view.ShowDetails({}, {});
}

} // namespace planfold
