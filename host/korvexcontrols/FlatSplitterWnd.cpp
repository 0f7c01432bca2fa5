#include "sdk/korvex/FlatSplitterWnd.h"

#include "framework/CustomWindow.h"
#include "framework/Guard.h"
#include "host/korvexcontrols/RecoveryFiles.h"
#include "host/korvexcontrols/model/KeptLayout.h"

#include <windowsx.h>

#include <memory>
#include <string>
#include <utility>

using framework::Guard;

namespace {

constexpr char kSplitters[] = "Splitters";
constexpr int kThickness = 6; // pixels at 96 DPI
constexpr int kKeyStep = 8;
constexpr int kFarthest = 1 << 20;

} // namespace

// Lives until Release, and while a message is handled: the parent may let the splitter go when it is told.
class CFlatSplitterWnd::Impl final : public framework::CustomWindow {
public:
    static Impl* Make() {
        auto made = std::make_shared<Impl>();
        made->m_self = made;
        return made.get();
    }
    void Release() {
        const auto held = std::exchange(m_self, nullptr);
        Destroy();
    }
    bool Open(const CFlatSplitterWnd::Args& args);
    void Place(const RECT& area);
    RECT First() const { return {m_area.left, m_area.top, m_area.right, m_area.top + Height()}; }
    RECT Second() const { return {m_area.left, First().bottom + Thickness(), m_area.right, m_area.bottom}; }

private:
    std::shared_ptr<void> Hold() override { return m_self; }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnKey(WPARAM key);
    bool WantsKey(WPARAM key) const;
    void BeginDrag(LPARAM place);
    void EndDrag();
    void Drag(LPARAM place);
    void MoveTo(int height);
    void MoveTo(korvex::SplitPosition position);
    void PlaceBar() const { Self().Move({m_area.left, First().bottom, m_area.right, Second().top}); }
    void Paint() const;
    void Remember() const;

    int Thickness() const { return framework::Scaled(kThickness, Self().Dpi()); }
    int Room() const { return m_area.bottom - m_area.top - Thickness(); }
    korvex::SplitPosition::Least Least() const {
        return {framework::Scaled(m_firstLeast, Self().Dpi()), framework::Scaled(m_secondLeast, Self().Dpi())};
    }
    int Height() const { return m_position.First(Room(), Least()); }

    std::shared_ptr<Impl> m_self;
    std::string m_name;
    int m_firstLeast = 0;
    int m_secondLeast = 0;
    RECT m_area{};
    korvex::SplitPosition m_usual{0}, m_position{0};
    bool m_dragging = false;
    int m_grabbed = 0; // where in the bar
    korvex::SplitPosition m_beforeDrag{0};
    HWND m_focusBeforeDrag = nullptr;
};

