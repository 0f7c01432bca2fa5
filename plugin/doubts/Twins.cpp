#include "plugin/doubts/Twins.h"

#include "plugin/base/Text.h"
#include "plugin/doubts/Doubts.h"
#include "plugin/orderbook/BookRequests.h"
#include "sdk/Tags.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr std::size_t kMostNamed = 10;

} // namespace

Twins::Twins(Session& session, DoubtsView& view, std::function<RxControl*()> control)
    : m_session(session), m_view(view), m_control(std::move(control)) {
    m_session.record.AddListener(*this);
}

OrderPlace Twins::CancellationOf(std::string_view number) const {
    return m_session.record.Ledger().Find(RecordedChange(m_session, kCancelSipOrder, number).Texts());
}

void Twins::LookForAll() {
    const OrderLedger& ledger = m_session.record.Ledger();
    std::erase_if(m_told, [&](const std::string& number) {
        const OrderPlace place = CancellationOf(number);
        return place != kNoOrder && ledger[place].State() == OrderState::absent;
    });
    m_session.record.TellAllTwice();
}

void Twins::OnRegisteredTwice(OrderPlace place, std::string_view second) {
    const OrderPlace cancelling = CancellationOf(second);
    if (cancelling != kNoOrder && MayStand(m_session.record.Ledger()[cancelling].State())) return;
    if (m_told.emplace(second).second) m_found.emplace_back(place, second);
}

void Twins::Ask() {
    const Found found = std::exchange(m_found, {});
    std::string question;
    std::vector<std::string> numbers;
    for (const auto& [place, second] : found) {
        numbers.push_back(second);
        if (numbers.size() > kMostNamed) continue;
        const RecordedOrder& order = m_session.record.Ledger()[place];
        question.append("Registered twice: ")
            .append(order.Text(RecordField::registration))
            .append(" and ")
            .append(second)
            .append(", for ")
            .append(order.Text(RecordField::account))
            .append(" ")
            .append(order.Text(RecordField::tradingSymbol))
            .append(" ")
            .append(order.Text(RecordField::frequency))
            .append(".\n");
    }
    if (numbers.size() > kMostNamed) question += Format("... and %zu more\n", numbers.size() - kMostNamed);
    question += numbers.size() == 1 ? "\nCancel " + numbers.front() + "?"
                                    : Format("\nCancel the later one of each, %zu in all?", numbers.size());
    if (m_session.life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes)
        Cancel(numbers);
}

// False when the host has ended the session meanwhile.
bool Twins::Cancel(const std::vector<std::string>& numbers) {
    std::vector<RecordedOrder> recorded;
    std::vector<std::optional<std::string>> orderIds;
    for (const std::string& number : numbers) {
        const auto orderId = m_session.life.Across([&](Pass pass) { return m_session.FreshIdentifier(pass); });
        if (!orderId) return false;
        orderIds.push_back(*orderId);
        recorded.push_back(RecordedChange(m_session, kCancelSipOrder, number, {}, {}, orderId->value_or("")));
    }
    const auto places = BeforeSending(m_session.record).Places(recorded, [&](std::string_view question) {
        return m_session.life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes;
    });
    if (!places) return true;
    m_cancelling.insert(numbers.begin(), numbers.end());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        sOrderinfo record;
        OrderChanges key;
        key[OrderField::registrationNumber] = numbers[i];
        record.Apply(key);
        const Reply sent = m_session.life.Across([&](Pass pass) {
            return SendCancelSipOrder(pass, m_session, m_control(), m_view, record, orderIds[i]);
        });
        if (sent == Reply::over) return false;
        if (sent == Reply::yes) continue;
        m_cancelling.erase(numbers[i]);
        m_session.record.Tell((*places)[i], OrderEvent::notSent, {});
    }
    return true;
}

void Twins::OnCancelled(const Answer& answer) {
    const std::string number = ChangedNumber(answer);
    RecordChanged(m_session, kCancelSipOrder, number, OrderEvent::cancelled, answer);
    if (m_cancelling.erase(number) == 0) return;
    const std::string text = FieldText(answer.message, tag::userText);
    if (!answer.hasError)
        m_cancelled.push_back(number);
    else if (++m_refused <= kMostNamed)
        m_refusals += "\n" + number + " is not cancelled. " + DescribeRefusal(text, answer.errorCode);
    if (!m_cancelling.empty()) return;
    const std::vector<std::string> cancelled = std::exchange(m_cancelled, {});
    std::string outcome = cancelled.size() == 1 ? "\n" + cancelled[0] + " Order Cancelled "
                          : cancelled.empty()   ? ""
                                                : Format("\n%zu orders are cancelled.", cancelled.size());
    outcome += std::exchange(m_refusals, {});
    if (m_refused > kMostNamed) outcome += Format("\n... and %zu more", m_refused - kMostNamed);
    m_refused = 0;
    m_view.ShowLast(outcome.substr(1));
}

} // namespace planfold
