#include "host/terminal/window/frame/MainFrame.h"

#include "host/terminal/window/Application.h"
#include "host/terminal/window/frame/MenuBar.h"
#include "host/terminal/window/frame/ServerQuestions.h"

#include <windowsx.h>

#include <algorithm>

namespace vesk {
namespace {

constexpr int kSplitter = 5;
constexpr int kClientBarHeight = 38;
constexpr int kLeastWatchHeight = 90;
constexpr int kLeastDockingHeight = 330; // with panes at it
constexpr int kLogHeight = 170;
constexpr int kLeastLogHeight = 90;
constexpr int kLeastPoints = 6;
constexpr int kMostPoints = 36;

} // namespace

MainFrame::MainFrame(Application& application)
    : m_application(application), m_clientBar(application.State().clients), m_watch(application.State().master),
      m_log(application.State().log), m_docking(application.State().settings), m_dockBars(m_docking),
      m_layout(kSplitter) {}

bool MainFrame::Open() {
    const HINSTANCE module = GetModuleHandleA(nullptr);
    Args args;
    args.module = module;
    args.className = "VeskTraderFrame";
    args.classStyle = CS_DBLCLKS;
    args.caption = "Vesk Trader";
    args.style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
    args.exStyle = WS_EX_CONTROLPARENT;
    args.icon = LoadIconA(module, MAKEINTRESOURCEA(1));
    RECT area{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
    const int marginX = (area.right - area.left) / 32, marginY = (area.bottom - area.top) / 32;
    InflateRect(&area, -marginX, -marginY);
    args.rect = area;
    if (!Create(args) || !CreateChildren()) return false;
    ApplyFont();
    RebuildMenu();
    ShowWindow(Handle(), SW_SHOW);
    UpdateWindow(Handle());
    return true;
}

bool MainFrame::CreateChildren() {
    if (!m_clientBar.Create(Handle(), kClientLabelId, kClientComboId)
        || !m_watch.Create(Handle(), kMarketWatchId) || !m_log.Create(Handle(), kLogTabsId, kLogListId))
        return false;
    m_status = framework::Window(
        CreateWindowExA(0, STATUSCLASSNAMEA, "", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0, Handle(),
                        reinterpret_cast<HMENU>(INT_PTR{kStatusBarId}), GetModuleHandleA(nullptr), nullptr));
    m_docking.Open(Handle(), kPanesChangedMessage);
    m_dockBars.Open(Handle());
    m_dpi = Self().Dpi();
    // Band order is BandIndex.
    m_layout.Bands() = {
        {.least = Scale().Pixels(kClientBarHeight)},
        {.least = Scale().Pixels(kLeastWatchHeight), .stretch = true, .resizable = true},
        {.wanted = Scale().Pixels(kLogHeight), .least = Scale().Pixels(kLeastLogHeight), .resizable = true},
    };
    return static_cast<bool>(m_status);
}

FrameScale MainFrame::Scale() const {
    const TerminalConfig& config = m_application.State().config;
    const int points = (config.fontSize ? config.fontSize : FrameScale::kUsualPoints) + config.fontVariation;
    return {Self().Dpi(), std::clamp(points, kLeastPoints, kMostPoints)};
}

void MainFrame::RebuildMenu() {
    const HMENU old = GetMenu(Handle());
    SetMenu(Handle(), BuildMenuBar({m_application.Plugins().Plugins(), m_application.State().config,
                                    m_watchShown, m_logShown, m_docking.Layout()}));
    if (old) DestroyMenu(old);
}

void MainFrame::ApplyFont() {
    const FrameScale scale = Scale();
    framework::Font font = framework::MakeFont(L"Segoe UI", scale.points, scale.dpi);
    m_clientBar.SetFont(font.Get());
    m_watch.SetFont(font.Get());
    m_log.SetFont(font.Get());
    m_status.SetFont(font.Get());
    m_font = std::move(font);
    m_layout.Bands()[clientBand].least = scale.Pixels(kClientBarHeight);
    m_status.Send(WM_SIZE);
    LayOut();
}

void MainFrame::SetStatus(StatusPart part, const std::string& text, bool warns) {
    const auto index = static_cast<std::size_t>(part);
    m_statusTexts[index] = ' ' + text;
    m_status.Send(SB_SETTEXTA, index, reinterpret_cast<LPARAM>(m_statusTexts[index].c_str()));
    const HANDLE icon = warns ? LoadImageA(nullptr, IDI_WARNING, IMAGE_ICON, GetSystemMetrics(SM_CXSMICON),
                                           GetSystemMetrics(SM_CYSMICON), LR_SHARED)
                              : nullptr;
    m_status.Send(SB_SETICON, index, reinterpret_cast<LPARAM>(icon));
}

void MainFrame::ShowClient(const std::string& client) {
    m_clientBar.Show(client);
    const Client* known = m_application.State().clients.Find(client);
    SetStatus(StatusPart::client, known            ? known->id + "  " + known->name
                                  : client.empty() ? "All clients"
                                                   : client);
}

void MainFrame::ShowLogin() {
    const TerminalConfig& config = m_application.State().config;
    SetStatus(StatusPart::login, config.loginId + ", login mode " + std::to_string(config.loginMode));
}

bool MainFrame::OnCommand(const framework::Command& command) {
    if (command.id == kClientComboId && command.notification == CBN_SELCHANGE) {
        m_application.ActivateClient(m_clientBar.Picked());
        return true;
    }
    return !command.control && OnMenuCommand(command.id);
}

bool MainFrame::OnMenuCommand(int id) {
    const TerminalConfig& config = m_application.State().config;
    const struct {
        int first, count;
        std::function<void(int)> run; // gets the command's place in its range
    } commands[] = {
        {kExitCommand, 1, [&](int) { m_application.RequestClose(); }},
        {kShowWatchCommand, 1, [&](int) { m_watchShown = !m_watchShown; }},
        {kShowLogCommand, 1, [&](int) { m_logShown = !m_logShown; }},
        {kFontSmallerCommand, 1,
         [&](int) { m_application.SetFont(config.fontVariation - 1, config.fontSize); }},
        {kFontNormalCommand, 1, [&](int) { m_application.SetFont(0, 0); }},
        {kFontLargerCommand, 1, [&](int) { m_application.SetFont(config.fontVariation + 1, config.fontSize); }},
        {kFirstPaneCommand, kMostPanes * kDockCommandsPerPane,
         [&](int number) { m_docking.RunNumber(number); }},
        {kFirstFontSizeCommand, kMostPoints + 1, [&](int points) { m_application.SetFont(0, points); }},
        {kFirstLoginModeCommand, TerminalConfig::kMostLoginMode + 1,
         [&](int mode) { m_application.SetLoginMode(mode); }},
        {kFirstRightCommand, kMostRights,
         [&](int index) {
             if (index >= static_cast<int>(config.rights.size())) return;
             const auto [right, granted] = *std::next(config.rights.begin(), index);
             m_application.SetRight(right, !granted);
         }},
        {kCancelOrderCommand, 1, [&](int) { m_application.Request([this] { TellPanes("Cancel Order"); }); }},
        {kWaitingCommand, 1,
         [&](int) { m_application.Request([this] { m_application.ShowWaitingRequests(); }); }},
        {kFillCommand, 1, [&](int) { m_application.RequestCommand(AskForRegistrations); }},
        {kOtherOrdersCommand, 1, [&](int) { m_application.RequestCommand(AskForOtherOrders); }},
        {kExecuteCommand, 1, [&](int) { m_application.RequestCommand(AskForExecution); }},
        {kNextInstalmentCommand, 1,
         [&](int) { m_application.Request([this] { m_application.TellServer("clock next"); }); }},
        {kClockCommand, 1, [&](int) { m_application.RequestCommand(AskForClock); }},
        {kFirstPluginCommand, kEntriesPerPlugin * static_cast<int>(m_application.Plugins().Plugins().size()),
         [&](int entry) {
             m_application.Request([this, number = static_cast<std::size_t>(entry)] {
                 const TerminalConfig& user = m_application.State().config;
                 m_application.Plugins().Pick(number / kEntriesPerPlugin, number % kEntriesPerPlugin,
                                              user.loginId, user.loginMode);
             });
         }},
    };
    for (const auto& command : commands)
        if (id >= command.first && id < command.first + command.count) {
            command.run(id - command.first);
            RebuildMenu();
            LayOut();
            return true;
        }
    return false;
}

std::optional<LRESULT> MainFrame::OnNotify(const NMHDR& header) {
    if (const auto answer = m_watch.OnNotify(header)) return answer;
    return m_log.OnNotify(header);
}

std::optional<LRESULT> MainFrame::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        m_status.Send(WM_SIZE, wParam, lParam);
        LayOut();
        return 0;
    case WM_ACTIVATE:
        if (m_focus.OnActivate(Handle(), wParam)) return 0;
        return std::nullopt;
    case WM_CLOSE:
        m_application.RequestClose();
        return 0;
    case WM_QUERYENDSESSION:
        return m_application.MayEndSession();
    case WM_ENDSESSION:
        if (wParam) m_application.EndSession();
        return 0;
    case WM_TIMER:
        m_application.OnTimer(wParam);
        return 0;
    case WM_PARENTNOTIFY:
        if (LOWORD(wParam) == WM_DESTROY) m_docking.Forget(reinterpret_cast<HWND>(lParam));
        return std::nullopt;
    case kRegisterPaneMessage:
        m_docking.Register(reinterpret_cast<HWND>(wParam));
        LayOut();
        return 0;
    case kDeferredMessage:
        m_application.OnDeferred(wParam);
        return 0;
    case kLogChangedMessage:
        m_logStale = false;
        m_log.Refresh();
        return 0;
    case kPanesChangedMessage:
        OnPanesChanged(wParam != 0);
        return 0;
    case WM_EXITMENULOOP:
        if (m_menuStale) OnPanesChanged(true);
        return 0;
    case WM_PAINT: {
        PAINTSTRUCT paint{};
        m_dockBars.Paint(BeginPaint(Handle(), &paint), m_font.Get());
        EndPaint(Handle(), &paint);
        return 0;
    }
    default:
        if (!m_dragged)
            if (const auto answer = m_dockBars.OnMessage(message, wParam, lParam)) return answer;
        return OnMouse(message, lParam);
    }
}

