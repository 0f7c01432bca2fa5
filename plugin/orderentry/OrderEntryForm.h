// The order entry form and what it says of the order in it: its first contents, what follows a change of a
// control, and what comes into it from a registration or from an order that was refused.
#pragma once

#include "plugin/controls/DialogView.h"
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
    // What it says has changed; OrderEntryForm::ShowPlan is called once nothing else is under way.
    virtual void ShowPlanSoon() = 0;
    // A clock that only goes forward.
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~OrderEntryView() = default;
};

// Where the host is let in, false says that the window has gone meanwhile.
class OrderEntryForm {
public:
    // The window has this name, and under it the settings of its client search.
    static constexpr char kName[] = "Planfold Order Entry";

    // `life` is that of the window, `modifying` what it is open for, `kept` the orders that it tells of.
    OrderEntryForm(Session& session, OrderEntryView& view, RxControl* control, const Lifetime& life,
                   const std::optional<Modification>& modifying, const KeptOrders& kept)
        : m_session(session), m_view(view), m_life(life), m_modifying(modifying), m_kept(kept),
          m_form(session, view, life), m_frequencies(session, view, control), m_names(session) {}

    // Fills a window that has just been made.
    [[nodiscard]] bool Fill(const LocalDateTime& now, std::string_view customProducts);
    // Fills it from a registration, and locks all but value and period. False also when the registration's date
    // cannot be read: then the filling stops.
    [[nodiscard]] bool FillFrom(const SipRegistration& registration, bool serverPeriods);
    // Fills it from an order that was refused. False when the window has gone before the form had all of it.
    [[nodiscard]] bool BringBack(const SipOrderForm& order);
    // Takes away the value and period that were submitted.
    void ClearSubmitted(const SipOrderForm& submitted);

    void AskFrequencies(Pass pass) { m_frequencies.Ask(pass); }
    void OnOperationMode(const Answer& answer);
    // The user has chosen in this combo.
    [[nodiscard]] bool OnChosen(int combo);
    void OnInvestTypeChanged();

    SipOrderForm Read() const;
    // Whether the dealer has typed something, or an order that was brought back stands there.
    bool IsTouched() const { return m_broughtBack || Read() != m_untouched; }
    int ClientControl() const { return m_form.ClientControl(); }

    // The planned dates of what the form holds now; no instalments while it is incomplete.
    Plan CurrentPlan() const;
    // Tells them in the form, with the names behind its codes. Called at each change of a control that they
    // depend on.
    [[nodiscard]] bool ShowPlan();

private:
    void PrepareClient(Pass pass);
    [[nodiscard]] bool FillIn(const SipOrderForm& order);
    void FillInBesideScrip(const SipOrderForm& order);
    ModifiedPlan ReadModification() const;
    std::string DescribeForm() const;

    Session& m_session;
    OrderEntryView& m_view;
    const Lifetime& m_life;
    const std::optional<Modification>& m_modifying;
    const KeptOrders& m_kept;
    SipForm m_form;
    FrequencyList m_frequencies;
    FormNames m_names;
    // What stands in the form without the dealer's doing, and whether it is an order that was brought back.
    SipOrderForm m_untouched;
    bool m_broughtBack = false;
    std::string m_frequencyToShow; // of the order that was brought back, once the list has it
};

} // namespace planfold
