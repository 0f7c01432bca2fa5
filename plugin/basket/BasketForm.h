// The form for one row of the basket: filled first, read into a row, and filled from a row.
#pragma once

#include "plugin/basket/BasketLine.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/orderentry/OperationMode.h"
#include "plugin/orderentry/SipForm.h"

#include <optional>
#include <string>
#include <string_view>

namespace planfold {

// An order as the form gave it.
struct FormOrder {
    sSipOrderData data;
    std::string series;
    std::string symbol;
    std::string startDateText; // as the picker shows it

    // Views into it.
    BasketTexts Texts() const;
};

class BasketForm {
public:
    BasketForm(Session& session, DialogView& view, RxControl* control)
        : m_session(session), m_view(view), m_form(session, view), m_frequencies(session, view, control) {}

    // For a window that has just been made.
    void Fill(const LocalDateTime& now, std::string_view customProducts);
    void AskFrequencies() { m_frequencies.Ask(); }
    void OnOperationMode(const Answer& answer) { m_frequencies.OnAnswer(answer, true); }

    void OnExchangeChanged() { m_form.RefreshScrips(ScripLevel::exchange); }
    void OnSeriesChanged() { m_form.RefreshScrips(ScripLevel::series); }
    void OnInvestTypeChanged();

    // Why the order is refused, or none when `order` holds it.
    std::optional<Refusal> Read(const LocalDateTime& now, FormOrder& order) const;
    // Returns how many fields cannot be shown; their controls are left empty.
    int Show(const BasketTexts& texts);
    void ClearAfterModify();

    // What the lines of a file are checked against: what the form offers and the server demands.
    BasketRules Rules(const LocalDateTime& now) const;

private:
    bool ShowChoice(int combo, std::string_view text);
    bool ShowStartDate(std::string_view text);
    bool ShowClient(std::string_view client);

    Session& m_session;
    DialogView& m_view;
    SipForm m_form;
    FrequencyList m_frequencies;
};

} // namespace planfold
