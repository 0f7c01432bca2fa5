#include "plugin/controls/window/FormKeys.h"

#include "framework/KeyboardHook.h"

namespace planfold {

std::optional<LRESULT> CTypeAheadCombo::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_CHAR:
        // The others are keys with a meaning of their own.
        if (wParam <= ' ') return std::nullopt;
        OnCharacter(static_cast<char>(wParam));
        return 0;
    case WM_KEYDOWN:
        // What moves the selection otherwise ends the word.
        if (wParam >= VK_PRIOR && wParam <= VK_DOWN) m_typed.Forget();
        return std::nullopt;
    case WM_KILLFOCUS:
    case CB_RESETCONTENT:
        m_typed.Forget();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

void CTypeAheadCombo::OnCharacter(char character) {
    const framework::ComboBox combo(Handle());
    const int selected = combo.Selected();
    const int found =
        m_typed.OnCharacter(character, static_cast<unsigned>(GetMessageTime()), selected,
                            [&](const std::string& text, int after) { return combo.FindStart(text, after); });
    if (found < 0) {
        MessageBeep(MB_OK);
        return;
    }
    if (found == selected) return;
    combo.Select(found);
    // As the control tells of a key that selects; while the list is open nothing is chosen yet.
    if (!combo.Send(CB_GETDROPPEDSTATE)) Notify(CBN_SELENDOK);
    Notify(CBN_SELCHANGE);
}

// Whoever is told may end the window.
void CTypeAheadCombo::Notify(WORD notification) const {
    if (const HWND combo = Handle())
        SendMessageA(GetParent(combo), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(combo), notification),
                     reinterpret_cast<LPARAM>(combo));
}

void TypeAheadCombos::Attach(HWND dialog) {
    std::size_t next = 0;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        char className[16] = "";
        GetClassNameA(child, className, sizeof className);
        const bool isList = (GetWindowLongA(child, GWL_STYLE) & CBS_DROPDOWNLIST) == CBS_DROPDOWNLIST;
        if (std::string_view(className) != WC_COMBOBOXA || !isList) continue;
        if (next == m_combos.size()) m_combos.emplace_back(m_session);
        m_combos[next++].Attach(child);
    }
}

namespace {

HWND CalendarOf(HWND picker) {
    return reinterpret_cast<HWND>(SendMessageA(picker, DTM_GETMONTHCAL, 0, 0));
}

bool IsClosing(WPARAM key) {
    return key == VK_RETURN || key == VK_ESCAPE;
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
                            && (m_owner.IsOpen() || framework::IsRepeated(key->lParam));
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
