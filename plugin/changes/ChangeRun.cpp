#include "plugin/changes/ChangeRun.h"

#include "plugin/base/Text.h"
#include "plugin/changes/ChangeSet.h"
#include "plugin/orderentry/Modification.h"
#include "plugin/orderentry/OperationMode.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

// Sent at once, and with each tick of the progress window.
constexpr std::size_t kLinesAtOnce = 500;
constexpr std::int64_t kReadingMs = 50;

} // namespace

const AnswerHandler<ChangeRun> ChangeRun::kAnswers[] = {
    {"get_sip_operation_mode", &ChangeRun::HandleOperationMode, OnError::handle},
    {kModifySipOrder, &ChangeRun::HandleModified, OnError::logAndHandle},
};

bool ChangeRun::TellsBusy() {
    if (IsUnderWay()) m_view.ShowLast(Progress() + ".\nPlease wait until it is over, or stop it.");
    return IsUnderWay();
}

// What is listed goes. The server is asked how many periods it demands.
bool ChangeRun::Replace() {
    if (TellsBusy()) return false;
    m_life.Renew();
    m_set.reset();
    m_sent.clear();
    KeptTexts failures;
    return m_life.Across([&](Pass pass) { SendGetSipOperationMode(pass, m_session, m_control(), failures); });
}

void ChangeRun::Load(std::string text, std::string name) {
    if (!Replace()) return;
    m_source = std::move(name);
    m_set = std::make_unique<ChangeSet>(m_book, ChangeRulesOf(m_session), std::move(text));
    ReadSome();
    m_view.ShowRun();
}

void ChangeRun::Step(std::span<const std::string> numbers, const StepUp& rule) {
    if (!Replace()) return;
    m_source = "step up";
    m_set = std::make_unique<ChangeSet>(m_book, ChangeRulesOf(m_session), numbers, rule);
    m_view.ShowRows(true);
}

void ChangeRun::ReadSome() {
    const std::int64_t end = m_view.Milliseconds() + kReadingMs;
    while (m_set->Read(kLinesAtOnce) && m_view.Milliseconds() < end) {
    }
    if (!m_set->IsRead()) return;
    m_view.ShowRows(true);
    m_view.ShowRun();
}

void ChangeRun::Send() {
    if (!m_set || TellsBusy() || m_asking) return;
    m_asksLater = !m_view.MayAsk();
    if (m_asksLater) return;
    m_set->JudgeAnew(ChangeRulesOf(m_session));
    m_view.ShowRows(false);
    const std::vector<std::size_t> changes = m_set->Sendable();
    if (changes.empty()) return m_view.ShowLast("There is nothing to send.");
    const std::string question = QuestionOf(*m_set, changes);
    m_asking = true;
    const Reply reply = m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); });
    m_asking = false;
    if (reply == Reply::yes) Begin(changes);
}

bool ChangeRun::OnBoxGone() {
    if (m_asking || m_sender.IsSending()) return !m_asksLater;
    m_sender.OnBoxGone();
    if (std::exchange(m_asksLater, false)) Send();
    return !m_asksLater;
}

void ChangeRun::Begin(std::span<const std::size_t> changes) {
    std::vector<BookRun::Row> rows;
    for (const std::size_t change : changes) {
        const Change& one = m_set->Changes()[change];
        rows.push_back({kNoRecord, one.registration, one.account});
    }
    m_run = std::make_unique<BookRun>(RunKind::modify, std::move(rows), std::string());
    m_sent.assign(changes.begin(), changes.end());
    m_sender.Begin();
    SendPortion(RunSender::kFirstPortion);
    if (m_run) m_view.ShowRun();
}

void ChangeRun::Continue() {
    if (IsReading()) return ReadSome();
    SendPortion(RunSender::kPortion);
    EndRun();
}

void ChangeRun::Stop() {
    if (IsReading()) {
        m_life.Renew();
        m_set.reset();
        m_view.ShowRows(true);
        return m_view.ShowRun();
    }
    if (!IsSending()) return;
    m_run->Stop();
    EndRun();
}

void ChangeRun::SendPortion(std::size_t most) {
    if (!IsSending() || m_sender.IsSending()) return;
    if (m_sender.SendPortion(*m_run, most)) return EndRun();
    m_run.reset();
    m_set.reset();
}

