#include "host/korvexcontrols/model/SplitPosition.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace korvex {
namespace {

// Rounded; none of the values is negative.
int Portion(int whole, int part, int of) {
    return static_cast<int>((std::int64_t{whole} * part + of / 2) / of);
}

} // namespace

SplitPosition::SplitPosition(int share) : m_share(std::clamp(share, 0, kWhole)) {}

int SplitPosition::First(int room, Least least) const {
    if (room <= 0) return 0;
    const int both = least.first + least.second;
    if (both >= room) return Portion(room, least.first, both);
    return std::clamp(Portion(room, m_share, kWhole), least.first, room - least.second);
}

void SplitPosition::MoveTo(int first, int room, Least least) {
    if (room <= least.first + least.second) return;
    m_share = Portion(kWhole, std::clamp(first, least.first, room - least.second), room);
}

std::optional<SplitPosition> ReadSplit(std::string_view text) {
    int share = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, fault] = std::from_chars(text.data(), end, share);
    if (fault != std::errc() || behind != end || share < 0 || share > SplitPosition::kWhole)
        return std::nullopt;
    return SplitPosition(share);
}

} // namespace korvex
