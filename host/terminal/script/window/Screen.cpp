#include "host/terminal/script/window/Screen.h"

#include "framework/Handle.h"
#include "host/files/Files.h"
#include "host/terminal/docking/window/DockParts.h"

#include <objidl.h>

#include <gdiplus.h>

#include <algorithm>
#include <functional>
#include <vector>

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

// A box holds nothing but texts and buttons: other dialogs of the same class hold something to fill in.
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

namespace {

// The PNG encoder that is part of every Windows.
constexpr CLSID kPngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

void CloseContext(HDC context) {
    DeleteDC(context);
}
void CloseBitmap(HBITMAP bitmap) {
    DeleteObject(bitmap);
}
using Context = framework::UniqueHandle<HDC, CloseContext>;
using Bitmap = framework::UniqueHandle<HBITMAP, CloseBitmap>;

Bitmap CopyScreen(int width, int height) {
    const HDC screen = GetDC(nullptr);
    Context memory(CreateCompatibleDC(screen));
    Bitmap bitmap(CreateCompatibleBitmap(screen, width, height));
    const HGDIOBJ before = SelectObject(memory.Get(), bitmap.Get());
    BitBlt(memory.Get(), 0, 0, width, height, screen, 0, 0, SRCCOPY | CAPTUREBLT);
    SelectObject(memory.Get(), before);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

bool IsBlank(HBITMAP bitmap, int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const HDC screen = GetDC(nullptr);
    GetDIBits(screen, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    return std::ranges::all_of(pixels, [&](std::uint32_t pixel) { return pixel == pixels.front(); });
}

bool SavePng(HBITMAP bitmap, const std::string& path) {
    namespace flat = Gdiplus::DllExports;
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return false;
    Gdiplus::GpBitmap* picture = nullptr;
    bool saved = false;
    if (flat::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, &picture) == Gdiplus::Ok) {
        saved = flat::GdipSaveImageToFile(picture, PathOf(path).c_str(), &kPngEncoder, nullptr) == Gdiplus::Ok;
        flat::GdipDisposeImage(picture);
    }
    Gdiplus::GdiplusShutdown(token);
    return saved;
}

} // namespace

std::string SaveScreenshot(const std::string& path) {
    const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    const Bitmap bitmap = CopyScreen(width, height);
    if (!bitmap) return "the screen cannot be copied";
    if (IsBlank(bitmap.Get(), width, height)) return "the screen is blank";
    return SavePng(bitmap.Get(), path) ? "" : "\"" + path + "\" cannot be written";
}

} // namespace vesk
