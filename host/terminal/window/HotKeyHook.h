// Watches the thread's keys for registered hot keys and tells their windows. The keys themselves go on.
#pragma once

#include "framework/Handle.h"
#include "host/terminal/core/Keys.h"

namespace vesk {

// A hot key of this command reaches its window as the user message of the same number.
inline constexpr UINT kHotKeyMessageBase = WM_USER;

class HotKeyHook {
public:
    // There is one for the thread.
    explicit HotKeyHook(HotKeyTable& table);
    HotKeyHook(const HotKeyHook&) = delete;
    HotKeyHook& operator=(const HotKeyHook&) = delete;
    ~HotKeyHook();

private:
    static LRESULT CALLBACK Procedure(int code, WPARAM removed, LPARAM message) noexcept;

    framework::Hook m_hook;
};

} // namespace vesk
