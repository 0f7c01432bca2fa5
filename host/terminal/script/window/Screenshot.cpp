#include "host/terminal/script/window/Screenshot.h"

#include "framework/Handle.h"
#include "host/files/Paths.h"

#include <objidl.h>

#include <gdiplus.h>

#include <algorithm>
#include <vector>

namespace vesk {
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
