#include "host/korvexcontrols/QVBrickBar.h"

#include <commctrl.h>

bool CQVBrickBar::Create(HWND parent, std::int32_t id, const char* name) noexcept {
    m_bar = CreateWindowExA(0, STATUSCLASSNAMEA, name, WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    return m_bar != nullptr;
}

void CQVBrickBar::SetParts(const std::int32_t* edges, std::int32_t count) noexcept {
    SendMessageA(m_bar, SB_SETPARTS, static_cast<WPARAM>(count), reinterpret_cast<LPARAM>(edges));
}

void CQVBrickBar::SetText(std::int32_t pane, const char* text) noexcept {
    const auto part = static_cast<WPARAM>(pane);
    char shown[64] = "";
    if (LOWORD(SendMessageA(m_bar, SB_GETTEXTLENGTHA, part, 0)) < sizeof shown)
        SendMessageA(m_bar, SB_GETTEXTA, part, reinterpret_cast<LPARAM>(shown));
    if (lstrcmpA(shown, text) != 0) SendMessageA(m_bar, SB_SETTEXTA, part, reinterpret_cast<LPARAM>(text));
}

void CQVBrickBar::Place() noexcept {
    SendMessageA(m_bar, WM_SIZE, 0, 0);
}
