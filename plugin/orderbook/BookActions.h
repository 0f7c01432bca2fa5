// What the dealer does with rows of the registered book: cancel, pause, resume, open for modification. Refused
// with a reason where the status forbids it, asked before where it cannot be undone, and never done twice.
#pragma once

#include "plugin/orderbook/BookRuns.h"

#include <string>
#include <string_view>
#include <vector>

namespace planfold {

class BookActions final {
public:
    // `life` is that of the records and their window.
    BookActions(Session& session, BookView& view, OrderCache& cache, RxControl* control, Lifetime& life,
                BookRuns& runs)
        : m_session(session), m_view(view), m_cache(cache), m_control(control), m_life(life), m_runs(runs) {}

    // Cancels every selected row, after a question and a reason.
    void Cancel();
    // These three work on the first selected row.
    void Modify();
    void Pause() { Change(PauseOrResume::pause); }
    void Resume() { Change(PauseOrResume::resume); }
    // These two work on every selected row whose status allows it, after a question with exact numbers.
    void PauseSelected() { ChangeSelected(PauseOrResume::pause); }
    void ResumeSelected() { ChangeSelected(PauseOrResume::resume); }

    // No box is open any more: what has waited longest for its question is asked about. False when more waits.
    bool OnBoxGone();

    // The records or their window are gone, and with them every question and run.
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
    // The question may be asked. True for Yes, while the window is there.
    bool AskNow(std::string_view question);
    void ChangeOne(PauseOrResume which, const std::string& number);

    Session& m_session;
    BookView& m_view;
    OrderCache& m_cache;
    RxControl* m_control;
    Lifetime& m_life;
    BookRuns& m_runs;
    std::vector<Wish> m_later; // that no question could be asked about
    Wish m_asked;              // whose question is open
    bool m_asking = false;
};

} // namespace planfold
