#include "plugin/orderbook/BookActions.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <set>
#include <utility>

namespace planfold {

namespace {

// Sent at once: what comes back from a click in the blink of an eye.
constexpr std::size_t kFirstPortion = 250;
constexpr std::size_t kPortion = 100;
// Portions that bring no answer before the run is given up: some ten seconds.
constexpr int kMostWaits = 500;

struct Refusal {
    std::string_view status;
    const char* text;
};
constexpr Refusal kPauseRefusals[] = {
    {kPausedStatus, "Cannot pause - order is already paused"},
    {"cancelled", "Cannot pause - order is cancelled"},
    {"expired", "Cannot pause - order is expired"},
};

// Null when the status allows it.
const char* RefusalToPause(std::string_view status) {
    const auto* row = std::ranges::find(kPauseRefusals, status, &Refusal::status);
    return row == std::end(kPauseRefusals) ? nullptr : row->text;
}

const char* RefusalToResume(std::string_view status) {
    return status == kPausedStatus ? nullptr : "Cannot Resume - order is not paused";
}

const char* RefusalTo(PauseOrResume which, std::string_view status) {
    return which == PauseOrResume::pause ? RefusalToPause(status) : RefusalToResume(status);
}

// Of any kind but a cancellation.
PauseOrResume ChangeOf(RunKind kind) {
    return kind == RunKind::pause ? PauseOrResume::pause : PauseOrResume::resume;
}

std::string_view RequestNameOf(RunKind kind) {
    if (kind == RunKind::cancel) return kCancelSipOrder;
    return RequestNameOf(ChangeOf(kind));
}

RunKind RunOf(PauseOrResume which) {
    return which == PauseOrResume::pause ? RunKind::pause : RunKind::resume;
}

// What many registrations mean in money, for the question before something is done with all of them.
struct Totals {
    std::set<std::string_view> clients;
    std::int64_t paise = 0;
    std::int64_t shares = 0;