std::optional<LRESULT> MainFrame::OnMouse(UINT message, LPARAM lParam) {
    switch (message) {
    case WM_SETCURSOR: {
        POINT point{};
        GetCursorPos(&point);
        ScreenToClient(Handle(), &point);
        if (LOWORD(lParam) != HTCLIENT || !m_layout.SplitterAt(point.y)) return std::nullopt;
        SetCursor(LoadCursorA(nullptr, IDC_SIZENS));
        return TRUE;
    }
    case WM_LBUTTONDOWN:
        m_dragged = m_layout.SplitterAt(GET_Y_LPARAM(lParam));
        if (m_dragged) SetCapture(Handle());
        return 0;
    case WM_MOUSEMOVE:
        if (!m_dragged) return std::nullopt;
        m_layout.Drag(*m_dragged, GET_Y_LPARAM(lParam));
        LayOut();
        return 0;
    case WM_LBUTTONUP:
        if (m_dragged) ReleaseCapture();
        return 0;
    case WM_CAPTURECHANGED:
        m_dragged.reset();
        return 0;
    default:
        return std::nullopt;
    }
}

bool MainFrame::OnDpiChanged(UINT dpi, const RECT& suggested) {
    for (Band& band : m_layout.Bands())
        for (int* height : {&band.wanted, &band.least})
            *height = MulDiv(*height, static_cast<int>(dpi), static_cast<int>(m_dpi));
    m_dpi = dpi;
    Self().Move(suggested);
    ApplyFont();
    return true;
}

