// A handle type in one line: `using Font = UniqueHandle<HFONT, CloseGdiObject>;`
#pragma once

#include <windows.h>

#include <utility>

namespace framework {

// Move-only owner of a platform handle. Closing keeps the thread's last error, so that a failure can
// still be reported after the cleanup.
template <class H, auto Close>
class UniqueHandle {
public:
    UniqueHandle() = default;
    explicit UniqueHandle(H handle) : m_handle(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        if (this != &other) Reset(std::exchange(other.m_handle, nullptr));
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { Reset(); }

    H Get() const { return m_handle; }
    explicit operator bool() const { return m_handle != nullptr; }
    void Reset(H handle = nullptr) {
        if (H old = std::exchange(m_handle, handle)) {
            const DWORD error = GetLastError();
            Close(old);
            SetLastError(error);
        }
    }

private:
    H m_handle = nullptr;
};

inline void CloseFont(HFONT font) {
    DeleteObject(font);
}
inline void CloseIcon(HICON icon) {
    DestroyIcon(icon);
}
inline void CloseMenu(HMENU menu) {
    DestroyMenu(menu);
}
inline void CloseHook(HHOOK hook) {
    UnhookWindowsHookEx(hook);
}

using Font = UniqueHandle<HFONT, CloseFont>;
using Icon = UniqueHandle<HICON, CloseIcon>;
using Menu = UniqueHandle<HMENU, CloseMenu>;
using Hook = UniqueHandle<HHOOK, CloseHook>;

} // namespace framework
