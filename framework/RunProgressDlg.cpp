#include "framework/RunProgressDlg.h"

#include "framework/KeyboardHook.h"
#include "framework/resource.h"

#include <algorithm>

namespace framework {

namespace {

constexpr UINT_PTR kPortionTimer = 1;
constexpr UINT kPortionTickMs = 20;
constexpr std::int64_t kNoticedMs = 400; // what is over by then needs no window
constexpr int kMargin = 12;              // pixels at 96 DPI

} // namespace

RunProgressDlg::RunProgressDlg(HINSTANCE module, base::LongRun& run, Owner owner, const char* caption,
                               const char* note)
    : Dialog(module, IDD_RUN_PROGRESS), m_run(run), m_owner(owner), m_caption(caption), m_note(note) {}

void RunProgressDlg::Follow(HWND owner) {
    if (!m_run.IsUnderWay()) return Destroy();
    if (HasWindow()) return;
    const HWND root = GetAncestor(owner, GA_ROOT);
    m_startedMs = GetTickCount64();
    // Without its timer a run would never end.
    if (!Create(root)) return m_run.EndUnseen();
    if (m_owner == Owner::enabled) return;
    // The keyboard goes on where it is, unless that is what cannot be reached now.
    const bool wasActive = GetActiveWindow() == root;
    DisableOwner(root);
    ShowWindow(Handle(), wasActive ? SW_SHOW : SW_SHOWNOACTIVATE);
    if (wasActive) Item(IDCANCEL).Focus();
}

void RunProgressDlg::OnClose() {
    m_run.Stop();
    if (!m_run.IsUnderWay()) Destroy();
}

void RunProgressDlg::OnInit() {
    Self().SetText(m_caption);
    Item(IDC_RUN_NOTE).SetText(m_note);
    ShowState();
    SetTimer(Handle(), kPortionTimer, kPortionTickMs, nullptr);
}

std::optional<LRESULT> RunProgressDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // A key that is held down was meant for the window before.
    if (message == kOfferedKey) return IsRepeated(lParam) && wParam != VK_TAB;
    if (message != WM_TIMER || wParam != kPortionTimer) return std::nullopt;
    m_run.Continue();
    if (!HasWindow()) return 0;
    if (!m_run.IsUnderWay()) {
        Destroy();
        return 0;
    }
    ShowState();
    if (!IsWindowVisible(Handle()) && GetTickCount64() - m_startedMs >= kNoticedMs) ShowBeside();
    return 0;
}

// In the lower right corner of what it belongs to, where a box in the middle does not hide it; in front, but
// the keyboard stays where the dealer works.
void RunProgressDlg::ShowBeside() {
    const HWND owner = GetWindow(Handle(), GW_OWNER);
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    GetMonitorInfoA(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &screen);
    RECT room{}, own{};
    GetWindowRect(owner, &room);
    GetWindowRect(Handle(), &own);
    const int margin = Scaled(kMargin, Self().Dpi());
    const LONG x = std::min(room.right, screen.rcWork.right) - (own.right - own.left) - margin;
    const LONG y = std::min(room.bottom, screen.rcWork.bottom) - (own.bottom - own.top) - margin;
    SetWindowPos(Handle(), HWND_TOP, std::max(x, screen.rcWork.left), std::max(y, screen.rcWork.top), 0, 0,
                 SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void RunProgressDlg::ShowState() {
    Item(IDC_RUN_TEXT).SetText(m_run.Progress());
    Item(IDC_RUN_BAR).Send(PBM_SETRANGE32, 0, static_cast<LPARAM>(m_run.Total()));
    Item(IDC_RUN_BAR).Send(PBM_SETPOS, static_cast<WPARAM>(m_run.Done()));
    if (IsWindowEnabled(Item(IDCANCEL).Handle()) == m_run.CanStop()) return;
    Item(IDCANCEL).Enable(m_run.CanStop());
    Item(IDC_RUN_NOTE).Show(m_run.CanStop());
}

} // namespace framework
