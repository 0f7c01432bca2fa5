// The one place where WPARAM and LPARAM are taken apart. `OnX` is told, and answers whether it was handled.
#pragma once

#include "framework/Window.h"

#include <windows.h>

#include <memory>
#include <optional>

namespace framework {

// What a control asks its parent for, handed back to the control: the number of the parent's message is added.
inline constexpr UINT kReflected = WM_APP + 0x2000;

// A control (with its identifier and notification), a menu entry or an accelerator sent it.
struct Command {
    int id;
    int notification; // 0 for a menu entry or a button's click
    HWND control;     // null for a menu entry
};

inline Command DecodeCommand(WPARAM wParam, LPARAM lParam) {
    return {LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam)};
}

class MessageTarget {
protected:
    virtual ~MessageTarget() = default;

    // What it gives is kept while a message is handled: a message box or the host's question runs a message
    // loop, in which the host may end what this window belongs to.
    virtual std::shared_ptr<void> Hold() { return nullptr; }

    virtual bool OnCommand(const Command&) { return false; }
    // A value when handled: what the sender of the notification gets.
    virtual std::optional<LRESULT> OnNotify(const NMHDR&) { return std::nullopt; }
    virtual bool OnDpiChanged(UINT /*dpi*/, const RECT& /*suggested*/) { return false; }
    // Everything else, and before the rest. A value when handled.
    virtual std::optional<LRESULT> OnMessage(UINT, WPARAM, LPARAM) { return std::nullopt; }

    // The value to answer with, or none when the message was not handled.
    std::optional<LRESULT> Dispatch(UINT message, WPARAM wParam, LPARAM lParam);
};

// A control of the system with behaviour of our own in front of it: derive, Attach, override OnMessage.
class Subclass : public MessageTarget {
public:
    Subclass() = default;
    Subclass(const Subclass&) = delete;
    Subclass& operator=(const Subclass&) = delete;
    ~Subclass() override { Detach(); }

    // Lasts until Detach or the control's end. False when the system refuses.
    bool Attach(HWND control);
    void Detach();
    HWND Handle() const { return m_control; }

protected:
    // The control is gone; the object stays.
    virtual void OnGone() {}
    // What the control itself does with the message.
    LRESULT Default(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return m_control ? DefSubclassProc(m_control, message, wParam, lParam) : 0;
    }

private:
    static LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR self) noexcept;
    // Several may stand in front of one control.
    UINT_PTR Id() const { return reinterpret_cast<UINT_PTR>(this); }

    HWND m_control = nullptr;
};

} // namespace framework
