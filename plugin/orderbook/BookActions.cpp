#include "plugin/orderbook/BookActions.h"

#include "plugin/base/Text.h"
#include "plugin/orderbook/BookChoice.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

// Sent at once: what comes back from a click in the blink of an eye.
constexpr std::size_t kFirstPortion = 250;
constexpr std::size_t kPortion = 100;

// Of any kind but a cancellation.
PauseOrResume ChangeOf(RunKind kind) {
    return kind == RunKind::pause ? PauseOrResume::pause : PauseOrResume::resume;
}

std::string_view RequestNameOf(RunKind kind) {
    if (kind == RunKind::cancel) return kCancelSipOrder;
    return RequestNameOf(ChangeOf(kind));
}

RunKind KindOf(PauseOrResume which) {
    return which == PauseOrResume::pause ? RunKind::pause : RunKind::resume;
}

const char* DoneTo(RunKind kind) {
    constexpr const char* words[] = {"cancelled", "paused", "resumed"};
    return words[static_cast<std::size_t>(kind)];
}

} // namespace

const sOrderinfo* BookActions::FirstSelected() const {
    const RecordId record = m_view.Registered().FirstSelected();
    return record == kNoRecord ? nullptr : &m_cache[record];
}

BookActions::Wish BookActions::WishFor(RunKind kind) const {
    Wish wish{kind};
    for (const RecordId record : m_view.Registered().Selected())
        wish.numbers.emplace_back(m_cache[record].Number());
    return wish;
}

void BookActions::Cancel() {
    Ask(WishFor(RunKind::cancel));
}

void BookActions::ChangeSelected(PauseOrResume which) {
    Ask(WishFor(KindOf(which)));
}

void BookActions::Ask(const Wish& wish) {
    if (wish.numbers.empty() || TellsBusy() || !MayAsk(wish)) return;
    m_asked = wish;
    const bool isThere = m_life.Across([&](Pass) {
        if (wish.isOfOne)
            ChangeOne(ChangeOf(wish.kind), wish.numbers[0]);
        else if (wish.kind == RunKind::cancel)
            AskToCancel(wish);
        else
            AskToChange(wish);
    });
    if (!isThere) return;
    m_asked = {};
    static_cast<void>(OnBoxGone());
}

// The same that is being asked already, or waits, is asked once.
bool BookActions::MayAsk(const Wish& wish) {
    if (m_view.MayAsk() && !m_asking) return true;
    const auto covers = [&](const Wish& other) {
        return other.kind == wish.kind && std::ranges::all_of(wish.numbers, [&](const std::string& number) {
                   return std::ranges::find(other.numbers, number) != other.numbers.end();
               });
    };
    if (!covers(m_asked) && std::ranges::none_of(m_later, covers)) m_later.push_back(wish);
    return false;
}

bool BookActions::OnBoxGone() {
    if (m_asking || m_sending) return m_later.empty();
    m_waitsForBox = false;
    if (m_later.empty() || IsSending()) return m_later.empty();
    const Wish wish = m_later.front();
    m_later.erase(m_later.begin());
    Ask(wish);
    return m_later.empty();
}

bool BookActions::TellsBusy() {
    if (IsSending())
        m_view.ShowLast(m_runs.back().Progress() + ".\nPlease wait until all are sent, or stop it.");
    return IsSending();
}

std::vector<RecordId> BookActions::Standing(const Wish& wish) {
    std::vector<RecordId> records;
    for (const std::string& number : wish.numbers)
        if (const RecordId record = m_cache.Find(number);
            record != kNoRecord && m_view.Registered().Contains(record))
            records.push_back(record);
    if (records.empty())
        m_view.ShowLast(
            Format("None of the %zu selected registrations is in the book any more.", wish.numbers.size()));
    return records;
}

void BookActions::AskToCancel(const Wish& wish) {
    const std::vector<RecordId> records = Standing(wish);
    if (records.empty()) return;
    const std::string question =
        records.size() == 1
            ? Format("Do you want to cancel Order No: %s ", std::string(m_cache[records[0]].Number()).c_str())
            : Format("You have selected %d Orders to Cancel. Proceed?", static_cast<int>(records.size()));
    std::optional<std::string> reason;
    m_asking = true;
    // Whichever way the reason is closed, the cancellation goes on.
    if (m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes)
        reason = m_life.Across([&](Pass pass) { return m_view.AskReason(pass, records.size()); });
    m_asking = false;
    if (reason) Begin(RunKind::cancel, records, std::move(*reason));
}

