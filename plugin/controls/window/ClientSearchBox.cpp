#include "plugin/controls/window/ClientSearchBox.h"

#include "framework/Handle.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr UINT_PTR kDelayTimer = 0x4353;

struct ModeRow {
    UINT command;
    SearchMode mode;
    const char* text;
};
constexpr ModeRow kModes[] = {
    {2024, SearchMode::all, "Search Mode: All"},
    {2025, SearchMode::clientId, "Search Mode: Client ID"},
    {2026, SearchMode::clientName, "Search Mode: Client Name"},
};

struct KeyRow {
    WPARAM virtualKey;
    ClientSearch::Key key;
};
constexpr KeyRow kSearchKeys[] = {
    {VK_UP, ClientSearch::Key::up},        {VK_DOWN, ClientSearch::Key::down},
    {VK_PRIOR, ClientSearch::Key::pageUp}, {VK_NEXT, ClientSearch::Key::pageDown},
    {VK_RETURN, ClientSearch::Key::enter}, {VK_ESCAPE, ClientSearch::Key::escape},
};

const KeyRow* FindKey(WPARAM virtualKey) {
    const auto* row = std::ranges::find(kSearchKeys, virtualKey, &KeyRow::virtualKey);
    return row == std::end(kSearchKeys) ? nullptr : row;
}

} // namespace

void CClientSearchBox::SetUp(Pass pass, HWND edit, const std::string& name, UINT delayMs) {
    Attach(edit);
    m_box = edit;
    m_delayMs = delayMs;
    m_search.SetUp(pass, name);
}

void CClientSearchBox::SetText(std::string_view text) {
    m_search.Forget();
    SetSearchText(text);
}

void CClientSearchBox::OnTextChanged() {
    if (!m_ownChange) m_search.OnTyped();
}

void CClientSearchBox::OpenModeMenu(HWND button) {
    framework::Window(Handle()).Focus();
    const framework::Menu menu(CreatePopupMenu());
    for (const ModeRow& row : kModes)
        AppendMenuA(menu.Get(), row.mode == m_search.Mode() ? MF_CHECKED : MF_UNCHECKED, row.command, row.text);
    AppendMenuA(menu.Get(), MF_SEPARATOR, 0, nullptr);
    RECT place{};
    GetWindowRect(button, &place);
    TrackPopupMenu(menu.Get(), TPM_LEFTALIGN | TPM_TOPALIGN, place.left, place.bottom, 0, Handle(), nullptr);
}

bool CClientSearchBox::OnCommand(const framework::Command& command) {
    const auto* row = std::ranges::find(kModes, static_cast<UINT>(command.id), &ModeRow::command);
    if (row == std::end(kModes)) return false;
    m_search.SetMode(row->mode);
    return true;
}

bool CClientSearchBox::WantsKey(WPARAM virtualKey) const {
    const KeyRow* row = FindKey(virtualKey);
    return row && m_search.Wants(row->key);
}

std::optional<LRESULT> CClientSearchBox::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_GETDLGCODE: {
        // What the search wants must not press the dialog's buttons.
        const auto* key = reinterpret_cast<const MSG*>(lParam);
        const bool wanted = key && key->message == WM_KEYDOWN && WantsKey(key->wParam);
        return Default(message, wParam, lParam) | (wanted ? DLGC_WANTMESSAGE : 0);
    }
    case WM_KEYDOWN:
        if (!WantsKey(wParam)) return std::nullopt;
        m_search.OnKey(FindKey(wParam)->key);
        return 0;
    case WM_CHAR:
        // The characters of Enter and Escape would only make the edit beep.
        if (wParam == '\r' || wParam == 0x1B) return 0;
        return std::nullopt;
    case WM_TIMER:
        if (wParam != kDelayTimer) return std::nullopt;
        m_search.OnDelayElapsed();
        return 0;
    case WM_KILLFOCUS:
        if (!m_popup.Holds(reinterpret_cast<HWND>(wParam))) m_search.OnFocusLost();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

std::string CClientSearchBox::SearchText() const {
    return framework::Window(Handle()).Text();
}

void CClientSearchBox::SetSearchText(std::string_view text) {
    m_ownChange = true;
    framework::Window(Handle()).SetText(std::string(text));
    m_ownChange = false;
}

void CClientSearchBox::SelectSearchText() {
    const framework::Edit edit(Handle());
    // From the end to the start: the caret, and with it the view, ends at the start.
    edit.Send(EM_SETSEL, static_cast<WPARAM>(GetWindowTextLengthA(Handle())), 0);
    edit.Send(EM_SCROLLCARET);
}

void CClientSearchBox::SetTip(std::string_view text) {
    if (IsWindow(m_tip)) DestroyWindow(m_tip);
    m_tip = nullptr;
    if (text.empty()) return;
    m_tip = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                            CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, Handle(), nullptr,
                            nullptr, nullptr);
    std::string shown(text);
    TTTOOLINFOA tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = Handle();
    tool.uId = reinterpret_cast<UINT_PTR>(Handle());
    tool.lpszText = shown.data();
    SendMessageA(m_tip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

void CClientSearchBox::StartDelay() {
    SetTimer(Handle(), kDelayTimer, m_delayMs, nullptr);
}

void CClientSearchBox::StopDelay() {
    KillTimer(Handle(), kDelayTimer);
}

void CClientSearchBox::TellPicked(const ClientResult& result) {
    SendMessageA(GetParent(Handle()), kClientPickedMessage, reinterpret_cast<WPARAM>(Handle()),
                 reinterpret_cast<LPARAM>(&result));
}

} // namespace planfold
