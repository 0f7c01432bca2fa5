// What the order entry window decides without being one: its first contents, what follows a change of a
// control, Submit, what an answer changes, and what comes back into the form.
#pragma once

#include "plugin/base/Lifetime.h"
#include "plugin/controls/DialogView.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderentry/FormNames.h"
#include "plugin/orderentry/KeptOrders.h"
#include "plugin/orderentry/Modification.h"
#include "plugin/orderentry/ModifyPlan.h"
#include "plugin/orderentry/OperationMode.h"
#include "plugin/orderentry/SipForm.h"
#include "sdk/RxControl.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace planfold {

// The order entry window as the code that decides sees it.
class OrderEntryView : public DialogView {
public:
    // False while another box is open. That one comes to the front, and OrderEntry hears when it is gone.
    virtual bool MayAsk() = 0;
    // A question with Yes and No, No being the default; true for Yes.
    virtual bool Ask(Pass pass, std::string_view question) = 0;
    // What the form says of the order in it. What alarms is drawn so; the words say it as well.
    virtual void ShowSummary(std::string_view text, bool alarms) = 0;
    // A clock that only goes forward.
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~OrderEntryView() = default;
};

class OrderEntry {
public:
    // The window's name, and under it the settings of its client search.
    static constexpr char kName[] = "Planfold Order Entry";

    // `control` may be null: every sending then fails with its own text.
    OrderEntry(Session& session, OrderEntryView& view, RxControl* control)
        : m_session(session), m_view(view), m_control(control), m_form(session, view, m_life),
          m_frequencies(session, view, control), m_names(session) {}

    // Fills a window that has just been made and asks the server for its operation mode. `customProducts`
    // is the comma-separated list of the settings file; it counts only for holders of the right.
    void Initialise(const LocalDateTime& now, std::string_view customProducts);

    // Fills the open form from a registration and locks all but value and period; Submit then changes that
    // registration. Until the window is made anew the form never places a new order again.
    void FillForModify(const SipRegistration& registration);
    bool FilledForModify() const { return m_modifying.has_value(); }
    // Whether the form is open for the registration of this number.
    bool Modifies(std::string_view number) const { return m_modifying && m_modifying->Number() == number; }
    // That registration is so now; anybody may have changed it.
    void OnRegistrationChanged(const SipRegistration& registration);

    // The user has chosen in this combo. False when the window has gone meanwhile.
    [[nodiscard]] bool OnChosen(int combo);
    void OnInvestTypeChanged();

    // Checks and sends what the form holds. Does nothing while an earlier press is still being worked on:
    // a question, the host's as well, lets the user press again.
    void Submit(const LocalDateTime& now);

    // The box is gone under which a question could not be asked: now it is, unless the form has changed since.
    void OnBoxGone(const LocalDateTime& now);

    // The next of the orders that were refused, into the form; what the dealer had typed there is kept in turn.
    // False when there is none, or when a modification has the form.
    bool BringBack();

    void OnResponse(void* message);

    // The planned dates of what the form holds now; no instalments while it is incomplete.
    Plan CurrentPlan() const;
    // Tells them in the form, with the names behind its codes. Called at each change of a control that they
    // depend on. False when the window has gone meanwhile.
    [[nodiscard]] bool ShowPlan();

    // Of the window and what it is open for.
    const Lifetime& Life() const { return m_life; }

private:
    // What a press of Submit led to; the text is for the user.
    struct Outcome {
        std::string text{};
        int focus = 0;     // the control to go on with
        bool sent = false; // else nothing was
        // What was sent, or tried to be.
        std::optional<SipOrderForm> form{};
    };

    // False when the window has gone meanwhile; what is to be told is told all the same.
    [[nodiscard]] bool CheckAndSend(const LocalDateTime& now, Outcome& outcome);
    // What is to be sent: checked, agreed to and recorded.
    struct Agreed {
        const SipOrderForm& form;
        const sSipOrderData& order;
        const std::optional<std::string>& orderId;
        const RecordedOrder& recorded;
    };
    void Send(Pass pass, const Agreed& agreed, Outcome& outcome);
    [[nodiscard]] bool RecordSending(const SipOrderForm& form, const RecordedOrder& recorded);
    // What the dealer has to agree to before the order goes out; true when he did, in the same window. The
    // control says where he goes on otherwise.
    [[nodiscard]] bool Confirm(const SipOrderForm& form, int& focus);
    [[nodiscard]] bool ConfirmChanged(const SipOrderForm& form);
    // Whether a question can be asked; otherwise it is once the open box is gone.
    bool MayAsk(const SipOrderForm& form);
    void ClearSent(const Outcome& outcome);
    // Where nothing comes after it.
    void ShowPlanLast() { static_cast<void>(ShowPlan()); }
    SipOrderForm ReadForm() const;
    // Fills the window that has just been made; false when it has gone meanwhile.
    [[nodiscard]] bool Fill(const LocalDateTime& now, std::string_view customProducts);
    void PrepareClient(Pass pass);
    ModifiedPlan ReadModification() const;
    std::string DescribeForm() const;
    void HandleOperationMode(const Answer& answer);
    void HandlePlaced(const Answer& answer);
    void HandleModified(const Answer& answer);
    void ShowUserText(Pass pass, const Answer& answer);
    // False when a host callback took the window away.
    [[nodiscard]] bool FillIn(const SipOrderForm& order);
    void FillInBesideScrip(const SipOrderForm& order);
    // False when the registration's date cannot be read, and the filling stops.
    bool FillFrom(const SipRegistration& registration, bool serverPeriods);

    static const AnswerHandler<OrderEntry> kAnswers[];

    Session& m_session;
    OrderEntryView& m_view;
    RxControl* m_control;
    Lifetime m_life{[this] { return m_view.IsOpen() && !m_session.Ended(); }};
    SipForm m_form;
    FrequencyList m_frequencies;
    FormNames m_names;
    bool m_submitting = false;
    // The registration that the form was filled from.
    std::optional<Modification> m_modifying;
    SentModifications m_sentModifications;
    KeptOrders m_kept;
    // Submitted while no question could be asked about it.
    std::optional<SipOrderForm> m_asksLater;
    // What stands in the form without the dealer's doing, and whether it is an order that was brought back.
    SipOrderForm m_untouched;
    bool m_broughtBack = false;
    std::string m_frequencyToShow; // of the order that was brought back, once the list has it
};

} // namespace planfold
