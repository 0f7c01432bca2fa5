#include "plugin/doubts/Doubts.h"

#include "plugin/base/Text.h"
#include "plugin/dayreport/DayReport.h"
#include "plugin/orderbook/BookRequests.h"
#include "sdk/Tags.h"

#include <map>
#include <utility>

namespace planfold {

namespace {

std::string Counted(std::size_t count, const char* one) {
    return Format("%zu %s%s", count, one, count == 1 ? "" : "s");
}

// "14:02", and the day in front of it unless it is today.
std::string TimeOf(std::string_view sentAt, std::string_view today) {
    if (sentAt.size() < 16) return std::string(sentAt);
    return std::string(sentAt.starts_with(today) ? sentAt.substr(11, 5) : sentAt.substr(0, 16));
}

} // namespace

const AnswerHandler<Doubts> Doubts::kAnswers[] = {
    {kGetSipOrders, &Doubts::HandleListed, OnError::logAndHandle},
    {kCancelSipOrder, &Doubts::HandleCancelled, OnError::logAndHandle},
};

Doubts::Doubts(Session& session, DoubtsView& view, std::function<RxControl*()> control)
    : m_session(session), m_view(view), m_comparison(session, control),
      m_twins(session, view, std::move(control)) {}

void Doubts::OnResponse(void* message) {
    if (!m_session.Ended()) Dispatch<Doubts>(*this, m_session, kAnswers, Answer(message));
}

void Doubts::Compare() {
    if (m_comparison.IsUnderWay()) return m_view.ShowLast("The comparison with the book is under way.");
    if (!m_comparison.Begin()) {
        m_outcome = AbsentBefore();
        if (!m_outcome) m_view.ShowLast("No order of yours is in doubt.");
        return;
    }
    m_session.LogLast("Comparing what is in doubt with the book: a box will show the outcome");
}

// What was compared before and not taken into the basket, or could not be.
std::optional<BookComparison::Outcome> Doubts::AbsentBefore() const {
    BookComparison::Outcome outcome;
    const OrderLedger& ledger = m_session.record.Ledger();
    for (std::size_t i = 0; i < ledger.Orders().size(); ++i) {
        const RecordedOrder& order = ledger.Orders()[i];
        if (order.State() == OrderState::absent && !order.ChangesRegistration()
            && order.Text(RecordField::loginId) == m_session.identity.loginId)
            outcome.absent.push_back(static_cast<OrderPlace>(i));
    }
    if (outcome.absent.empty()) return std::nullopt;
    return outcome;
}

void Doubts::OnTime() {
    if (m_session.Ended() || !m_isPicked) return;
    const std::size_t before = m_session.record.Ledger().Count(OrderState::inDoubt);
    m_session.record.OnTime();
    if (const std::size_t now = m_session.record.Ledger().Count(OrderState::inDoubt); now > before)
        m_session.LogLast(Counted(now - before, "request") + " in doubt: no answer came within 30 seconds");
    // Under a question it goes on: orders do as well.
    if (!m_session.life.Across([&](Pass pass) { m_comparison.OnTime(pass, m_view); }) || m_asking) return;
    if (auto outcome = m_comparison.TakeOutcome()) {
        m_outcome = std::move(outcome);
        m_twins.LookForAll();
    }
    const bool tellsStart = !m_isTold && KnowsStart();
    if (m_isTold && !std::exchange(m_hasLooked, true)) m_twins.LookForAll();
    if ((!tellsStart && !m_twins.MustAsk() && !m_outcome) || !m_view.MayAsk()) return;
    m_asking = true;
    if (tellsStart)
        TellAtStart();
    else if (m_twins.MustAsk())
        m_twins.Ask();
    else
        TellOutcome();
    m_asking = false;
}

// What an earlier session sent has been answered by now, or is in doubt.
bool Doubts::KnowsStart() {
    const OrderLedger& ledger = m_session.record.Ledger();
    std::size_t doubts = 0;
    for (std::size_t i = 0; i < m_session.record.CountAtStart(); ++i) {
        const OrderState state = ledger[static_cast<OrderPlace>(i)].State();
        if (state == OrderState::sent) return false;
        doubts += state == OrderState::inDoubt;
    }
    m_isTold = doubts == 0;
    return !m_isTold;
}

void Doubts::TellAtStart() {
    m_isTold = true;
    const std::string question =
        DescribeDoubts()
        + "\nYes: compare with the book, which takes half a minute or more.\n"
          "No: show the orders of the day.\nCancel: later, from the menu of the lists.";
    const auto choice = m_session.life.Across([&](Pass pass) { return m_view.Choose(pass, question); });
    if (choice == Choice::yes) Compare();
    if (choice == Choice::no) Lifetime::Last([&](Pass pass) { m_view.ShowOrdersOfDay(pass); });
}

// "23 orders of b300.csv, sent at 14:02, have no answer.", a line for each source.
std::string Doubts::DescribeDoubts() const {
    struct Group {
        std::size_t count = 0;
        std::string sentAt; // the first
    };
    std::map<std::string, Group> groups;
    for (const RecordedOrder& order : m_session.record.Ledger().Orders()) {
        if (order.State() != OrderState::inDoubt) continue;
        const std::string source(order.Text(RecordField::source));
        Group& group = groups[order.ChangesRegistration() ? " of registrations"
                              : source == "form"          ? std::string(" of the form")
                                                          : " of " + source];
        if (++group.count == 1) group.sentAt = order.SentAt();
    }
    const std::string today = TimeText(m_session.record.LocalTime());
    std::string text;
    for (const auto& [source, group] : groups) {
        const bool isChange = source == " of registrations";
        text += Counted(group.count, isChange ? "change" : "order") + source + ", sent at "
                + TimeOf(group.sentAt, today.substr(0, 10)) + (group.count == 1 ? ", has" : ", have")
                + " no answer.\n";
    }
    return text;
}

void Doubts::TellOutcome() {
    const BookComparison::Outcome outcome = *std::exchange(m_outcome, std::nullopt);
    const OrderLedger& ledger = m_session.record.Ledger();
    std::vector<OrderPlace> orders;
    std::string text = Format("Compared with the book: %zu found, %zu not there, %zu still in doubt.",
                              outcome.found, outcome.absent.size(), outcome.inDoubt);
    if (!outcome.fault.empty()) text += "\n" + outcome.fault;
    constexpr std::size_t mostNamed = 10;
    std::size_t changes = 0;
    for (const OrderPlace place : outcome.absent) {
        if (!ledger[place].ChangesRegistration())
            orders.push_back(place);
        else if (++changes <= mostNamed)
            text.append("\nNot done: ")
                .append(RequestOf(ledger[place]))
                .append(" ")
                .append(ledger[place].Text(RecordField::registration));
    }
    if (changes > mostNamed) text += "\n... and " + Counted(changes - mostNamed, "more change");
    if (orders.empty()) return m_view.ShowLast(text);
    text += "\n\nTake " + Counted(orders.size(), "order")
            + " that the book does not have into the basket, to be placed again?";
    if (m_session.life.Across([&](Pass pass) { return m_view.Ask(pass, text); }) != Reply::yes) return;
    const auto taken = m_session.life.Across([&](Pass pass) { return m_view.TakeBack(pass, orders); });
    if (taken && *taken < orders.size())
        m_view.ShowLast(Counted(orders.size() - *taken, "order")
                        + " could not be taken: the orders of the day tell of them.");
}

} // namespace planfold
