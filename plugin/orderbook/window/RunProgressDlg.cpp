#include "plugin/orderbook/window/RunProgressDlg.h"

#include "plugin/resources/resource.h"

namespace planfold {

namespace {

constexpr UINT_PTR kPortionTimer = 1;
constexpr UINT kPortionMs = 20;

} // namespace

CRunProgressDlg::CRunProgressDlg(HINSTANCE module, const Session& session, BookActions& actions)
    : Dialog(module, IDD_RUN_PROGRESS), m_session(session), m_actions(actions) {}

void CRunProgressDlg::Follow(HWND owner) {
    if (!m_actions.Run()) return Destroy();
    if (HasWindow()) return;
    // Without its timer a run would never end.
    if (!Create(GetAncestor(owner, GA_ROOT))) return m_actions.StopRun();
    // In front, but the keyboard stays where the dealer works.
    ShowWindow(Handle(), SW_SHOWNOACTIVATE);
}

void CRunProgressDlg::OnInit() {
    Item(IDC_RUN_BAR).Send(PBM_SETRANGE32, 0, static_cast<LPARAM>(m_actions.Run()->Total()));
    Show();
    SetTimer(Handle(), kPortionTimer, kPortionMs, nullptr);
}

std::optional<LRESULT> CRunProgressDlg::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_TIMER || wParam != kPortionTimer) return std::nullopt;
    m_actions.ContinueRun();
    if (HasWindow() && m_actions.Run()) Show();
    return 0;
}

void CRunProgressDlg::Show() {
    const BookRun& run = *m_actions.Run();
    Item(IDC_RUN_TEXT).SetText(run.Progress());
    Item(IDC_RUN_BAR).Send(PBM_SETPOS, static_cast<WPARAM>(run.Tried()));
}

} // namespace planfold
