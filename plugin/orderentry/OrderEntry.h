// What the order entry window decides without being one: its first contents, what follows a change of a
// control, Submit, and what an answer changes.
#pragma once

#include "plugin/controls/DialogView.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderentry/ModifyOrder.h"
#include "plugin/orderentry/OperationMode.h"
#include "plugin/orderentry/PlannedDates.h"
#include "plugin/orderentry/SipForm.h"
#include "sdk/RxControl.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace planfold {

class OrderEntry {
public:
    // The window's name, and under it the settings of its client search.
    static constexpr char kName[] = "Planfold Order Entry";

    // `control` may be null: every sending then fails with its own text.
    OrderEntry(Session& session, DialogView& view, RxControl* control)
        : m_session(session), m_view(view), m_control(control), m_form(session, view),
          m_frequencies(session, view, control) {}

    // Fills a window that has just been made and asks the server for its operation mode. `customProducts`
    // is the comma-separated list of the settings file; it counts only for holders of the right.
    void Initialise(const LocalDateTime& now, std::string_view customProducts);

    // Fills the open form from a registration and locks all but value and period; Submit then changes that
    // registration. Until the window is made anew the form never places a new order again.
    void FillForModify(const SipRegistration& registration);
    bool FilledForModify() const { return m_modifying.has_value(); }

    void OnExchangeChanged() { m_form.RefreshScrips(ScripLevel::exchange); }
    void OnSeriesChanged() { m_form.RefreshScrips(ScripLevel::series); }
    void OnInvestTypeChanged();

    // Checks and sends what the form holds. Does nothing while an earlier press is still being worked on:
    // the host's question about a cautionary order lets the user press again.
    void Submit(const LocalDateTime& now);

    void OnResponse(void* message);

    // The planned dates of what the form holds now; no instalments while it is incomplete.
    Plan CurrentPlan() const;
    // Tells them in the form. Called at each change of a control that they depend on.
    void ShowPlan();

private:
    // What a press of Submit led to; the text is for the user.
    struct Outcome {
        std::string text{};
        bool focusValue = false;
        // What was sent, or tried to be.
        std::optional<SipOrderForm> form{};
    };

    // Whether the window of that opening is still there; a host callback may have closed it, or opened another.
    bool StillOpen(int opening) const;
    Outcome CheckAndSend(const LocalDateTime& now);
    SipOrderForm ReadForm() const;
    void PrepareClient();
    void HandleOperationMode(const Answer& answer);
    void HandleUserText(const Answer& answer);
    void HandleModified(const Answer& answer);
    // Empties the combo but for the text, and locks it.
    void Fix(int combo, std::string_view text);
    void FillClient(std::string_view client);

    static const AnswerHandler<OrderEntry> kAnswers[];

    Session& m_session;
    DialogView& m_view;
    RxControl* m_control;
    SipForm m_form;
    FrequencyList m_frequencies;
    bool m_submitting = false;
    int m_openings = 0; // of the window
    // The registration that the form was filled from; its number is empty when the filling stopped half-way.
    std::optional<std::string> m_modifying;
    std::deque<std::string> m_sentModifications; // not yet answered
};

} // namespace planfold
