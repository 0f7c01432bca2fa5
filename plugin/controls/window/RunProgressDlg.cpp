#include "plugin/controls/window/RunProgressDlg.h"

#include "plugin/resources/resource.h"

namespace planfold {

namespace {

constexpr UINT_PTR kPortionTimer = 1;
constexpr UINT kPortionMs = 20;

} // namespace

CRunProgressDlg::CRunProgressDlg(HINSTANCE module, const Session& session, LongRun& run, Owner owner)
    : Dialog(module, IDD_RUN_PROGRESS), m_session(session), m_run(run), m_owner(owner) {}

void CRunProgressDlg::Follow(HWND owner) {
    if (!m_run.IsUnderWay()) return Destroy();
    if (HasWindow()) return;
    const HWND root = GetAncestor(owner, GA_ROOT);
    // Without its timer a run would never end.
    if (!Create(root)) return m_run.Stop();
    if (m_owner == Owner::disabled) {
        DisableOwner(root);
        Self().Show(true);
    } else {
        // In front, but the keyboard stays where the dealer works.
        ShowWindow(Handle(), SW_SHOWNOACTIVATE);
    }
}

void CRunProgressDlg::OnInit() {
    Show();
    SetTimer(Handle(), kPortionTimer, kPortionMs, nullptr);
}

std::optional<LRESULT> CRunProgressDlg::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_TIMER || wParam != kPortionTimer) return std::nullopt;
    m_run.Continue();
    if (HasWindow() && m_run.IsUnderWay()) Show();
    return 0;
}

void CRunProgressDlg::Show() {
    Item(IDC_RUN_TEXT).SetText(m_run.Progress());
    Item(IDC_RUN_BAR).Send(PBM_SETRANGE32, 0, static_cast<LPARAM>(m_run.Total()));
    Item(IDC_RUN_BAR).Send(PBM_SETPOS, static_cast<WPARAM>(m_run.Done()));
}

} // namespace planfold
