#include "framework/Subclass.h"

#include "framework/Guard.h"

#include <utility>

namespace framework {

std::optional<LRESULT> MessageTarget::Dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
    if (const auto answer = OnMessage(message, wParam, lParam)) return answer;
    switch (message) {
    case WM_COMMAND:
        if (OnCommand(DecodeCommand(wParam, lParam))) return 0;
        break;
    case WM_NOTIFY:
        return OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
    case WM_DPICHANGED:
        if (OnDpiChanged(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam))) return 0;
        break;
    default:
        break;
    }
    return std::nullopt;
}

bool Subclass::Attach(HWND control) {
    Detach();
    if (!control || !SetWindowSubclass(control, Procedure, Id(), Id())) return false;
    m_control = control;
    return true;
}

void Subclass::Detach() {
    if (const HWND control = std::exchange(m_control, nullptr)) RemoveWindowSubclass(control, Procedure, Id());
}

LRESULT CALLBACK Subclass::Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                     DWORD_PTR context) noexcept {
    return Guard(LRESULT{0}, [&]() -> LRESULT {
        auto* self = reinterpret_cast<Subclass*>(context);
        const auto held = self->Hold();
        if (message == WM_NCDESTROY) {
            self->Detach();
            self->OnGone();
        } else if (const auto answer = self->Dispatch(message, wParam, lParam)) {
            return *answer;
        }
        return DefSubclassProc(control, message, wParam, lParam);
    });
}

} // namespace framework
