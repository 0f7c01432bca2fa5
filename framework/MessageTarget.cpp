#include "framework/MessageTarget.h"

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

} // namespace framework