std::optional<RecordedOrder> ChangeRun::Recorded(const BookRun&, std::size_t row) {
    const Change& change = m_set->Changes()[m_sent[row]];
    const RecordedOrder plain =
        RecordedChange(m_session, kModifySipOrder, change.registration, change.value, change.periods, {},
                       change.isByQuantity ? "qty" : "value", change.account);
    RecordTexts texts = plain.Texts();
    const std::string line = change.line ? Format("%d", change.line) : std::string();
    texts[RecordField::source] = m_source;
    texts[RecordField::line] = line;
    return RecordedOrder(texts);
}

// The registration may have changed while the question was open, or since the portion before.
bool ChangeRun::SendOne(Pass pass, BookRun& run, std::size_t row) {
    const std::size_t index = m_sent[row];
    const Change& change = m_set->Changes()[index];
    if (std::string why = m_set->WhyStale(index); !why.empty()) {
        run.Failures().ShowMessage(pass, change.registration + ": " + why);
        m_set->SetResult(index, {OrderState::notSent, true, std::move(why)});
        return false;
    }
    sSipOrderData order;
    order.amountOrQuantity = change.value;
    order.totalPeriod = change.periods;
    return SendModifySipOrder(pass, m_session, m_control(), run.Failures(), change.registration, order);
}

void ChangeRun::OnOrder(OrderPlace place) {
    if (!m_run || !m_run->Has(place)) return;
    m_run->Settle(place, m_session.record.Ledger()[place]);
    m_resultsChanged = true;
}

void ChangeRun::OnResponse(void* message) {
    if (m_session.Ended()) return;
    Dispatch<ChangeRun>(*this, m_session, kAnswers, Answer(message));
}

// An answer that names no registration is to what was sent first, since the server answers in turn.
void ChangeRun::HandleModified(const Answer& answer) {
    if (const std::string number = ChangedNumber(answer); !number.empty() || !m_run)
        RecordChanged(m_session, kModifySipOrder, number, OrderEvent::modified, answer);
    else
        RecordOutcome(m_session, m_run->FirstWaiting(), OrderEvent::modified, answer);
    if (m_run && m_run->IsOver()) EndRun();
}

void ChangeRun::HandleOperationMode(const Answer& answer) {
    if (!ReadOperationMode(m_session, answer).understood || !m_set || IsUnderWay() || m_asking) return;
    m_set->JudgeAnew(ChangeRulesOf(m_session));
    m_view.ShowRows(false);
}

void ChangeRun::TakeResults() {
    if (!m_run || !m_set) return;
    const std::span<const BookRun::Row> rows = m_run->Rows();
    for (std::size_t i = 0; i < m_run->Tried(); ++i) {
        // What was not sent has its reason already.
        std::string answer =
            rows[i].state == OrderState::notSent ? m_set->Result(m_sent[i]).answer : rows[i].refusal;
        m_set->SetResult(m_sent[i], {rows[i].state, true, std::move(answer)});
    }
}

void ChangeRun::EndRun() {
    if (!m_run || m_sender.IsSending()) return;
    const bool isOver = m_run->IsOver();
    if (std::exchange(m_resultsChanged, false) || isOver) {
        TakeResults();
        m_view.ShowRows(false);
    }
    if (!isOver) return;
    const std::string summary = m_run->Summary(m_session.record.IsKept());
    m_run.reset();
    m_view.ShowRows(false);
    m_view.ShowRun();
    if (!summary.empty()) m_view.ShowLast(summary);
}

void ChangeRun::Forget() {
    m_life.Renew();
    m_asksLater = false;
    m_sender.Begin();
    if (m_sender.IsSending()) return;
    m_sent.clear();
    m_run.reset();
    m_set.reset();
}

std::string ChangeRun::Progress() const {
    return m_run ? m_run->Progress() : Format("Reading: %zu lines", m_set ? m_set->LinesRead() : 0);
}

std::size_t ChangeRun::Done() const {
    return m_run ? m_run->Tried() : m_set ? m_set->LinesRead() : 0;
}

std::size_t ChangeRun::Total() const {
    return m_run ? m_run->Total() : 0;
}

} // namespace planfold