void MainFrame::OnPanesChanged(bool menus) {
    GUITHREADINFO thread{};
    thread.cbSize = sizeof thread;
    m_menuStale = menus && GetGUIThreadInfo(GetCurrentThreadId(), &thread) && (thread.flags & GUI_INMENUMODE);
    if (menus && !m_menuStale) RebuildMenu();
    LayOut();
}

void MainFrame::TellPanes(const std::string& command) {
    for (const HWND pane : m_docking.Panes())
        SendMessageA(pane, kPaneCommandMessage, 0, reinterpret_cast<LPARAM>(command.c_str()));
}

void MainFrame::LayOut() {
    auto& bands = m_layout.Bands();
    if (bands.empty() || IsIconic(Handle())) return;
    const bool docked = m_docking.Layout().ShowsDocked();
    bands[middleBand].shown = m_watchShown || docked;
    bands[middleBand].least = Scale().Pixels(docked ? kLeastDockingHeight : kLeastWatchHeight);
    bands[logBand].shown = m_logShown;
    const RECT client = Self().ClientRect();
    RECT status{};
    GetWindowRect(m_status.Handle(), &status);
    m_layout.Arrange(client.bottom - (status.bottom - status.top));

    const FrameScale scale = Scale();
    const auto place = [&](const Band& band) {
        return RECT{0, band.top, client.right, band.top + band.height};
    };
    m_clientBar.Place(place(bands[clientBand]), scale);
    m_watch.Place(m_docking.LayOut(place(bands[middleBand]), scale, m_watchShown), scale);
    framework::Window(m_watch.List()).Show(m_watchShown);
    m_log.Show(m_logShown);
    m_log.Place(place(bands[logBand]), scale);
    LayOutStatusBar(client.right);
    // Children that change places copy what lay between them.
    RedrawWindow(Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void MainFrame::LayOutStatusBar(int width) {
    // The widths of the parts behind the first, which takes what is left.
    constexpr int widths[] = {200, 165, 240, 95, 160};
    int edges[std::size(widths) + 1] = {};
    edges[std::size(widths)] = width - Scale().Pixels(20);
    for (std::size_t part = std::size(widths); part-- > 0;)
        edges[part] = std::max(0, edges[part + 1] - Scale().Pixels(widths[part]));
    static_assert(std::size(edges) == static_cast<std::size_t>(StatusPart::count));
    m_status.Send(SB_SETPARTS, std::size(edges), reinterpret_cast<LPARAM>(edges));
    for (std::size_t i = 0; i < m_statusTexts.size(); ++i)
        m_status.Send(SB_SETTEXTA, i, reinterpret_cast<LPARAM>(m_statusTexts[i].c_str()));
}

} // namespace vesk
