#include "host/terminal/script/window/WindowFinder.h"

#include "host/terminal/docking/window/DockParts.h"

#include <functional>

namespace vesk {
namespace {

constexpr int kMessageTextId = 0xFFFF;
constexpr UINT kGetMenuOfPopup = 0x01E1; // MN_GETHMENU

std::vector<HWND> Children(HWND window) {
    std::vector<HWND> children;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        children.push_back(child);
    return children;
}

// The first at the least depth that passes the test.
HWND FindDescendant(HWND window, const std::function<bool(HWND)>& test) {
    std::vector<HWND> level = Children(window);
    while (!level.empty()) {
        std::vector<HWND> next;
        for (const HWND child : level) {
            if (test(child)) return child;
            const std::vector<HWND> below = Children(child);
            next.insert(next.end(), below.begin(), below.end());
        }
        level = std::move(next);
    }
    return nullptr;
}

// Nothing but texts and buttons: other dialogs of the same class hold something to fill in.
bool IsMessageBox(HWND window) {
    if (!IsOfClass(window, "#32770") || !GetDlgItem(window, kMessageTextId)) return false;
    bool hasButton = false;
    for (const HWND child : Children(window)) {
        const bool button = IsOfClass(child, "Button");
        if (!button && !IsOfClass(child, "Static")) return false;
        hasButton |= button;
    }
    return hasButton;
}

} // namespace

std::vector<HWND> TopLevelWindows() {
    std::vector<HWND> windows;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM list) -> BOOL {
            if (IsWindowVisible(window)) reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&windows));
    return windows;
}

bool IsOfClass(HWND window, std::string_view name) {
    char text[64] = "";
    GetClassNameA(window, text, sizeof text);
    return name == text;
}

bool IsCaption(std::string_view text, std::string_view caption) {
    return caption.ends_with('*') ? text.starts_with(caption.substr(0, caption.size() - 1)) : text == caption;
}

HWND FindWindowByCaption(const std::string& caption, HWND frame) {
    for (const HWND window : TopLevelWindows()) {
        if (!IsCaption(framework::Window(window).Text(), caption)) continue;
        // The window in which a pane floats has the pane's caption.
        const HWND pane = IsOfClass(window, FloatWindow::kClass) ? GetWindow(window, GW_CHILD) : nullptr;
        return pane ? pane : window;
    }
    return FindDescendant(frame, [&](HWND child) {
        return IsWindowVisible(child) && IsCaption(framework::Window(child).Text(), caption);
    });
}

HWND FindControl(HWND window, int id) {
    const auto isControl = [id](HWND child) { return GetDlgCtrlID(child) == id; };
    const HWND seen =
        FindDescendant(window, [&](HWND child) { return isControl(child) && IsWindowVisible(child); });
    return seen ? seen : FindDescendant(window, isControl);
}

HWND FindMessageBox() {
    for (const HWND window : TopLevelWindows())
        if (IsMessageBox(window)) return window;
    return nullptr;
}

std::string MessageBoxText(HWND box) {
    return framework::Window(GetDlgItem(box, kMessageTextId)).Text();
}

HWND MessageBoxButton(HWND box, int button) {
    if (const HWND found = GetDlgItem(box, button)) return found;
    HWND only = nullptr;
    for (const HWND child : Children(box)) {
        if (!IsOfClass(child, "Button") || !IsWindowVisible(child)) continue;
        if (only) return nullptr;
        only = child;
    }
    return button == IDOK ? only : nullptr;
}

HMENU FindOpenMenu(HWND& window) {
    window = FindWindowA("#32768", nullptr);
    if (!window || !IsWindowVisible(window)) return nullptr;
    return reinterpret_cast<HMENU>(SendMessageA(window, kGetMenuOfPopup, 0, 0));
}

} // namespace vesk