    void Add(const sOrderinfo& record) {
        clients.insert(record.Text(OrderField::account));
        std::string amount(record.Text(OrderField::amount));
        std::erase(amount, '.');
        if (record.Text(OrderField::investType) == "value") paise += LeadingInteger(amount);
        if (record.Text(OrderField::investType) == "qty")
            shares += LeadingInteger(record.Text(OrderField::quantity));
    }
    std::string Text() const {
        std::string text = Format("%zu client%s", clients.size(), clients.size() == 1 ? "" : "s");
        if (paise)
            text += Format(", amount %lld.%02lld per run", static_cast<long long>(paise / 100),
                           static_cast<long long>(paise % 100));
        if (shares) text += Format(", quantity %lld per run", static_cast<long long>(shares));
        return text;
    }
};

} // namespace

const sOrderinfo* BookActions::FirstSelected() const {
    const RecordId record = m_view.Registered().FirstSelected();
    return record == kNoRecord ? nullptr : &m_cache[record];
}

void BookActions::Cancel() {
    std::vector<RecordId> records = m_view.Registered().Selected();
    if (records.empty() || m_asking || m_run) return;
    const std::string question =
        records.size() == 1
            ? Format("Do you want to cancel Order No: %s ", std::string(m_cache[records[0]].Number()).c_str())
            : Format("You have selected %d Orders to Cancel. Proceed?", static_cast<int>(records.size()));
    std::optional<std::string> reason;
    m_asking = true;
    // Whichever way the reason is closed, the cancellation goes on.
    if (m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes)
        reason = m_life.Across([&](Pass pass) { return m_view.AskReason(pass); });
    m_asking = false;
    if (reason) Begin(RunKind::cancel, std::move(records), std::move(*reason));
}

void BookActions::Modify() {
    const sOrderinfo* record = FirstSelected();
    if (!record) return;
    const std::string_view status = record->Text(OrderField::sipStatus);
    if (HasEnded(status))
        m_view.ShowLast("Cannot modify SIP. Order status: " + std::string(status));
    else
        Lifetime::Last([&](Pass pass) { m_view.OpenForModify(pass, *record); });
}

void BookActions::Change(PauseOrResume which) {
    const sOrderinfo* record = FirstSelected();
    if (!record || m_run) return;
    if (const char* refusal = RefusalTo(which, record->Text(OrderField::sipStatus)))
        m_view.ShowLast(refusal);
    else
        ChangeOne(which, std::string(record->Number()));
}

void BookActions::ChangeOne(PauseOrResume which, const std::string& number) {
    const RecordedOrder recorded = RecordedChange(m_session, RequestNameOf(which), number);
    m_withoutRecord = false;
    const auto places = RecordSending({&recorded, 1});
    if (!places) return;
    Lifetime::Last([&](Pass pass) {
        if (!SendPauseSipOrder(pass, m_session, m_control, m_view, which, number))
            m_session.record.Tell(places->front(), OrderEvent::notSent, {});
    });
}

std::optional<std::vector<OrderPlace>> BookActions::RecordSending(std::span<const RecordedOrder> requests) {
    if (auto places = m_session.record.Sending(requests)) return places;
    if (!m_withoutRecord) {
        m_asking = true;
        const Reply reply = m_life.Across([&](Pass pass) { return m_view.Ask(pass, kNoRecordQuestion); });
        m_asking = false;
        m_withoutRecord = reply == Reply::yes;
    }
    if (!m_withoutRecord) return std::nullopt;
    return m_session.record.SendingUnwritten(requests);
}

void BookActions::ChangeSelected(PauseOrResume which) {
    if (m_asking || m_run) return;
    std::vector<RecordId> records = m_view.Registered().Selected();
    const std::size_t selected = records.size();
    std::erase_if(records, [&](RecordId record) {
        return RefusalTo(which, m_cache[record].Text(OrderField::sipStatus)) != nullptr;
    });
    const char* verb = which == PauseOrResume::pause ? "paused" : "resumed";
    if (records.empty()) {
        if (selected)
            m_view.ShowLast(Format("None of the %zu selected registrations can be %s.", selected, verb));
        return;
    }
    Totals totals;
    for (const RecordId record : records)
        totals.Add(m_cache[record]);
    const std::string question = Format("%zu of %zu selected registrations will be %s: %s.\nProceed?",
                                        records.size(), selected, verb, totals.Text().c_str());
    m_asking = true;
    const Reply reply = m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); });
    m_asking = false;
    if (reply == Reply::yes) Begin(RunOf(which), std::move(records), {});
}

void BookActions::Begin(RunKind kind, std::vector<RecordId> records, std::string reason) {
    m_reason = std::move(reason);
    m_run.emplace(kind, std::move(records));
    m_waits = 0;
    m_withoutRecord = false;
    SendPortion(kFirstPortion);
    if (m_run) m_view.ShowRun();
}

void BookActions::Continue() {
    SendPortion(kPortion);
    if (m_run && m_run->AllTried() && ++m_waits > kMostWaits) EndRun();
}

void BookActions::Stop() {
    if (!m_run) return;
    m_run->Stop();
    // This ends it also when only answers were waited for.
    if (!m_sending) EndRun();
}

// A cancellation ends with its last request: every answer tells its own row. The other two end with one summary
// of all answers.
bool BookActions::Finished() const {
    if (!m_run || m_sending || !m_run->AllTried()) return false;
    return m_run->Kind() == RunKind::cancel || m_run->Stopped() || m_run->AllAnswered();
}

void BookActions::SendPortion(std::size_t most) {
    // The host is asked for identifiers on the way and may let the window's timer in.
    if (!m_run || m_sending) return;
    m_sending = true;
    const bool isThere = m_life.Across([&](Pass) { SendRecorded(most); });
    m_sending = false;
    if (!isThere)
        m_run.reset();
    else if (Finished())
        EndRun();
}

