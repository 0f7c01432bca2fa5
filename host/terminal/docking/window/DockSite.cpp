#include "host/terminal/docking/window/DockSite.h"

#include "framework/Handle.h"

#include <algorithm>
#include <utility>

namespace vesk {
namespace {

constexpr const char* kSection = "Docking";
constexpr int kCaptionHeight = 24; // at the usual font size
constexpr int kTabHeight = 24;
constexpr SIZE kFloatSize{760, 300}; // at 96 DPI

RECT WorkAreaAt(const RECT& rect) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(MonitorFromRect(&rect, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

bool IsShownByStyle(HWND pane) {
    return (GetWindowLongPtrA(pane, GWL_STYLE) & WS_VISIBLE) != 0;
}

} // namespace

void DockSite::Open(HWND frame, UINT changedMessage) {
    m_frame = frame;
    m_changedMessage = changedMessage;
}

void DockSite::Changed() {
    PostMessageA(m_frame, m_changedMessage, TRUE, 0);
}

void DockSite::Register(HWND pane) {
    if (!IsWindow(pane) || m_layout.Find(IdOf(pane))) return;
    const std::string caption = framework::Window(pane).Text();
    auto watch = std::make_shared<PaneWatch>(*this);
    watch->Attach(pane);
    m_held.push_back({pane, std::move(watch), nullptr});
    m_layout.Add(IdOf(pane), caption, PlaceFromText(m_settings.Read(kSection, caption).value_or("")),
                 IsShownByStyle(pane));
    Changed();
}

void DockSite::Forget(HWND pane) {
    const auto held = std::ranges::find(m_held, pane, &Held::pane);
    if (held == m_held.end()) return;
    m_layout.Remove(IdOf(pane));
    held->watch->Detach();
    held->pane = nullptr;
    // Its window may be the one that is telling: it is taken away with the next layout.
    if (held->window) held->window->Self().Show(false);
    Changed();
}

void DockSite::ForgetGone() {
    std::vector<HWND> gone;
    for (const Held& held : m_held)
        if (held.pane && !held.watch->Handle()) gone.push_back(held.pane);
    for (const HWND pane : gone)
        Forget(pane);
}

std::vector<HWND> DockSite::Panes() const {
    std::vector<HWND> panes;
    for (const DockPane& pane : m_layout.Panes())
        panes.push_back(PaneOf(pane.id));
    return panes;
}

void DockSite::OnPaneShown(HWND pane, bool shown) {
    if (m_settling) return;
    m_layout.SetShown(IdOf(pane), shown);
    Changed();
}

RECT DockSite::LayOut(const RECT& area, const FrameScale& scale, bool centreShown) {
    const DockMetrics metrics{scale.dpi, scale.Pixels(kCaptionHeight), scale.Pixels(kTabHeight), centreShown};
    const DockRect centre = m_layout.Arrange(FromRect(area), metrics);
    // A pane that is moved may bring or take another one.
    if (m_settling) {
        Changed();
        return ToRect(centre);
    }
    m_settling = true;
    std::erase_if(m_held, [](const Held& held) { return !held.pane; });
    for (Held& held : m_held)
        Settle(held);
    m_settling = false;
    // Windows that change parents or are hidden on the way lose the focus.
    if (const HWND pane = std::exchange(m_toFocus, nullptr); pane && IsWindowVisible(pane)) SetFocus(pane);
    return ToRect(centre);
}

void DockSite::Settle(Held& held) {
    const DockPane* pane = m_layout.Find(IdOf(held.pane));
    if (!pane) return;
    if (pane->place.floating)
        SettleFloating(held, *pane);
    else
        SettleDocked(held);
}

void DockSite::SettleFloating(Held& held, const DockPane& pane) {
    if (!held.window) {
        auto window = std::make_shared<FloatWindow>(*this, held.pane);
        if (!window->Open(m_frame, FloatRect(pane))) return;
        held.window = std::move(window);
        SetParent(held.pane, held.window->Handle());
        held.window->FitPane();
    }
    const framework::Window window = held.window->Self();
    if (pane.shown == (IsWindowVisible(window.Handle()) != 0)) return;
    if (pane.shown) framework::Window(held.pane).Show(true);
    window.Show(pane.shown);
}

void DockSite::SettleDocked(Held& held) {
    if (held.window) {
        SetParent(held.pane, m_frame);
        held.window->Destroy();
        held.window = nullptr;
    }
    const DockGroup* group = m_layout.GroupOf(IdOf(held.pane));
    const bool inFront = group && group->selected == IdOf(held.pane);
    const framework::Window pane(held.pane);
    if (inFront) pane.Move(ToRect(group->content));
    if (inFront != IsShownByStyle(held.pane)) pane.Show(inFront);
}

// It floats where it last did, or else over its docked place.
RECT DockSite::FloatRect(const DockPane& pane) const {
    RECT rect = ToRect(pane.place.floatRect);
    if (pane.place.floatRect.Empty()) {
        const UINT dpi = framework::Window(m_frame).Dpi();
        GetWindowRect(PaneOf(pane.id), &rect);
        rect.right = rect.left + framework::Scaled(kFloatSize.cx, dpi);
        rect.bottom = rect.top + framework::Scaled(kFloatSize.cy, dpi);
    }
    return ToRect(MovedInside(FromRect(rect), FromRect(WorkAreaAt(rect))));
}

void DockSite::Remember() {
    for (const DockPane& pane : m_layout.Panes()) {
        const std::string text = PlaceText(m_layout.PlaceOf(pane.id));
        if (m_settings.Read(kSection, pane.caption) != text) m_settings.Write(kSection, pane.caption, text);
    }
}

void DockSite::Moved(HWND pane) {
    m_toFocus = pane;
    Remember();
    Changed();
}

bool DockSite::Run(PaneId id, DockCommand command, std::size_t tab) {
    const DockPane* pane = m_layout.Find(id);
    if (!pane) return false;
    using Kind = DockTarget::Kind;
    switch (command) {
    case DockCommand::show:
        m_layout.SetShown(id, true);
        break;
    case DockCommand::hide:
        if (pane->shown) ClosePane(PaneOf(id));
        break;
    case DockCommand::floating:
        m_layout.Move(id, {Kind::floating});
        break;
    case DockCommand::firstTab:
        if (tab >= m_layout.Panes().size()) return false;
        m_layout.Move(id, {Kind::tabs, DockSide::bottom, m_layout.Panes()[tab].id});
        break;
    default:
        m_layout.Move(id, {Kind::side, static_cast<DockSide>(static_cast<int>(command)
                                                             - static_cast<int>(DockCommand::left))});
        break;
    }
    Moved(PaneOf(id));
    return true;
}

void DockSite::RunNumber(int number) {
    const auto pane = static_cast<std::size_t>(number / kDockCommandsPerPane);
    if (pane >= m_layout.Panes().size()) return;
    constexpr int firstTab = static_cast<int>(DockCommand::firstTab);
    const int command = number % kDockCommandsPerPane;
    Run(m_layout.Panes()[pane].id, static_cast<DockCommand>(std::min(command, firstTab)),
        static_cast<std::size_t>(std::max(command - firstTab, 0)));
}

void DockSite::ToggleFloating(HWND pane) {
    m_layout.ToggleFloating(IdOf(pane));
    Moved(pane);
}

void DockSite::Select(HWND pane) {
    m_layout.SetShown(IdOf(pane), true);
    m_toFocus = pane;
    Changed();
}

void DockSite::ShowMenu(HWND pane, POINT screen) const {
    const auto& panes = m_layout.Panes();
    const auto found = std::ranges::find(panes, IdOf(pane), &DockPane::id);
    if (found == panes.end()) return;
    const framework::Menu menu(PaneMenu(m_layout, static_cast<std::size_t>(found - panes.begin())));
    TrackPopupMenu(menu.Get(), TPM_RIGHTBUTTON, screen.x, screen.y, 0, m_frame, nullptr);
}

void DockSite::DragSplitter(std::size_t group, const DockPoint& corner) {
    m_layout.DragSplitter(group, corner);
    PostMessageA(m_frame, m_changedMessage, FALSE, 0);
}

} // namespace vesk