void BookActions::AskToChange(const Wish& wish) {
    const std::vector<RecordId> records = Standing(wish);
    if (records.empty()) return;
    const std::size_t selected = wish.numbers.size();
    const BookChoice choice = ChooseToChange(ChangeOf(wish.kind), m_cache, records, selected - records.size(),
                                             m_session.identity.loginId);
    if (choice.records.empty())
        return m_view.ShowLast(
            Format("None of the %zu selected registrations can be %s.", selected, DoneTo(wish.kind))
            + choice.leftOut);
    const std::string question = Format("%zu of %zu selected registrations will be %s: ", choice.records.size(),
                                        selected, DoneTo(wish.kind))
                                 + choice.totals + choice.leftOut + "\nProceed?";
    m_asking = true;
    const Reply reply = m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); });
    m_asking = false;
    if (reply == Reply::yes) Begin(wish.kind, choice.records, {});
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
    if (!record || TellsBusy()) return;
    if (const StatusRefusal* refusal = RefusalTo(which, record->Text(OrderField::sipStatus)))
        m_view.ShowLast(refusal->text);
    else
        ChangeOne(which, std::string(record->Number()));
}

void BookActions::ChangeOne(PauseOrResume which, const std::string& number) {
    const RecordId record = m_cache.Find(number);
    const std::string client(record == kNoRecord ? "" : m_cache[record].Text(OrderField::account));
    const RecordedOrder recorded =
        RecordedChange(m_session, RequestNameOf(which), number, {}, {}, {}, {}, client);
    m_withoutRecord = false;
    auto places = m_session.record.Sending({&recorded, 1});
    if (!places && MayAsk({KindOf(which), {number}, true})) places = RecordSending({&recorded, 1});
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

void BookActions::Begin(RunKind kind, std::span<const RecordId> records, std::string reason) {
    std::vector<BookRun::Row> rows;
    for (const RecordId record : records)
        rows.push_back({record, std::string(m_cache[record].Number()),
                        std::string(m_cache[record].Text(OrderField::account))});
    m_runs.emplace_back(kind, std::move(rows), std::move(reason));
    m_withoutRecord = false;
    SendPortion(kFirstPortion);
    if (IsUnderWay()) m_view.ShowRun();
}

void BookActions::Continue() {
    if (!m_waitsForBox) SendPortion(kPortion);
    if (!m_sending && RemoveLeaving()) EndRuns();
}

void BookActions::Stop() {
    if (!IsSending()) return;
    m_runs.back().Stop();
    if (!m_sending) EndRuns();
}

void BookActions::SendPortion(std::size_t most) {
    // The host is asked for identifiers on the way and may let the window's timer in.
    if (!IsSending() || m_sending) return;
    m_sending = true;
    const bool isThere = m_life.Across([&](Pass) { SendRecorded(m_runs.back(), most); });
    m_sending = false;
    if (!isThere)
        m_runs.clear();
    else
        EndRuns();
}

// All of a portion is on the disk before the first of it goes out.
void BookActions::SendRecorded(BookRun& run, std::size_t most) {
    const std::vector<BookRun::Row> rows = run.Next(most);
    const std::string_view request = RequestNameOf(run.Kind());
    std::vector<std::optional<std::string>> orderIds(rows.size());
    std::vector<RecordedOrder> recorded;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (run.Kind() == RunKind::cancel) {
            auto orderId = m_life.Across([&](Pass pass) { return m_session.FreshIdentifier(pass); });
            if (!orderId) return;
            orderIds[i] = std::move(*orderId);
        }
        recorded.push_back(RecordedChange(m_session, request, rows[i].number, {}, {}, orderIds[i].value_or(""),
                                          {}, rows[i].client));
    }
    if (run.Stopped()) return;
    auto places = m_session.record.Sending(recorded);
    if (!places) {
        m_waitsForBox = !m_withoutRecord && !m_view.MayAsk();
        if (m_waitsForBox) return;
        places = RecordSending(recorded);
    }
    if (!places) return run.Stop();
    run.Enter(*places);
    bool isThere = true;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        bool sent = false;
        if (isThere && !run.AllTried()) {
            run.CountTried();
            isThere = m_life.Across([&](Pass pass) { sent = SendOne(pass, run, rows[i].record, orderIds[i]); });
        }
        if (!sent) m_session.record.Tell((*places)[i], OrderEvent::notSent, {});
    }
}

