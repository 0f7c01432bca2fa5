// The one place where WPARAM and LPARAM are taken apart. `OnX` is told, and answers whether it was handled.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>

namespace framework {

// What a control asks its parent for, handed back to the control: the number of the parent's message is added.
inline constexpr UINT kReflected = WM_APP + 0x2000;

// From a control (its identifier and notification), a menu entry or an accelerator.
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

    // Kept while a message is handled: a message box or the host's question runs a message loop, in which the
    // host may end what this window belongs to.
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

} // namespace framework