// All of a portion is on the disk before the first of it goes out.
void BookActions::SendRecorded(std::size_t most) {
    const std::vector<RecordId> records = m_run->Next(most);
    const std::string_view request = RequestNameOf(m_run->Kind());
    std::vector<std::optional<std::string>> orderIds(records.size());
    std::vector<RecordedOrder> recorded;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (m_run->Kind() == RunKind::cancel) {
            auto orderId = m_life.Across([&](Pass pass) { return m_session.FreshIdentifier(pass); });
            if (!orderId) return;
            orderIds[i] = std::move(*orderId);
        }
        recorded.push_back(
            RecordedChange(m_session, request, m_cache[records[i]].Number(), {}, {}, orderIds[i].value_or("")));
    }
    const auto places = RecordSending(recorded);
    if (!places) return m_run->Stop();
    bool isThere = true;
    for (std::size_t i = 0; i < records.size(); ++i) {
        bool sent = false;
        if (isThere && !m_run->AllTried()) {
            m_run->CountTried();
            isThere = m_life.Across([&](Pass pass) { sent = SendOne(pass, records[i], orderIds[i]); });
        }
        if (sent)
            m_run->CountSent();
        else
            m_session.record.Tell((*places)[i], OrderEvent::notSent, {});
    }
}

bool BookActions::SendOne(Pass pass, RecordId id, const std::optional<std::string>& orderId) {
    sOrderinfo& record = m_cache[id];
    Notices& notices = m_run->Failures();
    if (m_run->Kind() != RunKind::cancel)
        return SendPauseSipOrder(pass, m_session, m_control, notices, ChangeOf(m_run->Kind()), record.Number());
    OrderChanges reason;
    reason[OrderField::userText] = m_reason;
    record.Apply(reason);
    bool sent = false;
    // The record itself has changed: reason and order source.
    if (m_life.Across(
            [&](Pass) { sent = SendCancelSipOrder(pass, m_session, m_control, notices, record, orderId); }))
        m_view.Registered().Repaint(id);
    return sent;
}

void BookActions::EndRun() {
    const BookRun run = *std::exchange(m_run, std::nullopt);
    m_view.ShowRun();
    std::string text = run.FailureTexts();
    if (run.Stopped() || run.Kind() != RunKind::cancel)
        text.append(text.empty() ? "" : "\n").append(run.Summary());
    if (!text.empty()) m_view.ShowLast(text);
}

void BookActions::RecordAnswer(const Answer& answer, std::string_view request, OrderEvent event) {
    RecordChanged(m_session, request, ChangedNumber(answer), event, answer);
}

void BookActions::HandleCancelled(const Answer& answer) {
    RecordAnswer(answer, kCancelSipOrder, OrderEvent::cancelled);
    const auto number = FieldView(answer.message, tag::echoedNumber);
    if (!number) return;
    BookList& registered = m_view.Registered();
    const RecordId record = m_cache.Find(*number);
    if (record == kNoRecord || !registered.IsSelected(record)) return;
    registered.Deselect(record);
    registered.Remove(record);
    const std::string text = Format("%s Order Cancelled ", std::string(*number).c_str());
    if (m_session.life.Across([&](Pass pass) { m_session.Log(pass, text); })) m_view.ShowLast(text);
}

void BookActions::HandleChanged(const Answer& answer, RunKind kind) {
    RecordAnswer(answer, RequestNameOf(kind),
                 kind == RunKind::pause ? OrderEvent::paused : OrderEvent::resumed);
    if (m_run && m_run->Kind() == kind && !m_run->AllAnswered()) {
        m_run->CountAnswer(answer.hasError);
        m_waits = 0;
        if (Finished()) EndRun();
        return;
    }
    const std::string text = FieldText(answer.message, tag::userText);
    if (!text.empty()) m_view.ShowLast(text);
}

void BookActions::Reset() {
    m_life.Renew();
    if (!m_sending) m_run.reset();
}

} // namespace planfold
