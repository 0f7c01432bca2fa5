#include "plugin/controls/window/AutoComboBox.h"

namespace planfold {

namespace {

constexpr UINT_PTR kSearchTimer = 12131;

} // namespace

void CAutoComboBox::SetUp(Pass pass, HWND combo) {
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    if (!GetComboBoxInfo(combo, &parts) || !Attach(combo)) return;
    m_edit.Attach(parts.hwndItem);
    m_periodMs = SearchTimerPeriod(pass, m_session.host);
}

void CAutoComboBox::OnTextChanged() {
    if (Handle() && !m_ownChange) m_search.OnChanged();
}

std::optional<LRESULT> CAutoComboBox::TypedEdit::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    constexpr WPARAM deletedWord = 0x7F;
    if (message != WM_CHAR || wParam < ' ' || wParam == deletedWord) return std::nullopt;
    const LRESULT answer = Default(message, wParam, lParam);
    DWORD from = 0;
    framework::Window(Handle()).Send(EM_GETSEL, reinterpret_cast<WPARAM>(&from), 0);
    if (static_cast<int>(from) == GetWindowTextLengthA(Handle())) m_combo.m_search.OnTyped();
    return answer;
}

std::optional<LRESULT> CAutoComboBox::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_TIMER || wParam != kSearchTimer) return std::nullopt;
    m_search.OnTimer();
    return 0;
}

void CAutoComboBox::ShowCompletion(const std::string& entry, std::size_t typed) {
    m_ownChange = true;
    const framework::Window edit(m_edit.Handle());
    edit.SetText(entry);
    // From the end back: the caret stays where the typing goes on.
    edit.Send(EM_SETSEL, entry.size(), static_cast<LPARAM>(typed));
    m_ownChange = false;
}

void CAutoComboBox::PickEntry(int entry) {
    if (Combo().Selected() == entry) return;
    Combo().Select(entry);
    const auto picked = MAKEWPARAM(GetDlgCtrlID(Handle()), CBN_SELCHANGE);
    SendMessageA(GetParent(Handle()), WM_COMMAND, picked, reinterpret_cast<LPARAM>(Handle()));
}

void CAutoComboBox::StartTimer() {
    SetTimer(Handle(), kSearchTimer, m_periodMs, nullptr);
}

void CAutoComboBox::StopTimer() {
    if (Handle()) KillTimer(Handle(), kSearchTimer);
}

} // namespace planfold
