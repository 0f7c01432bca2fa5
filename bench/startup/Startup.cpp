// From loading the plug-in to its painted order entry window, once in a fresh process, which is the host.
// Beside it the floor: a window of the same template whose controls nobody fills.
//
// Prints both in microseconds.
#include "plugin/resources/resource.h"
#include "sdk/PluginExports.h"
#include "tests/support/FakeHost.h"
#include "tests/support/WindowProbe.h"

#include <chrono>
#include <cstdio>

#include <commctrl.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kTitle[] = "Planfold Order Entry";

long long Microseconds(Clock::time_point from) {
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - from).count();
}

// The loop paints once nothing else waits.
bool IsPainted(HWND window) {
    probe::Pump();
    return window && IsWindowVisible(window) && !GetUpdateRect(window, nullptr, FALSE);
}

long long MeasureFloor(HMODULE templates, HWND owner) {
    const auto start = Clock::now();
    HWND window = CreateDialogParamA(
        templates, MAKEINTRESOURCEA(IDD_ORDER_ENTRY), owner,
        [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
    ShowWindow(window, SW_SHOW);
    const bool painted = IsPainted(window);
    const long long taken = Microseconds(start);
    DestroyWindow(window);
    return painted ? taken : -1;
}

long long MeasurePlugin(const char* path, StringManager& strings) {
    const auto start = Clock::now();
    HMODULE plugin = LoadLibraryA(path);
    if (!plugin) return -1;
    const auto init = reinterpret_cast<sdk::plugin::InitVeskPlugin*>(
        reinterpret_cast<void*>(GetProcAddress(plugin, "InitVeskPlugin")));
    PassedString entry("Order Entry", strings);
    init(nullptr, "LOGIN", 3, entry.Hand());
    const bool painted = IsPainted(probe::FindDialog(kTitle));
    const long long taken = Microseconds(start);
    reinterpret_cast<sdk::plugin::ExitVeskPlugin*>(
        reinterpret_cast<void*>(GetProcAddress(plugin, "ExitVeskPlugin")))();
    FreeLibrary(plugin);
    return painted ? taken : -1;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES | ICC_DATE_CLASSES};
    InitCommonControlsEx(&classes);
    planfold::test::FakeHost host;
    ShowWindow(host.mainFrame, SW_SHOW);
    probe::Pump();
    // The first window of a process waits for the window system, which neither is to be charged with.
    HMODULE templates = LoadLibraryExA(arguments[1], nullptr, LOAD_LIBRARY_AS_DATAFILE);
    MeasureFloor(templates, host.mainFrame);
    const long long floor = MeasureFloor(templates, host.mainFrame);
    FreeLibrary(templates);
    const long long plugin = MeasurePlugin(arguments[1], host.strings);
    std::printf("%lld %lld\n", plugin, floor);
    return plugin > 0 && floor > 0 ? 0 : 1;
}
