#include "host/korvexcontrols/ListLook.h"

#include "framework/Colours.h"

namespace korvex {
namespace {

using framework::Meaning;

constexpr bool AreTheSame(KorvexRowLook look, Meaning meaning) {
    return static_cast<std::int32_t>(look) == static_cast<std::int32_t>(meaning);
}
static_assert(AreTheSame(kKorvexPlain, Meaning::plain) && AreTheSame(kKorvexMuted, Meaning::muted)
              && AreTheSame(kKorvexAttention, Meaning::attention) && AreTheSame(kKorvexGood, Meaning::good)
              && AreTheSame(kKorvexBad, Meaning::bad));

// The list's own background, which may not be the system's.
COLORREF BackgroundOf(HWND list) {
    const auto own = static_cast<COLORREF>(SendMessageA(list, LVM_GETBKCOLOR, 0, 0));
    return own == CLR_NONE ? GetSysColor(COLOR_WINDOW) : own;
}

} // namespace

void ColourRow(NMLVCUSTOMDRAW& draw, std::int32_t look) {
    if (look == kKorvexPlain) return;
    const auto colours = framework::ColoursOf(static_cast<Meaning>(look), BackgroundOf(draw.nmcd.hdr.hwndFrom));
    if (colours.text != CLR_DEFAULT) draw.clrText = colours.text;
    if (colours.background != CLR_DEFAULT) draw.clrTextBk = colours.background;
}

} // namespace korvex
