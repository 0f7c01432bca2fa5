#include "host/terminal/docking/DockPlace.h"

#include "host/files/Json.h"

#include <algorithm>

namespace vesk {
namespace {

using nlohmann::json;

constexpr std::string_view kSideNames[] = {"left", "right", "top", "bottom"};
static_assert(std::size(kSideNames) == static_cast<std::size_t>(DockSide::count));

constexpr int kMostPixels = 32'767; // what a window message can carry
constexpr int kUsualDpi = 96;

struct NumberRow {
    const char* name;
    int least;
    int& (*member)(DockPlace&);
};
constexpr NumberRow kNumbers[] = {
    {"extent", 1, [](DockPlace& place) -> int& { return place.extent; }},
    {"floatLeft", -kMostPixels, [](DockPlace& place) -> int& { return place.floatRect.left; }},
    {"floatTop", -kMostPixels, [](DockPlace& place) -> int& { return place.floatRect.top; }},
    {"floatRight", -kMostPixels, [](DockPlace& place) -> int& { return place.floatRect.right; }},
    {"floatBottom", -kMostPixels, [](DockPlace& place) -> int& { return place.floatRect.bottom; }},
};

int Rescaled(int pixels, int from, int to) {
    return (pixels * to + from / 2) / from;
}

} // namespace

std::string PlaceText(const DockPlace& place) {
    DockPlace copy = place;
    json text = {{"side", kSideNames[static_cast<std::size_t>(place.side)]},
                 {"tabWith", place.tabWith},
                 {"floating", place.floating}};
    for (const NumberRow& row : kNumbers)
        text[row.name] = row.member(copy);
    // Captions are in the system's code page; what is not UTF-8 is replaced rather than refused.
    return text.dump(-1, ' ', false, json::error_handler_t::replace);
}

DockPlace PlaceFromText(std::string_view text) {
    DockPlace place;
    const json value = json::parse(text, nullptr, false);
    if (!value.is_object()) return place;
    for (const NumberRow& row : kNumbers) {
        const auto number = value.find(row.name);
        if (number == value.end() || !number->is_number_integer()) continue;
        const auto pixels = number->get<std::int64_t>();
        if (pixels >= row.least && pixels <= kMostPixels) row.member(place) = static_cast<int>(pixels);
    }
    if (const auto side = value.find("side"); side != value.end() && side->is_string()) {
        const auto* name = std::ranges::find(kSideNames, side->get<std::string>());
        if (name != std::end(kSideNames)) place.side = static_cast<DockSide>(name - kSideNames);
    }
    if (const auto tab = value.find("tabWith"); tab != value.end() && tab->is_string())
        place.tabWith = tab->get<std::string>();
    if (const auto floating = value.find("floating"); floating != value.end() && floating->is_boolean())
        place.floating = floating->get<bool>();
    if (place.floatRect.Empty()) place.floatRect = {};
    return place;
}

DockRect MovedInside(const DockRect& rect, const DockRect& monitor) {
    const int width = std::min(rect.Width(), monitor.Width());
    const int height = std::min(rect.Height(), monitor.Height());
    const int left = std::clamp(rect.left, monitor.left, monitor.right - width);
    const int top = std::clamp(rect.top, monitor.top, monitor.bottom - height);
    return {left, top, left + width, top + height};
}

int AtDpi(int pixels, unsigned dpi) {
    return Rescaled(pixels, kUsualDpi, static_cast<int>(dpi));
}

int AtUsualDpi(int pixels, unsigned dpi) {
    return Rescaled(pixels, static_cast<int>(dpi), kUsualDpi);
}

} // namespace vesk
