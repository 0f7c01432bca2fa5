#include "host/korvexcontrols/WindowPlace.h"

#include "base/Text.h"
#include "framework/DialogLayout.h"
#include "framework/Window.h"
#include "host/korvexcontrols/RecoveryFiles.h"

#include <array>
#include <optional>
#include <string_view>

namespace korvex {

namespace {

constexpr char kDialogs[] = "Dialogs";

struct Place {
    POINT corner;
    std::optional<SIZE> size; // at USER_DEFAULT_SCREEN_DPI
    bool maximised = false;
};

bool IsSizable(HWND window) {
    return (GetWindowLongPtrA(window, GWL_STYLE) & WS_THICKFRAME) != 0;
}

WINDOWPLACEMENT PlacementOf(HWND window) {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    GetWindowPlacement(window, &placement);
    return placement;
}

// Or will be when it is restored.
bool IsMaximised(HWND window) {
    return IsZoomed(window) || (IsIconic(window) && (PlacementOf(window).flags & WPF_RESTORETOMAXIMIZED));
}

RECT NormalPlace(HWND window) {
    if (IsIconic(window) || IsZoomed(window)) return PlacementOf(window).rcNormalPosition;
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

// "left,top" or "left,top,width,height", with ",1" where it is maximised.
std::optional<Place> ReadPlace(std::string_view text) {
    std::array<int, 5> numbers{};
    std::size_t count = 0;
    while (!text.empty() && count < numbers.size()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        const auto number = base::ReadNumber<int>(text.substr(0, comma));
        if (!number) return std::nullopt;
        numbers[count++] = *number;
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    const auto [left, top, width, height, maximised] = numbers;
    if (count == 2) return Place{{left, top}, std::nullopt};
    if (count < 4 || width <= 0 || height <= 0) return std::nullopt;
    return Place{{left, top}, SIZE{width, height}, maximised == 1};
}

} // namespace

SIZE Rescaled(const SIZE& size, UINT fromDpi, UINT toDpi) {
    const int from = static_cast<int>(fromDpi), to = static_cast<int>(toDpi);
    return {MulDiv(size.cx, to, from), MulDiv(size.cy, to, from)};
}

SIZE NormalSize(HWND window) {
    const RECT place = NormalPlace(window);
    return {place.right - place.left, place.bottom - place.top};
}

void RememberPlace(HWND window, const std::string& name) {
    const RECT place = NormalPlace(window);
    std::string text = std::to_string(place.left) + "," + std::to_string(place.top);
    if (IsSizable(window)) {
        const SIZE size =
            Rescaled(NormalSize(window), framework::Window(window).Dpi(), USER_DEFAULT_SCREEN_DPI);
        text +=
            "," + std::to_string(size.cx) + "," + std::to_string(size.cy) + (IsMaximised(window) ? ",1" : "");
    }
    if (text != ReadRecovered(RecoveryFile::dialogPositions, kDialogs, name))
        WriteRecovered(RecoveryFile::dialogPositions, kDialogs, name, text);
}

void RestorePlace(HWND window, const std::string& name) {
    const auto kept = ReadPlace(ReadRecovered(RecoveryFile::dialogPositions, kDialogs, name));
    if (!kept) return;
    RECT place{};
    GetWindowRect(window, &place);
    OffsetRect(&place, kept->corner.x - place.left, kept->corner.y - place.top);
    if (MonitorFromRect(&place, MONITOR_DEFAULTTONULL))
        SetWindowPos(window, nullptr, place.left, place.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    if (!kept->size || !IsSizable(window)) return;
    framework::ResizeOnScreen(window,
                              Rescaled(*kept->size, USER_DEFAULT_SCREEN_DPI, framework::Window(window).Dpi()));
    // Once it is shown: its contents may not be there yet.
    if (kept->maximised) PostMessageA(window, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
}

} // namespace korvex
