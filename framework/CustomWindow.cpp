#include "framework/CustomWindow.h"

#include "framework/Guard.h"

namespace framework {

// A library may be unloaded and loaded elsewhere: its classes must not stay. The system refuses this while
// another window of the class lives.
CustomWindow::~CustomWindow() {
    Destroy();
    if (m_className) UnregisterClassA(m_className, m_module);
}

bool CustomWindow::Create(const Args& args) {
    m_module = args.module;
    m_className = args.className;
    WNDCLASSEXA windowClass{};
    windowClass.cbSize = sizeof windowClass;
    if (!GetClassInfoExA(args.module, args.className, &windowClass)) {
        windowClass = {};
        windowClass.cbSize = sizeof windowClass;
        windowClass.style = args.classStyle;
        windowClass.lpfnWndProc = Procedure;
        windowClass.hInstance = args.module;
        windowClass.hIcon = args.icon;
        windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
        windowClass.hbrBackground = args.background;
        windowClass.lpszClassName = args.className;
        if (!RegisterClassExA(&windowClass)) return false;
    }
    const RECT& r = args.rect;
    const bool byDefault = r.right == CW_USEDEFAULT;
    return CreateWindowExA(args.exStyle, args.className, args.caption, args.style, r.left, r.top,
                           byDefault ? CW_USEDEFAULT : r.right - r.left,
                           byDefault ? CW_USEDEFAULT : r.bottom - r.top, args.parent, args.menuOrId,
                           args.module, this)
           != nullptr;
}

void CustomWindow::Destroy() {
    if (m_handle) DestroyWindow(m_handle);
}

LRESULT CALLBACK CustomWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    return Guard(LRESULT{0}, [&]() -> LRESULT {
        if (message == WM_NCCREATE) {
            auto* created =
                static_cast<CustomWindow*>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams);
            created->m_handle = window;
            SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
        }
        auto* self = reinterpret_cast<CustomWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (!self) return DefWindowProcA(window, message, wParam, lParam);
        const auto held = self->Hold();
        if (message == WM_NCDESTROY) {
            SetWindowLongPtrA(window, GWLP_USERDATA, 0);
            self->m_handle = nullptr;
            self->OnDestroyed();
            return DefWindowProcA(window, message, wParam, lParam);
        }
        const auto answer = self->Dispatch(message, wParam, lParam);
        return answer ? *answer : DefWindowProcA(window, message, wParam, lParam);
    });
}

} // namespace framework
