// What the dealer does with rows of the registered book: cancel, pause, resume, open for modification. Refused
// with a reason where the status forbids it, asked before where it cannot be undone, and never done twice. What
// is asked about many rows is told once, when the last of them is answered.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/messaging/Answer.h"
#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderbook/BookRun.h"
#include "plugin/orderbook/BookView.h"
#include "plugin/orderbook/OrderCache.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/RxControl.h"

#include <list>
#include <map>
#include <optional>
#include <set>
#include <span>

namespace planfold {

class BookActions : public LongRun, private RecordListener {
public:
    // `life` is that of the records and their window.
    BookActions(Session& session, BookView& view, OrderCache& cache, RxControl* control, Lifetime& life)
        : m_session(session), m_view(view), m_cache(cache), m_control(control), m_life(life) {
        m_session.record.AddListener(*this);
    }
    BookActions(const BookActions&) = delete;
    BookActions& operator=(const BookActions&) = delete;
    ~BookActions() { m_session.record.RemoveListener(*this); }

    // Cancels every selected row, after a question and a reason.
    void Cancel();
    // These three work on the first selected row.
    void Modify();
    void Pause() { Change(PauseOrResume::pause); }
    void Resume() { Change(PauseOrResume::resume); }
    // These two work on every selected row whose status allows it, after a question with exact numbers.
    void PauseSelected() { ChangeSelected(PauseOrResume::pause); }
    void ResumeSelected() { ChangeSelected(PauseOrResume::resume); }

    // A run is under way until its last request is answered, or nobody can tell.
    bool IsUnderWay() const override { return !m_runs.empty(); }
    void Continue() override;
    void Stop() override;
    bool CanStop() const override { return IsSending(); }
    std::string Progress() const override { return Shown().Progress(); }
    std::size_t Done() const override { return Shown().Tried(); }
    std::size_t Total() const override { return Shown().Total(); }

    void HandleCancelled(const Answer& answer);
    void HandlePaused(const Answer& answer) { HandleChanged(answer, RunKind::pause); }
    void HandleResumed(const Answer& answer) { HandleChanged(answer, RunKind::resume); }
    // Whether the answer to its cancellation has come, and its row leaves the book with the next of them.
    bool IsLeaving(RecordId record) const { return m_leaving.contains(record); }
    // No box is open any more: what has waited longest for its question is asked about. False when more waits.
    bool OnBoxGone();

    // The records or their window are gone, and with them every run and question.
    void Reset();

private:
    // What the dealer has asked for, of the rows that were selected then.
    struct Wish {
        RunKind kind{};
        std::vector<std::string> numbers{};
        bool isOfOne = false; // without a question
    };

    const sOrderinfo* FirstSelected() const;
    Wish WishFor(RunKind kind) const;
    void Change(PauseOrResume which);
    void ChangeSelected(PauseOrResume which);
    // Asks about it now, or once no box is open.
    void Ask(const Wish& wish);
    [[nodiscard]] bool MayAsk(const Wish& wish);
    void AskToCancel(const Wish& wish);
    void AskToChange(const Wish& wish);
    // Those of the wish's rows that still stand in the registered book.
    std::vector<RecordId> Standing(const Wish& wish);
    // Whether a run still has requests to send, which is told: nothing else begins.
    bool TellsBusy();
    bool IsSending() const { return !m_runs.empty() && !m_runs.back().AllTried(); }
    // The one that the dealer sees.
    const BookRun& Shown() const { return IsSending() ? m_runs.back() : m_runs.front(); }
    void Begin(RunKind kind, std::span<const RecordId> records, std::string reason);
    void SendPortion(std::size_t most);
    void SendRecorded(BookRun& run, std::size_t most);
    bool SendOne(Pass pass, BookRun& run, RecordId record, const std::optional<std::string>& orderId);
    void ChangeOne(PauseOrResume which, const std::string& number);
    // Their places in the record when they may go out: they are on the disk, or the dealer agrees that they are
    // not.
    std::optional<std::vector<OrderPlace>> RecordSending(std::span<const RecordedOrder> requests);
    // Whose answer it is, which is written down.
    OrderPlace RecordAnswer(const Answer& answer, RunKind kind, OrderEvent event);
    BookRun* RunOf(OrderPlace place);
    void OnOrder(OrderPlace place) override;
    void HandleChanged(const Answer& answer, RunKind kind);
    // Takes answered cancellations out of the book in one step. False when the window has gone meanwhile.
    [[nodiscard]] bool RemoveLeaving();
    // Ends what is over, and tells of it behind `text`.
    void EndRuns(std::string text = {});

    Session& m_session;
    BookView& m_view;
    OrderCache& m_cache;
    RxControl* m_control;
    Lifetime& m_life;
    std::list<BookRun> m_runs; // only the last one still sends
    std::vector<Wish> m_later; // that no question could be asked about
    Wish m_asked;              // whose question is open
    std::map<RecordId, OrderPlace> m_leaving;
    std::set<OrderPlace> m_late; // told as in doubt when their run ended
    bool m_asking = false;
    bool m_sending = false;
    bool m_waitsForBox = false;   // a run that has to ask before its next portion
    bool m_withoutRecord = false; // the dealer agreed for this run
};

} // namespace planfold
