#include "plugin/orderbook/BookRuns.h"

#include "plugin/base/Text.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr std::size_t kFewRows = 16;

std::string_view RequestNameOf(RunKind kind) {
    return kind == RunKind::cancel ? kCancelSipOrder : RequestNameOf(ChangeOf(kind));
}

} // namespace

PauseOrResume ChangeOf(RunKind kind) {
    return kind == RunKind::pause ? PauseOrResume::pause : PauseOrResume::resume;
}

void BookRuns::Begin(RunKind kind, std::span<const RecordId> records, std::string reason) {
    std::vector<BookRun::Row> rows;
    for (const RecordId record : records)
        rows.push_back({record, std::string(m_cache[record].Number()),
                        std::string(m_cache[record].Text(OrderField::account))});
    m_runs.emplace_back(kind, std::move(rows), std::move(reason));
    m_orderIds.assign(records.size(), std::nullopt);
    m_sender.Begin();
    SendPortion(RunSender::kFirstPortion);
    if (IsUnderWay()) m_view.ShowRun();
}

void BookRuns::Continue() {
    SendPortion(RunSender::kPortion);
    if (!m_sender.IsSending() && RemoveLeaving()) EndRuns();
}

void BookRuns::Stop() {
    if (!IsSending()) return;
    m_runs.back().Stop();
    if (!m_sender.IsSending()) EndRuns();
}

void BookRuns::SendPortion(std::size_t most) {
    if (!IsSending() || m_sender.IsSending()) return;
    if (m_sender.SendPortion(m_runs.back(), most))
        EndRuns();
    else
        m_runs.clear();
}

std::optional<RecordedOrder> BookRuns::Recorded(const BookRun& run, std::size_t row) {
    const std::string number = run.Rows()[row].number, client = run.Rows()[row].client;
    if (run.Kind() == RunKind::cancel) {
        auto orderId = m_life.Across([&](Pass pass) { return m_session.FreshIdentifier(pass); });
        if (!orderId) return std::nullopt;
        m_orderIds[row] = std::move(*orderId);
    }
    return RecordedChange(m_session, RequestNameOf(run.Kind()), number, {}, {}, m_orderIds[row].value_or(""),
                          {}, client);
}

bool BookRuns::SendOne(Pass pass, BookRun& run, std::size_t row) {
    const RecordId id = run.Rows()[row].record;
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
            sent = SendCancelSipOrder(pass, m_session, m_control, run.Failures(), record, m_orderIds[row]);
        }))
        m_view.Registered().Repaint(id);
    return sent;
}

BookRun* BookRuns::RunOf(OrderPlace place) {
    const auto run = std::ranges::find_if(m_runs, [&](const BookRun& one) { return one.Has(place); });
    return run == m_runs.end() ? nullptr : &*run;
}

void BookRuns::OnOrder(OrderPlace place) {
    for (BookRun& run : m_runs)
        run.Settle(place, m_session.record.Ledger()[place]);
}

// An answer that names no registration is to what was sent first, since the server answers in turn.
OrderPlace BookRuns::RecordAnswer(const Answer& answer, RunKind kind, OrderEvent event) {
    OrderPlace place = kNoOrder;
    if (const std::string number = ChangedNumber(answer); !number.empty())
        place = m_session.record.Ledger().Find(RecordedChange(m_session, RequestNameOf(kind), number).Texts());
    else
        for (BookRun& run : m_runs)
            if (run.Kind() == kind && place == kNoOrder) place = run.FirstWaiting();
    RecordOutcome(m_session, place, event, answer);
    return place;
}

void BookRuns::HandleCancelled(const Answer& answer) {
    const OrderPlace place = RecordAnswer(answer, RunKind::cancel, OrderEvent::cancelled);
    const auto number = FieldView(answer.message, tag::echoedNumber);
    const RecordId record = number ? m_cache.Find(*number) : kNoRecord;
    if (record != kNoRecord) m_leaving.emplace(record, Leaving{place});
    // The answers of a burst are one step, but few rows go at once, and the last of them waits for none.
    const BookRun* run = RunOf(place);
    if ((run && run->Total() > kFewRows) || RemoveLeaving()) EndRuns();
}

bool BookRuns::OnStreamedCancelled(RecordId record) {
    const auto leaving = m_leaving.find(record);
    if (leaving == m_leaving.end()) return false;
    leaving->second.isStreamed = true;
    return true;
}

std::string BookRuns::CancelledText(RecordId record) const {
    return Format("%s Order Cancelled ", std::string(m_cache[record].Number()).c_str());
}

bool BookRuns::RemoveLeaving() {
    const auto leaving = std::exchange(m_leaving, {});
    if (leaving.empty()) return true;
    std::vector<RecordId> records;
    records.reserve(leaving.size());
    for (const auto& [record, left] : leaving)
        records.push_back(record);
    const auto log = [&](const std::string& done) {
        return m_life.Across([&](Pass pass) { m_session.Log(pass, done); });
    };
    std::string text;
    for (const RecordId record : m_view.Registered().RemoveSelected(records)) {
        const std::string done = CancelledText(record);
        if (BookRun* run = RunOf(leaving.at(record).place))
            run->TellDone(done);
        else
            text.append(text.empty() ? "" : "\n").append(done);
        if (!log(done)) return false;
    }
    // What is selected no longer goes by its update, which has been waiting here.
    for (const auto& [record, left] : leaving) {
        if (!left.isStreamed || !m_view.Registered().Contains(record)) continue;
        m_view.Registered().Remove(record);
        if (!log(CancelledText(record))) return false;
    }
    return text.empty() || m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, text); });
}

void BookRuns::HandleChanged(const Answer& answer, RunKind kind) {
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

bool BookRuns::IsEnding(const BookRun& run) const {
    return run.IsOver() && !(m_sender.IsSending() && &run == &m_runs.back());
}

void BookRuns::EndRuns() {
    const auto isEnding = [&](const BookRun& run) { return IsEnding(run); };
    if (std::ranges::none_of(m_runs, isEnding) || !RemoveLeaving()) return;
    std::string text;
    const bool isRecorded = m_session.record.IsKept();
    std::vector<std::string> refusals;
    for (auto run = m_runs.begin(); run != m_runs.end();) {
        if (!IsEnding(*run)) {
            ++run;
            continue;
        }
        if (const std::string summary = run->Summary(isRecorded); !summary.empty())
            text.append(text.empty() ? "" : "\n\n").append(summary);
        for (const BookRun::Row& row : run->Rows())
            if (!isRecorded && row.state == OrderState::refused) refusals.push_back(DescribeRefused(row));
        if (run->Kind() != RunKind::cancel)
            for (const OrderPlace place : run->InDoubt())
                m_late.insert(place);
        run = m_runs.erase(run);
    }
    m_view.ShowRun();
    for (const std::string& refusal : refusals)
        if (!m_life.Across([&](Pass pass) { m_session.Log(pass, refusal); })) return;
    if (!text.empty()) m_view.ShowLast(text);
}

void BookRuns::Reset() {
    m_leaving.clear();
    m_late.clear();
    m_sender.Begin();
    if (!m_sender.IsSending()) m_runs.clear();
}

} // namespace planfold
