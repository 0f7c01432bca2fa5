// Which frequencies the server lets SIPs use, and how many instalments each must have at least.
#pragma once

#include "plugin/controls/DialogView.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

#include <string>
#include <vector>

namespace planfold {

// Asks the server. False when nothing was sent; the reason has been shown.
bool SendGetSipOperationMode(Pass pass, Session& session, RxControl* control, Notices& notices);

// What the answer means for a window: frequencies to append to its list, and whether the server's own
// periods hold (then the period is labelled and checked by them).
struct OperationModeAnswer {
    bool understood = false; // false: neither a list nor an error, nothing is to be done
    std::vector<std::string> frequencies;
    bool serverPeriods = false;
};

// Stores the mode and the minimum periods in the session.
OperationModeAnswer ReadOperationMode(Session& session, const Answer& answer);

// The frequencies that a form offers: asked for at each opening of its window, listed once.
class FrequencyList {
public:
    FrequencyList(Session& session, DialogView& view, RxControl* control)
        : m_session(session), m_view(view), m_control(control) {}

    void Ask(Pass pass);
    // Takes the answer in; `wanted` tells whether the form is one that lists frequencies. True when they were
    // listed.
    bool OnAnswer(const Answer& answer, bool wanted);
    // The form's words for periods that the server sets.
    static void ShowServerPeriods(DialogView& view);

private:
    Session& m_session;
    DialogView& m_view;
    RxControl* m_control;
    int m_open = 0;    // requests sent and not yet answered
    int m_earlier = 0; // of those, sent by windows before this one
    bool m_listed = false;
};

} // namespace planfold
