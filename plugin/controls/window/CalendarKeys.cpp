#include "plugin/controls/window/CalendarKeys.h"

namespace planfold {

namespace {

HWND CalendarOf(HWND picker) {
    return reinterpret_cast<HWND>(SendMessageA(picker, DTM_GETMONTHCAL, 0, 0));
}

bool IsClosing(WPARAM key) {
    return key == VK_RETURN || key == VK_ESCAPE;
}

// The key that closed the calendar is still held down.
bool IsRepeated(LPARAM keyData) {
    return (keyData & (1 << 30)) != 0;
}

} // namespace

void CCalendarKeys::OnDropDown() {
    m_calendar.Attach(CalendarOf(m_picker.Handle()));
}

bool CCalendarKeys::IsOpen() const {
    return IsWindowVisible(CalendarOf(m_picker.Handle())) != FALSE;
}

void CCalendarKeys::Close() const {
    const HWND picker = m_picker.Handle();
    if (IsOpen()) SendMessageA(picker, DTM_CLOSEMONTHCAL, 0, 0);
    SetFocus(picker);
}

std::optional<LRESULT> CCalendarKeys::Keys::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_GETDLGCODE: {
        const auto* key = reinterpret_cast<const MSG*>(lParam);
        const bool wanted = key && key->message == WM_KEYDOWN && IsClosing(key->wParam)
                            && (m_owner.IsOpen() || IsRepeated(key->lParam));
        return Default(message, wParam, lParam) | (wanted ? DLGC_WANTMESSAGE : 0);
    }
    case WM_KEYDOWN: {
        if (!IsClosing(wParam)) return std::nullopt;
        const bool open = m_owner.IsOpen();
        const LRESULT answer = Default(message, wParam, lParam);
        if (open) m_owner.Close();
        return answer;
    }
    default:
        return std::nullopt;
    }
}

} // namespace planfold
