// The days of the month on which instalments must not execute: what the window's lists offer, what is checked
// and sent, and what an answer shows.
#pragma once

#include "plugin/controls/DialogView.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

namespace planfold {

class RestrictedDates {
public:
    // `control` may be null: every sending then fails with its own text.
    RestrictedDates(Session& session, DialogView& view, RxControl* control)
        : m_session(session), m_view(view), m_control(control) {}

    // Fills the lists of a window that has just been made; none has a selection.
    void Initialise(const LocalDateTime& now);

    // Checks and sends the chosen range. What the server was known to hold before is then shown no longer.
    void Set();
    // Asks the server for the range that it holds.
    void Get();

    void OnResponse(void* message);

private:
    // Without an answer nothing is shown.
    void ShowHeld(const Answer* answer);
    void HandleSet(const Answer& answer);
    void HandleGet(const Answer& answer);

    // What the server holds, which whoever foretells runs goes by.
    void Know(const RestrictedRange& range);

    static const AnswerHandler<RestrictedDates> kAnswers[];

    Session& m_session;
    DialogView& m_view;
    Lifetime m_life{[this] { return m_view.IsOpen() && !m_session.Ended(); }}; // of the window
    RxControl* m_control;
    RestrictedRange m_asked; // for, last
};

} // namespace planfold
