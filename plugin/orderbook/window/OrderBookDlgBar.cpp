#include "plugin/orderbook/window/OrderBookDlgBar.h"

#include "framework/Guard.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr int kPaneHeight = 200; // pixels at 96 DPI

} // namespace

void BottomDock::Dock(HWND frame, HWND pane) {
    m_pane = pane;
    if (Attach(frame)) Place();
}

void BottomDock::OnPaneMoved(const WINDOWPOS& position) {
    constexpr UINT onlyShown = SWP_NOMOVE | SWP_NOSIZE;
    if (!m_placing && (position.flags & onlyShown) != onlyShown) Detach();
}

std::optional<LRESULT> BottomDock::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_SIZE) return std::nullopt;
    const LRESULT result = Default(message, wParam, lParam);
    // A frame that looks after its panes has moved ours by now, and we have let go.
    if (Handle() && wParam != SIZE_MINIMIZED) Place();
    return result;
}

void BottomDock::Place() {
    const framework::Window frame(Handle());
    // The frame may have let it float where it stood.
    if (GetAncestor(m_pane, GA_PARENT) != frame.Handle()) return Detach();
    const RECT client = frame.ClientRect();
    const LONG height = std::min<LONG>(framework::Scaled(kPaneHeight, frame.Dpi()), client.bottom);
    m_placing = true;
    SetWindowPos(m_pane, HWND_TOP, 0, client.bottom - height, client.right, height, SWP_NOACTIVATE);
    m_placing = false;
}

namespace {

constexpr char kCaption[] = "SIP Registration Book";
constexpr DWORD kPaneStyle = 0x56408234; // a visible child with the host's docking bits
constexpr UINT kRegisterPaneMessage = 1933;
constexpr RECT kFirstRect{0, 0, 200, 200};

} // namespace

COrderBookDlgBar::COrderBookDlgBar(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                                   COrderBookDlg::OrderForm orderForm, COrderBookDlg::History history,
                                   COrderBookDlg::RecordCommand recordCommand)
    : m_module(module), m_session(session), m_boxes(boxes), m_requests(session.lookup, kRxRequests, this, this),
      m_identityStream(session.lookup, kRxIdentityStream, this, nullptr),
      m_accountStream(session.lookup, kRxAccountStream, this, nullptr),
      m_dialog(module, session, boxes,
               {m_requests.Control(), m_identityStream.Control(), m_accountStream.Control()},
               std::move(orderForm), std::move(history), std::move(recordCommand)) {}

void COrderBookDlgBar::Open(HWND mainFrame) {
    // What fails is told when the pane stands.
    const framework::MessageBoxes::Hold hold(m_boxes, framework::MessageBoxes::Hold::Then::together);
    if (!Handle()) MakePane(mainFrame);
    if (m_session.Ended() || !Handle()) return;
    Self().Show(true);
    m_dialog.FocusList();
    m_dialog.Book().Refresh();
}

void COrderBookDlgBar::MakePane(HWND mainFrame) {
    const bool made = Create({.module = m_module,
                              .className = "PlanfoldOrderBookBar",
                              .caption = kCaption,
                              .style = kPaneStyle,
                              .rect = kFirstRect,
                              .parent = mainFrame,
                              .menuOrId = reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDD_ORDER_BOOK))})
                      && m_dialog.Create(Handle());
    // The host is asked while the dialog fills, and may exit.
    if (m_session.Ended()) return;
    if (!made) {
        ShowLast("Unable to creat a sip dialog");
        Destroy(); // an empty pane; the next pick tries again
    }
    if (!Handle()) return;
    m_dialog.Self().Show(true);
    m_dock.Dock(mainFrame, Handle());
    SendMessageA(mainFrame, kRegisterPaneMessage, reinterpret_cast<WPARAM>(Handle()), 0);
}

void COrderBookDlgBar::ShutDown() {
    m_dock.Detach();
    Destroy();
    for (RxLink* link : {&m_requests, &m_identityStream, &m_accountStream})
        link->Release();
}

void COrderBookDlgBar::FilterByClient(std::string_view client) {
    if (m_dialog.HasWindow()) m_dialog.Book().FilterByClient(client);
}

std::optional<LRESULT> COrderBookDlgBar::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        m_dialog.Self().Move(Self().ClientRect());
        return 0;
    case WM_WINDOWPOSCHANGED:
        m_dock.OnPaneMoved(*reinterpret_cast<const WINDOWPOS*>(lParam));
        return std::nullopt;
    case WM_SETFOCUS:
        m_dialog.FocusList();
        return 0;
    case WM_CLOSE:
        Self().Show(false);
        return 0;
    case WM_COMMAND: // as a script or an accelerator of the host's sends it
    case COrderBookDlg::kCommandTextMessage:
        return m_dialog.Self().Send(message, wParam, lParam);
    default:
        return std::nullopt;
    }
}

void COrderBookDlgBar::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_dialog.Book().OnResponse(message);
    });
}

void COrderBookDlgBar::OnBroadcast(void* message, std::uint32_t, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_dialog.Book().OnBroadcast(message);
    });
}

} // namespace planfold
