#include "framework/Dialog.h"

#include "framework/Guard.h"
#include "framework/KeyboardHook.h"
#include "framework/MessageBoxes.h"

#include <utility>

namespace framework {

namespace {

constexpr UINT_PTR kBoxTimer = 0xB0;
constexpr UINT kBoxTimerMs = 50;

} // namespace

bool Dialog::Create(HWND parent) {
    return CreateDialogParamA(m_module, MAKEINTRESOURCEA(m_resource), parent, Procedure,
                              reinterpret_cast<LPARAM>(this))
           != nullptr;
}

bool Dialog::RunModal(HWND owner) {
    const HWND root = GetAncestor(owner, GA_ROOT);
    DisableOwner(root);
    if (!Create(root)) {
        EnableOwner();
        m_ownersFocus.reset();
        return false;
    }
    Self().Show(true);
    MSG message{};
    while (m_handle) {
        if (GetMessageA(&message, nullptr, 0, 0) > 0) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
            continue;
        }
        // The end of the program is for the loop outside.
        Destroy();
        PostQuitMessage(static_cast<int>(message.wParam));
    }
    return true;
}

void Dialog::DisableOwner(HWND owner) {
    m_ownersFocus.emplace();
    if (!EnableWindow(owner, FALSE)) m_disabledOwner = owner;
}

// Before the window goes, or another program's window would come to the front.
void Dialog::EnableOwner() {
    if (const HWND owner = std::exchange(m_disabledOwner, nullptr)) EnableWindow(owner, TRUE);
}

void Dialog::Destroy() {
    EnableOwner();
    if (m_handle) DestroyWindow(m_handle);
}

bool Dialog::WaitForBox(const MessageBoxes& boxes) {
    if (!boxes.BringToFront()) return true;
    m_waitsFor = &boxes;
    SetTimer(m_handle, kBoxTimer, kBoxTimerMs, nullptr);
    return false;
}

// The timer's message comes in the loop of the box as well.
void Dialog::OnBoxTimer() {
    if (m_waitsFor && m_waitsFor->IsBusy()) return;
    const HWND window = m_handle;
    KillTimer(window, kBoxTimer);
    if (!OnBoxGone()) SetTimer(window, kBoxTimer, kBoxTimerMs, nullptr);
}

int Dialog::TemplateFontSize() {
    if (!m_layout) m_layout.emplace(m_module, m_resource);
    return m_layout->TemplatePointSize();
}

void Dialog::SetFontSize(int points) {
    m_points = points;
    if (m_handle) LayOut(Self().Dpi());
}

void Dialog::LayOut(UINT dpi) {
    const int own = TemplateFontSize();
    m_layout->Apply(m_handle, m_points ? m_points : own, dpi);
    OnLaidOut();
}

Icon Dialog::LoadModuleIcon(int resource, int side) const {
    return Icon(static_cast<HICON>(
        LoadImageA(m_module, MAKEINTRESOURCEA(resource), IMAGE_ICON, side, side, LR_DEFAULTCOLOR)));
}

void Dialog::SetCaptionIcon(int resource) {
    Icon icon = LoadModuleIcon(resource, GetSystemMetricsForDpi(SM_CXSMICON, Self().Dpi()));
    Self().Send(WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon.Get()));
    m_captionIcon = std::move(icon);
}

bool Dialog::OnDpiChanged(UINT dpi, const RECT& suggested) {
    SetWindowPos(m_handle, nullptr, suggested.left, suggested.top, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    LayOut(dpi);
    return true;
}

INT_PTR CALLBACK Dialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    return Guard(INT_PTR{0}, [&]() -> INT_PTR {
        if (message == WM_INITDIALOG) SetWindowLongPtrA(window, DWLP_USER, lParam);
        auto* self = reinterpret_cast<Dialog*>(GetWindowLongPtrA(window, DWLP_USER));
        if (!self) return 0;
        const auto held = self->Hold();
        return self->HandleMessage(window, message, wParam, lParam);
    });
}

INT_PTR Dialog::HandleMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        m_handle = window;
        KeyboardHook::Enroll(window);
        LayOut(Self().Dpi());
        // Whoever is asked for the layout may close it, and open another.
        if (m_handle == window) OnInit();
        return TakesFocus();
    case WM_DPICHANGED_AFTERPARENT:
        LayOut(Self().Dpi());
        return TRUE;
    case WM_TIMER:
        if (wParam != kBoxTimer) break;
        OnBoxTimer();
        return TRUE;
    case WM_CLOSE:
        OnClose();
        return TRUE;
    case WM_CTLCOLORSTATIC:
        // The brush is the answer itself.
        return SendMessageA(reinterpret_cast<HWND>(lParam), kReflected + message, wParam, lParam);
    case WM_NCDESTROY:
        SetWindowLongPtrA(window, DWLP_USER, 0);
        KeyboardHook::Withdraw(window);
        m_handle = nullptr;
        EnableOwner();
        m_ownersFocus.reset();
        OnDestroyed();
        return FALSE; // the system's own procedure frees the template's font
    default:
        break;
    }
    const auto answer = Dispatch(message, wParam, lParam);
    if (answer) {
        SetWindowLongPtrA(window, DWLP_MSGRESULT, *answer);
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        OnClose();
        return TRUE;
    }
    return FALSE;
}

} // namespace framework
