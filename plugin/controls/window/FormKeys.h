// How a form's lists and its calendar take keys.
#pragma once

#include "framework/Subclass.h"
#include "plugin/controls/TypedText.h"
#include "plugin/messaging/Session.h"

#include <deque>

namespace planfold {

// A drop-down list in which typed letters are collected.
class CTypeAheadCombo final : public framework::Subclass {
public:
    explicit CTypeAheadCombo(const Session& session) : m_session(session) {}

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnCharacter(char character);
    void Notify(WORD notification) const;

    const Session& m_session;
    TypeAhead m_typed;
};

// All those of a dialog.
class TypeAheadCombos {
public:
    // The session ends what a choice in the lists may end.
    explicit TypeAheadCombos(const Session& session) : m_session(session) {}

    // To the dialog's controls, which have just been made.
    void Attach(HWND dialog);

private:
    const Session& m_session;
    // They stay where they are for another window of the dialog: one may still be telling of a choice.
    std::deque<CTypeAheadCombo> m_combos;
};

// In which a date picker shows its day.
inline constexpr char kDateFormat[] = "dd/MMM/yyyy";

// Enter and Escape in the calendar of a date picker close the calendar; the form hears nothing of them.
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
