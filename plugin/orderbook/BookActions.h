// What the dealer does with rows of the registered book: cancel, pause, resume, open for modification. Refused
// with a reason where the status forbids it, asked before where it cannot be undone, and never done twice.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/messaging/Answer.h"
#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderbook/BookRun.h"
#include "plugin/orderbook/BookView.h"
#include "plugin/orderbook/OrderCache.h"
#include "sdk/RxControl.h"

#include <optional>
#include <span>

namespace planfold {

class BookActions : public LongRun {
public:
    // `life` is that of the records and their window.
    BookActions(Session& session, BookView& view, OrderCache& cache, RxControl* control, Lifetime& life)
        : m_session(session), m_view(view), m_cache(cache), m_control(control), m_life(life) {}

    // Cancels every selected row, after a question and a reason.
    void Cancel();
    // These three work on the first selected row.
    void Modify();
    void Pause() { Change(PauseOrResume::pause); }
    void Resume() { Change(PauseOrResume::resume); }
    // These two work on every selected row whose status allows it, after a question with exact numbers.
    void PauseSelected() { ChangeSelected(PauseOrResume::pause); }
    void ResumeSelected() { ChangeSelected(PauseOrResume::resume); }

    bool IsUnderWay() const override { return m_run.has_value(); }
    void Continue() override;
    void Stop() override;
    std::string Progress() const override { return m_run->Progress(); }
    std::size_t Done() const override { return m_run->Tried(); }
    std::size_t Total() const override { return m_run->Total(); }

    void HandleCancelled(const Answer& answer);
    void HandlePaused(const Answer& answer) { HandleChanged(answer, RunKind::pause); }
    void HandleResumed(const Answer& answer) { HandleChanged(answer, RunKind::resume); }

    // The records or their window are gone, and with them every run and question.
    void Reset();

private:
    const sOrderinfo* FirstSelected() const;
    void Change(PauseOrResume which);
    void ChangeSelected(PauseOrResume which);
    void Begin(RunKind kind, std::vector<RecordId> records, std::string reason);
    void SendPortion(std::size_t most);
    void SendRecorded(std::size_t most);
    bool SendOne(Pass pass, RecordId record, const std::optional<std::string>& orderId);
    void ChangeOne(PauseOrResume which, const std::string& number);
    // Their places in the record when they may go out: they are on the disk, or the dealer agrees that they are
    // not.
    std::optional<std::vector<OrderPlace>> RecordSending(std::span<const RecordedOrder> requests);
    void RecordAnswer(const Answer& answer, std::string_view request, OrderEvent event);
    bool Finished() const;
    void EndRun();
    void HandleChanged(const Answer& answer, RunKind kind);

    Session& m_session;
    BookView& m_view;
    OrderCache& m_cache;
    RxControl* m_control;
    Lifetime& m_life;
    std::optional<BookRun> m_run;
    std::string m_reason;
    int m_waits = 0; // since the last answer
    bool m_asking = false;
    bool m_sending = false;
    bool m_withoutRecord = false; // the dealer agreed for this run
};

} // namespace planfold
