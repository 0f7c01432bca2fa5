// What the order entry window decides without being one: Submit, what is asked before an order goes out, what
// an answer changes, and what its form is open for.
#pragma once

#include "plugin/base/Lifetime.h"
#include "plugin/messaging/Answer.h"
#include "plugin/orderentry/OrderEntryForm.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace planfold {

class OrderEntry {
public:
    // `control` may be null: every sending then fails with its own text.
    OrderEntry(Session& session, OrderEntryView& view, RxControl* control)
        : m_session(session), m_view(view), m_control(control),
          m_form(session, view, control, m_life, m_modifying, m_kept) {}

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

    // Checks and sends what the form holds. Does nothing while an earlier press is still being worked on:
    // a question, the host's as well, lets the user press again.
    void Submit(const LocalDateTime& now);

    // The box is gone under which a question could not be asked: now it is, unless the form has changed since.
    void OnBoxGone(const LocalDateTime& now);

    // Brings the next of the orders that were refused into the form; what the dealer had typed there is kept in
    // turn.
    // False when there is none, or when a modification has the form.
    bool BringBack();

    void OnResponse(void* message);

    // It lasts as long as the window stays open for the same order.
    const Lifetime& Life() const { return m_life; }
    OrderEntryForm& Form() { return m_form; }

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
        OrderPlace place; // in the order record
    };
    void Send(Pass pass, const Agreed& agreed, Outcome& outcome);
    std::optional<OrderPlace> RecordSending(const SipOrderForm& form, const RecordedOrder& recorded);
    // What the dealer has to agree to before the order goes out; true when he did, in the same window. The
    // control says where he goes on otherwise.
    [[nodiscard]] bool Confirm(const SipOrderForm& form, const sSipOrderData& order, int& focus);
    [[nodiscard]] bool ConfirmClient(const SipOrderForm& form, int& focus);
    [[nodiscard]] bool ConfirmLike(const SipOrderForm& form, const sSipOrderData& order);
    [[nodiscard]] bool ConfirmChanged(const SipOrderForm& form);
    // Whether a question can be asked; otherwise it is once the open box is gone.
    bool MayAsk(const SipOrderForm& form);
    // For the end of a function: nothing comes after it that a closed window could hurt.
    void ShowPlanLast() { static_cast<void>(m_form.ShowPlan()); }
    SipOrderForm ReadForm() const { return m_form.Read(); }
    void HandleOperationMode(const Answer& answer) { m_form.OnOperationMode(answer); }
    void HandlePlaced(const Answer& answer);
    void HandleModified(const Answer& answer);
    void ShowUserText(Pass pass, const Answer& answer);

    static const AnswerHandler<OrderEntry> kAnswers[];

    Session& m_session;
    OrderEntryView& m_view;
    RxControl* m_control;
    Lifetime m_life{[this] { return m_view.IsOpen() && !m_session.Ended(); }};
    // The registration that the form was filled from.
    std::optional<Modification> m_modifying;
    KeptOrders m_kept;
    OrderEntryForm m_form;
    bool m_submitting = false;
    SentModifications m_sentModifications;
    // Submitted while no question could be asked about it.
    std::optional<SipOrderForm> m_asksLater;
};

} // namespace planfold
