// Enter and Escape in the calendar of a date picker close the calendar; the form hears nothing of them.
#pragma once

#include "framework/Subclass.h"

namespace planfold {

class CCalendarKeys {
public:
    // The picker in front of which it stands.
    void Attach(HWND picker) { m_picker.Attach(picker); }
    // The picker has told that its calendar opens.
    void OnDropDown();

private:
    // Of the picker or of its calendar: whichever has the keyboard.
    class Keys final : public framework::Subclass {
    public:
        explicit Keys(const CCalendarKeys& owner) : m_owner(owner) {}

    private:
        std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

        const CCalendarKeys& m_owner;
    };

    bool IsOpen() const;
    // The system may have closed it already.
    void Close() const;

    Keys m_picker{*this};
    Keys m_calendar{*this};
};

} // namespace planfold
