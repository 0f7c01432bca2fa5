#include "plugin/controls/window/ExtEditOntry.h"

#include "plugin/controls/TypedText.h"

namespace planfold {

namespace {

constexpr UINT_PTR kBalloonTimer = 0x424C;
constexpr UINT kBalloonMs = 5000;

} // namespace

void CExtEditOntry::OnTextChanged() {
    const framework::Edit edit(Handle());
    const std::string text = edit.Text();
    const std::string clean = CleanValueText(text);
    if (clean == text) return;
    edit.SetText(clean);
    edit.Send(EM_SETSEL, clean.size(), static_cast<LPARAM>(clean.size()));
    edit.Send(EM_SCROLLCARET);
}

std::optional<LRESULT> CExtEditOntry::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_CHAR:
        if (m_filter && !MayBeTyped(static_cast<char32_t>(wParam), m_allowed)) {
            Refuse();
            return 0;
        }
        m_balloon.Hide();
        break;
    case WM_TIMER:
        if (wParam != kBalloonTimer) break;
        KillTimer(Handle(), kBalloonTimer);
        m_balloon.Hide();
        return 0;
    case WM_KILLFOCUS:
        m_balloon.Hide();
        break;
    default:
        break;
    }
    return std::nullopt;
}

void CExtEditOntry::Refuse() {
    m_balloon.Show(Handle(), L"Unacceptable Character", L"You can only type positive decimal number",
                   TTI_ERROR);
    SetTimer(Handle(), kBalloonTimer, kBalloonMs, nullptr);
    MessageBeep(MB_ICONEXCLAMATION);
}

} // namespace planfold
