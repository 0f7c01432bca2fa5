#include "plugin/controls/window/RunProgressDlg.h"

#include "framework/KeyboardHook.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr UINT_PTR kPortionTimer = 1;
constexpr UINT kPortionTickMs = 20;
constexpr std::int64_t kNoticedMs = 400; // what is over by then needs no window
constexpr int kMargin = 12;              // pixels at 96 DPI

} // namespace

CRunProgressDlg::CRunProgressDlg(HINSTANCE module, const Session& session, LongRun& run, Owner owner)
    : Dialog(module, IDD_RUN_PROGRESS), m_session(session), m_run(run), m_owner(owner) {}

void CRunProgressDlg::Follow(HWND owner) {
    if (!m_run.IsUnderWay()) return Destroy();
    if (HasWindow()) return;
    const HWND root = GetAncestor(owner, GA_ROOT);
    m_startedMs = GetTickCount64();
    // Without its timer a run would never end.
    if (!Create(root)) return m_run.Stop();
    if (m_owner == Owner::enabled) return;
    // The keyboard goes on where it is, unless that is what cannot be reached now.
    const bool wasActive = GetActiveWindow() == root;
    DisableOwner(root);
    ShowWindow(Handle(), wasActive ? SW_SHOW : SW_SHOWNOACTIVATE);
    if (wasActive) Item(IDCANCEL).Focus();
}

void CRunProgressDlg::OnInit() {
    Item(IDC_RUN_NOTE)
        .SetText(m_owner == Owner::enabled ? "Esc in the book stops it, and Alt+S here."
                                           : "Esc or Alt+S stops it.");
    ShowState();
    SetTimer(Handle(), kPortionTimer, kPortionTickMs, nullptr);
}

std::optional<LRESULT> CRunProgressDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // A key that is held down was meant for the window before.
    if (message == framework::kOfferedKey) return framework::IsRepeated(lParam) && wParam != VK_TAB;
    if (message != WM_TIMER || wParam != kPortionTimer) return std::nullopt;
    m_run.Continue();
    if (!HasWindow() || !m_run.IsUnderWay()) return 0;
    ShowState();
    if (!IsWindowVisible(Handle()) && GetTickCount64() - m_startedMs >= kNoticedMs) ShowBeside();
    return 0;
}

// In the lower right corner of what it belongs to, where a box in the middle does not hide it; in front, but
// the keyboard stays where the dealer works.
void CRunProgressDlg::ShowBeside() {
    const HWND owner = GetWindow(Handle(), GW_OWNER);
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    GetMonitorInfoA(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &screen);
    RECT room{}, own{};
    GetWindowRect(owner, &room);
    GetWindowRect(Handle(), &own);
    const int margin = framework::Scaled(kMargin, Self().Dpi());
    const LONG x = std::min(room.right, screen.rcWork.right) - (own.right - own.left) - margin;
    const LONG y = std::min(room.bottom, screen.rcWork.bottom) - (own.bottom - own.top) - margin;
    SetWindowPos(Handle(), HWND_TOP, std::max(x, screen.rcWork.left), std::max(y, screen.rcWork.top), 0, 0,
                 SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void CRunProgressDlg::ShowState() {
    Item(IDC_RUN_TEXT).SetText(m_run.Progress());
    Item(IDC_RUN_BAR).Send(PBM_SETRANGE32, 0, static_cast<LPARAM>(m_run.Total()));
    Item(IDC_RUN_BAR).Send(PBM_SETPOS, static_cast<WPARAM>(m_run.Done()));
    if (IsWindowEnabled(Item(IDCANCEL).Handle()) == m_run.CanStop()) return;
    Item(IDCANCEL).Enable(m_run.CanStop());
    Item(IDC_RUN_NOTE).Show(m_run.CanStop());
}

} // namespace planfold
