#include "framework/Balloon.h"

#include <utility>

namespace framework {

Balloon::~Balloon() {
    if (IsWindow(m_tip)) DestroyWindow(m_tip);
}

TTTOOLINFOW Balloon::Tool() const {
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_TRACK | TTF_IDISHWND;
    tool.hwnd = m_control;
    tool.uId = reinterpret_cast<UINT_PTR>(m_control);
    tool.lpszText = const_cast<wchar_t*>(m_text.c_str());
    return tool;
}

void Balloon::Show(HWND control, const std::wstring& title, const std::wstring& text, int icon) {
    if (!IsWindow(m_tip) || m_control != control) {
        if (IsWindow(m_tip)) DestroyWindow(m_tip);
        m_tip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_BALLOON | TTS_NOPREFIX,
                                CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, control, nullptr,
                                nullptr, nullptr);
        m_control = control;
        m_text = text;
        TTTOOLINFOW tool = Tool();
        SendMessageW(m_tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
    m_text = text;
    TTTOOLINFOW tool = Tool();
    SendMessageW(m_tip, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(m_tip, TTM_SETTITLEW, static_cast<WPARAM>(icon), reinterpret_cast<LPARAM>(title.c_str()));
    RECT place{};
    GetWindowRect(control, &place);
    SendMessageW(m_tip, TTM_TRACKPOSITION, 0, MAKELPARAM((place.left + place.right) / 2, place.bottom));
    SendMessageW(m_tip, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
    m_shown = true;
}

void Balloon::Hide() {
    if (!std::exchange(m_shown, false) || !IsWindow(m_tip)) return;
    TTTOOLINFOW tool = Tool();
    SendMessageW(m_tip, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&tool));
}

} // namespace framework
