// A dialog as the code that decides sees it: controls by identifier, no window in it. The window classes
// implement it; tests stand in for it. An identifier that the dialog lacks reads empty and ignores the rest.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/messaging/Session.h"
#include "sdk/HostWindow.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

struct ControlText {
    int control;
    std::string text;
};

class DialogView : public Notices {
public:
    // For the host's callbacks; null while there is no window.
    virtual HostWindow Handle() const = 0;
    // False before the window is made and once it is gone.
    virtual bool IsOpen() const = 0;
    virtual void SetTitle(std::string_view text) = 0;
    // Takes the window away; the object stays.
    virtual void Close() = 0;

    virtual bool Has(int control) const = 0;
    // Of an edit, a label, a button, or the entry that a combo shows.
    virtual std::string Text(int control) const = 0;
    virtual void SetText(int control, std::string_view text) = 0;
    // Sets several at once; the states between are not shown.
    virtual void SetTexts(std::span<const ControlText> texts) = 0;
    virtual void Show(int control, bool shown) = 0;
    virtual void Enable(int control, bool enabled) = 0;
    virtual void Focus(int control) = 0;
    // Digits only for whole numbers; otherwise the edit refuses what cannot be part of a positive decimal.
    virtual void SetDigitsOnly(int edit, bool on) = 0;

    virtual std::vector<std::string> Items(int combo) const = 0;
    virtual void ClearItems(int combo) = 0;
    virtual void AddItem(int combo, std::string_view text) = 0;
    // -1 selects nothing.
    virtual void Select(int combo, int index) = 0;
    // The entry that equals the text, ignoring case. False, and nothing changed, when there is none.
    virtual bool SelectText(int combo, std::string_view text) = 0;

    virtual LocalDateTime Date(int picker) const = 0;
    virtual void SetDate(int picker, const LocalDateTime& date) = 0;

protected:
    ~DialogView() = default;
};

} // namespace planfold
