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

    // The texts are views into this order.
    BasketTexts Texts() const;
};

class BasketForm {
public:
    // `life` is that of the window.
    BasketForm(Session& session, DialogView& view, RxControl* control, const Lifetime& life)
        : m_session(session), m_view(view), m_life(life), m_form(session, view, life),
          m_frequencies(session, view, control) {}

    // For a window that has just been made; false when it has gone meanwhile.
    [[nodiscard]] bool Fill(const LocalDateTime& now, std::string_view customProducts);
    void AskFrequencies(Pass pass) { m_frequencies.Ask(pass); }
    void OnOperationMode(const Answer& answer);

    // The user has chosen in this combo.
    void OnChosen(int combo);
    void OnInvestTypeChanged();

    SipOrderForm Shown() const;
    // Why the order is refused, or none when `order` holds it.
    std::optional<Refusal> Read(Pass pass, const LocalDateTime& now, FormOrder& order) const;
    // Returns how many fields cannot be shown. Their controls are left empty; the date, which cannot be, is
    // then one that Read refuses.
    [[nodiscard]] int Show(Pass pass, const BasketTexts& texts, const LocalDateTime& now);
    // The same for a row of the list, whose scrip counts and not what it is called.
    [[nodiscard]] int ShowRow(Pass pass, const BasketTexts& texts, const LocalDateTime& now);
    void ClearAfterModify();

    // What the lines of a file are checked against: what the form offers and the server demands.
    BasketRules Rules(const LocalDateTime& now) const;
    // For orders whose periods were checked before.
    BasketRules RulesOfUnsent(const LocalDateTime& now) const;

private:
    int ValueEdit() const;
    bool ShowNumber(int edit, const std::optional<std::string>& text);
    bool ShowStartDate(std::string_view text, const LocalDateTime& now);
    bool ShowClient(std::string_view client);

    Session& m_session;
    DialogView& m_view;
    const Lifetime& m_life;
    SipForm m_form;
    FrequencyList m_frequencies;
    std::string m_frequencyToShow; // once the list has it
};

} // namespace planfold