bool CFlatSplitterWnd::Impl::Open(const CFlatSplitterWnd::Args& args) {
    if (Handle()) return false;
    m_name = args.name;
    m_firstLeast = args.firstLeast;
    m_secondLeast = args.secondLeast;
    m_usual = korvex::SplitPosition(args.firstShare * (korvex::SplitPosition::kWhole / 100));
    const std::string kept = korvex::ReadRecovered(korvex::RecoveryFile::dialogPositions, kSplitters, m_name);
    m_position = korvex::ReadSplit(kept).value_or(m_usual);
    if (!Create({.module = framework::ModuleHolding(&kSplitters),
                 .className = "KorvexSplitter",
                 .classStyle = CS_DBLCLKS,
                 .caption = "Splitter",
                 .style = WS_CHILD | WS_VISIBLE | WS_TABSTOP,
                 .rect = {},
                 .parent = args.parent,
                 .menuOrId = reinterpret_cast<HMENU>(static_cast<INT_PTR>(args.id))}))
        return false;
    SetWindowPos(Handle(), args.behind, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return true;
}

void CFlatSplitterWnd::Impl::Place(const RECT& area) {
    m_area = area;
    PlaceBar();
}

std::optional<LRESULT> CFlatSplitterWnd::Impl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SETCURSOR:
        SetCursor(LoadCursorA(nullptr, IDC_SIZENS));
        return TRUE;
    case WM_LBUTTONDOWN:
        BeginDrag(lParam);
        return 0;
    case WM_MOUSEMOVE:
        if (m_dragging) Drag(lParam);
        return 0;
    case WM_LBUTTONUP:
        if (m_dragging) ReleaseCapture();
        return 0;
    case WM_CAPTURECHANGED:
        EndDrag();
        return 0;
    case WM_LBUTTONDBLCLK:
        MoveTo(m_usual);
        return 0;
    case WM_GETDLGCODE: {
        const auto* key = reinterpret_cast<const MSG*>(lParam);
        return key && key->message == WM_KEYDOWN && WantsKey(key->wParam) ? DLGC_WANTMESSAGE : 0;
    }
    case WM_KEYDOWN:
        return OnKey(wParam) ? std::optional<LRESULT>(0) : std::nullopt;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        InvalidateRect(Handle(), nullptr, TRUE);
        return std::nullopt;
    case WM_PAINT:
        Paint();
        return 0;
    case WM_DESTROY:
        Remember();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

// While it is dragged, Escape is not the dialog's.
bool CFlatSplitterWnd::Impl::WantsKey(WPARAM key) const {
    return key == VK_UP || key == VK_DOWN || key == VK_HOME || key == VK_END
           || (key == VK_ESCAPE && m_dragging);
}

bool CFlatSplitterWnd::Impl::OnKey(WPARAM key) {
    if (!WantsKey(key)) return false;
    const int step = framework::Scaled(kKeyStep, Self().Dpi());
    if (key == VK_ESCAPE) {
        const auto before = m_beforeDrag;
        ReleaseCapture();
        MoveTo(before);
    }
    if (key == VK_UP) MoveTo(Height() - step);
    if (key == VK_DOWN) MoveTo(Height() + step);
    if (key == VK_HOME) MoveTo(0);
    if (key == VK_END) MoveTo(kFarthest);
    return true;
}

void CFlatSplitterWnd::Impl::BeginDrag(LPARAM place) {
    m_focusBeforeDrag = SetFocus(Handle());
    SetCapture(Handle());
    m_dragging = true;
    m_grabbed = GET_Y_LPARAM(place);
    m_beforeDrag = m_position;
}

void CFlatSplitterWnd::Impl::EndDrag() {
    if (!std::exchange(m_dragging, false)) return;
    // Whoever typed types on.
    if (GetFocus() == Handle() && IsWindow(m_focusBeforeDrag)) SetFocus(m_focusBeforeDrag);
}

void CFlatSplitterWnd::Impl::Drag(LPARAM place) {
    POINT at{0, GET_Y_LPARAM(place)};
    MapWindowPoints(Handle(), GetParent(Handle()), &at, 1);
    MoveTo(at.y - m_grabbed - m_area.top);
}

void CFlatSplitterWnd::Impl::MoveTo(int height) {
    korvex::SplitPosition position = m_position;
    position.MoveTo(height, Room(), Least());
    MoveTo(position);
}

void CFlatSplitterWnd::Impl::MoveTo(korvex::SplitPosition position) {
    if (position.Share() == m_position.Share()) return;
    m_position = position;
    PlaceBar();
    const auto id = static_cast<UINT_PTR>(GetDlgCtrlID(Handle()));
    const NMHDR told{Handle(), id, kKorvexSplitterMoved};
    SendMessageA(GetParent(Handle()), WM_NOTIFY, id, reinterpret_cast<LPARAM>(&told));
}

// The bar is a line along the middle, in the colour of a selection while it has the focus.
void CFlatSplitterWnd::Impl::Paint() const {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(Handle(), &paint);
    RECT line = Self().ClientRect();
    const bool focused = GetFocus() == Handle();
    InflateRect(&line, 0, -(line.bottom - (focused ? Thickness() / 2 : 1)) / 2);
    FillRect(dc, &line, GetSysColorBrush(focused ? COLOR_HIGHLIGHT : COLOR_BTNSHADOW));
    EndPaint(Handle(), &paint);
}

void CFlatSplitterWnd::Impl::Remember() const {
    const std::string share = std::to_string(m_position.Share());
    const std::string kept = korvex::ReadRecovered(korvex::RecoveryFile::dialogPositions, kSplitters, m_name);
    const bool neverMoved = kept.empty() && m_position.Share() == m_usual.Share();
    if (share != kept && !neverMoved)
        korvex::WriteRecovered(korvex::RecoveryFile::dialogPositions, kSplitters, m_name, share);
}

CFlatSplitterWnd::CFlatSplitterWnd() noexcept
    : m_impl(Guard(static_cast<Impl*>(nullptr), [] { return Impl::Make(); })) {}

CFlatSplitterWnd::~CFlatSplitterWnd() {
    Guard([&] {
        if (m_impl) m_impl->Release();
    });
}

bool CFlatSplitterWnd::Create(const Args& args) noexcept {
    return Guard(false, [&] { return m_impl && m_impl->Open(args); });
}

HWND CFlatSplitterWnd::Handle() const noexcept {
    return m_impl ? m_impl->Handle() : nullptr;
}

void CFlatSplitterWnd::Place(const RECT& area) noexcept {
    if (m_impl) m_impl->Place(area);
}

RECT CFlatSplitterWnd::First() const noexcept {
    return m_impl ? m_impl->First() : RECT{};
}

RECT CFlatSplitterWnd::Second() const noexcept {
    return m_impl ? m_impl->Second() : RECT{};
}
