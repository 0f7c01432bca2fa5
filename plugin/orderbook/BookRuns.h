// The runs over rows of the registered book: what the dealer has agreed to is sent, each answer is recorded and
// shown, and what is asked about many rows is told once, when the last of them is answered.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/messaging/Answer.h"
#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderbook/BookView.h"
#include "plugin/orderbook/OrderCache.h"
#include "plugin/orderbook/RunSender.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/RxControl.h"

#include <list>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace planfold {

class BookRuns final : public LongRun, private RecordListener, private RunRequests {
public:
    // `life` is that of the records and their window.
    BookRuns(Session& session, BookView& view, OrderCache& cache, RxControl* control, Lifetime& life)
        : m_session(session), m_view(view), m_cache(cache), m_control(control), m_life(life) {
        m_session.record.AddListener(*this);
    }
    BookRuns(const BookRuns&) = delete;
    BookRuns& operator=(const BookRuns&) = delete;
    ~BookRuns() { m_session.record.RemoveListener(*this); }

    // Only while none is sending. `reason` is that of a cancellation.
    void Begin(RunKind kind, std::span<const RecordId> records, std::string reason);
    // Whether one still has requests to send: no other begins.
    bool IsSending() const { return !m_runs.empty() && !m_runs.back().AllTried(); }
    // The host may have been let in by one that is sending.
    bool IsWithinPortion() const { return m_sender.IsSending(); }
    // No box is open any more.
    void OnBoxGone() { m_sender.OnBoxGone(); }

    // A run is under way until its last request is answered, or nobody can tell.
    bool IsUnderWay() const override { return !m_runs.empty(); }
    void Continue() override;
    void Stop() override;
    bool CanStop() const override { return IsSending(); }
    std::string Progress() const override { return Shown().Progress(); }
    std::size_t Done() const override { return Shown().Tried(); }
    std::size_t Total() const override { return Shown().Total(); }

    void HandleCancelled(const Answer& answer);
    // Of any run but a cancellation, and of a single registration.
    void HandleChanged(const Answer& answer, RunKind kind);
    // The stream says that it is cancelled. True when the answer has said so already: then its row leaves the
    // book with the others that were answered.
    bool OnStreamedCancelled(RecordId record);

    // What is said of a registration that leaves the registered book.
    std::string CancelledText(RecordId record) const;

    // The records or their window are gone, and with them every run.
    void Reset();

private:
    // The one that the dealer sees.
    const BookRun& Shown() const { return IsSending() ? m_runs.back() : m_runs.front(); }
    void SendPortion(std::size_t most);
    std::optional<RecordedOrder> Recorded(const BookRun& run, std::size_t row) override;
    bool SendOne(Pass pass, BookRun& run, std::size_t row) override;
    // Whose answer it is, which is written down.
    OrderPlace RecordAnswer(const Answer& answer, RunKind kind, OrderEvent event);
    BookRun* RunOf(OrderPlace place);
    void OnOrder(OrderPlace place) override;
    // Takes answered cancellations out of the book in one step. False when the window has gone meanwhile.
    [[nodiscard]] bool RemoveLeaving();
    bool IsEnding(const BookRun& run) const;
    // Ends what is over and tells of it, once its answered rows have left the book.
    void EndRuns();

    Session& m_session;
    BookView& m_view;
    OrderCache& m_cache;
    RxControl* m_control;
    Lifetime& m_life;
    std::list<BookRun> m_runs; // only the last one still sends
    RunSender m_sender{m_session, m_view, m_life, *this};
    std::vector<std::optional<std::string>> m_orderIds; // of the rows of the one that sends
    struct Leaving {
        OrderPlace place;
        bool isStreamed = false;
    };
    std::map<RecordId, Leaving> m_leaving; // whose cancellation is answered
    std::set<OrderPlace> m_late;           // told as in doubt when their run ended
};

// Of any kind but a cancellation.
PauseOrResume ChangeOf(RunKind kind);

} // namespace planfold
