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

// Why an order is refused, and where the user is led to; 0 for nowhere.
struct FormRefusal {
    std::string text;
    int focus = 0;
};

class BasketForm {
public:
    BasketForm(Session& session, DialogView& view, RxControl* control)
        : m_session(session), m_view(view), m_form(session, view), m_frequencies(session, view, control) {}

    // For a window that has just been made.
    void Fill(const LocalDateTime& now, std::string_view customProducts);
    void AskFrequencies() { m_frequencies.Ask(); }
    void OnOperationMode(const Answer& answer);

    void OnExchangeChanged() { m_form.RefreshScrips(ScripLevel::exchange); }
    void OnSeriesChanged() { m_form.RefreshScrips(ScripLevel::series); }
    void OnInvestTypeChanged();

    SipOrderForm Shown() const;
    // Why the order is refused, or none when `order` holds it.
    std::optional<FormRefusal> Read(const LocalDateTime& now, FormOrder& order) const;
    // Returns how many fields cannot be shown. Their controls are left empty; the date, which cannot be, is
    // then one that Read refuses.
    int Show(const BasketTexts& texts, const LocalDateTime& now);
    // The same for a row of the list, whose scrip counts and not what it is called.
    int ShowRow(const BasketTexts& texts, const LocalDateTime& now);
    void ClearAfterModify();

    // What the lines of a file are checked against: what the form offers and the server demands.
    BasketRules Rules(const LocalDateTime& now) const;
    // For orders whose periods were checked before.
    BasketRules RulesOfUnsent(const LocalDateTime& now) const;

private:
    int ValueEdit() const;
    bool ShowNumber(int edit, std::optional<std::string> text);
    bool ShowStartDate(std::string_view text, const LocalDateTime& now);
    bool ShowClient(std::string_view client);

    Session& m_session;
    DialogView& m_view;
    SipForm m_form;
    FrequencyList m_frequencies;
    std::string m_frequencyToShow; // once the list has it
};

} // namespace planfold