bool BookActions::SendOne(Pass pass, BookRun& run, RecordId id, const std::optional<std::string>& orderId) {
    sOrderinfo& record = m_cache[id];
    if (run.Kind() != RunKind::cancel)
        return SendPauseSipOrder(pass, m_session, m_control, run.Failures(), ChangeOf(run.Kind()),
                                 record.Number());
    OrderChanges reason;
    reason[OrderField::userText] = run.Reason();
    record.Apply(reason);
    bool sent = false;
    // The record itself has changed: reason and order source.
    if (m_life.Across([&](Pass) {
            sent = SendCancelSipOrder(pass, m_session, m_control, run.Failures(), record, orderId);
        }))
        m_view.Registered().Repaint(id);
    return sent;
}

BookRun* BookActions::RunOf(OrderPlace place) {
    const auto run = std::ranges::find_if(m_runs, [&](const BookRun& one) { return one.Has(place); });
    return run == m_runs.end() ? nullptr : &*run;
}

void BookActions::OnOrder(OrderPlace place) {
    for (BookRun& run : m_runs)
        run.Settle(place, m_session.record.Ledger()[place]);
}

// An answer that names no registration is to what was sent first, since the server answers in turn.
OrderPlace BookActions::RecordAnswer(const Answer& answer, RunKind kind, OrderEvent event) {
    OrderPlace place = kNoOrder;
    if (const std::string number = ChangedNumber(answer); !number.empty())
        place = m_session.record.Ledger().Find(RecordedChange(m_session, RequestNameOf(kind), number).Texts());
    else
        for (BookRun& run : m_runs)
            if (run.Kind() == kind && place == kNoOrder) place = run.FirstWaiting();
    RecordOutcome(m_session, place, event, answer);
    return place;
}

void BookActions::HandleCancelled(const Answer& answer) {
    const OrderPlace place = RecordAnswer(answer, RunKind::cancel, OrderEvent::cancelled);
    const auto number = FieldView(answer.message, tag::echoedNumber);
    const RecordId record = number ? m_cache.Find(*number) : kNoRecord;
    if (record != kNoRecord) m_leaving.emplace(record, place);
    // The answers of a burst are one step, but the last of them waits for none.
    const BookRun* run = RunOf(place);
    if ((!run || run->IsOver()) && RemoveLeaving()) EndRuns();
}

bool BookActions::RemoveLeaving() {
    const auto leaving = std::exchange(m_leaving, {});
    if (leaving.empty()) return true;
    std::vector<RecordId> records;
    for (const auto& [record, place] : leaving)
        records.push_back(record);
    std::string text;
    for (const RecordId record : m_view.Registered().RemoveSelected(records)) {
        const std::string done = Format("%s Order Cancelled ", std::string(m_cache[record].Number()).c_str());
        if (BookRun* run = RunOf(leaving.at(record)))
            run->TellDone(done);
        else
            text.append(text.empty() ? "" : "\n").append(done);
        if (!m_life.Across([&](Pass pass) { m_session.Log(pass, done); })) return false;
    }
    return text.empty() || m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, text); });
}

void BookActions::HandleChanged(const Answer& answer, RunKind kind) {
    const OrderPlace place =
        RecordAnswer(answer, kind, kind == RunKind::pause ? OrderEvent::paused : OrderEvent::resumed);
    if (RunOf(place)) return EndRuns();
    const std::string text = FieldText(answer.message, tag::userText);
    // Of a run it was told that they are in doubt; the orders of the day have what became of them.
    if (m_late.erase(place))
        m_session.LogLast(text);
    else if (!text.empty())
        m_view.ShowLast(text);
}

void BookActions::EndRuns(std::string text) {
    const bool isRecorded = m_session.record.IsKept();
    std::vector<std::string> refusals;
    bool isAny = false;
    for (auto run = m_runs.begin(); run != m_runs.end();) {
        if (!run->IsOver() || (m_sending && run == std::prev(m_runs.end()))) {
            ++run;
            continue;
        }
        isAny = true;
        if (const std::string summary = run->Summary(isRecorded); !summary.empty())
            text.append(text.empty() ? "" : "\n\n").append(summary);
        for (const BookRun::Row& row : run->Rows())
            if (!isRecorded && row.state == OrderState::refused) refusals.push_back(DescribeRefused(row));
        if (run->Kind() != RunKind::cancel)
            for (const OrderPlace place : run->InDoubt())
                m_late.insert(place);
        run = m_runs.erase(run);
    }
    if (isAny) m_view.ShowRun();
    for (const std::string& refusal : refusals)
        if (!m_life.Across([&](Pass pass) { m_session.Log(pass, refusal); })) return;
    if (!text.empty()) m_view.ShowLast(text);
}

void BookActions::Reset() {
    m_life.Renew();
    m_later.clear();
    m_leaving.clear();
    m_late.clear();
    m_asked = {};
    m_waitsForBox = false;
    if (!m_sending) m_runs.clear();
}

} // namespace planfold
