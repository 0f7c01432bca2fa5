// The window at other font sizes and resolutions: every text fits, nothing lies over another.
#include "tests/window/PluginTest.h"

#include <algorithm>

namespace {

class Layout : public PluginTest {
protected:
    struct Shown {
        HWND window;
        std::string name;
        RECT place; // in the dialog's client area
    };

    std::vector<Shown> ShownControls(HWND dialog) const {
        std::vector<Shown> shown;
        for (HWND child : probe::Children(dialog)) {
            if (!IsWindowVisible(child)) continue;
            RECT place{};
            GetWindowRect(child, &place);
            MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
            shown.push_back({child,
                             probe::ClassOf(child) + " " + std::to_string(GetDlgCtrlID(child)) + " '"
                                 + probe::Text(child) + "'",
                             place});
        }
        return shown;
    }

    // The place that the control's text needs, in its own font; labels may wrap.
    SIZE Needed(const Shown& control, int width) const {
        HDC screen = GetDC(control.window);
        const auto font = SendMessageA(control.window, WM_GETFONT, 0, 0);
        const HGDIOBJ before = SelectObject(screen, reinterpret_cast<HGDIOBJ>(font));
        const std::string text = probe::Text(control.window);
        RECT needed{0, 0, width, 0};
        DrawTextA(screen, text.c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK);
        SelectObject(screen, before);
        ReleaseDC(control.window, screen);
        return {needed.right, needed.bottom};
    }

    void ExpectNothingClipped(HWND dialog) {
        const std::vector<Shown> controls = ShownControls(dialog);
        RECT client{};
        GetClientRect(dialog, &client);
        for (const Shown& control : controls) {
            SCOPED_TRACE(control.name);
            const LONG width = control.place.right - control.place.left,
                       height = control.place.bottom - control.place.top;
            EXPECT_TRUE(control.place.left >= 0 && control.place.top >= 0 && control.place.right <= client.right
                        && control.place.bottom <= client.bottom)
                << "outside the window: " << control.place.left << "," << control.place.top << " to "
                << control.place.right << "," << control.place.bottom << " in " << client.right << ","
                << client.bottom;
            const std::string name = probe::ClassOf(control.window);
            const bool icon =
                name == "Static" && (GetWindowLongPtrA(control.window, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
            if ((name != "Static" && name != "Button") || icon) continue;
            const SIZE needed = Needed(control, width);
            EXPECT_LE(needed.cx, width);
            EXPECT_LE(needed.cy, height);
        }
        ExpectNoneOverlaps(controls);
    }

    void ExpectNoneOverlaps(const std::vector<Shown>& controls) {
        for (std::size_t i = 0; i < controls.size(); ++i)
            for (std::size_t k = i + 1; k < controls.size(); ++k) {
                RECT common{};
                EXPECT_FALSE(IntersectRect(&common, &controls[i].place, &controls[k].place))
                    << controls[i].name << " and " << controls[k].name;
            }
    }

    int FontHeight(HWND dialog) const {
        LOGFONTA font{};
        GetObjectA(reinterpret_cast<HGDIOBJ>(SendMessageA(GetDlgItem(dialog, order::kValue), WM_GETFONT, 0, 0)),
                   sizeof font, &font);
        return std::abs(font.lfHeight);
    }
};

struct FontRow {
    std::intptr_t size, variation;
    int points; // 0: the template's
};
constexpr FontRow kFonts[] = {
    {0, 0, 0},    {6, 0, 6},   {8, 0, 8}, {9, 2, 11},  {12, 0, 12},
    {18, -2, 16}, {36, 0, 36}, {4, 0, 6}, {60, 0, 36}, {10, -9, 6},
};

TEST_F(Layout, FollowsTheHostsFont) {
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    ExpectNothingClipped(dialog);
    const int usual = FontHeight(dialog);
    for (const FontRow& row : kFonts) {
        SCOPED_TRACE(testing::Message() << row.size << " points, " << row.variation << " more");
        host.fontSize = row.size;
        host.fontVariation = row.variation;
        host.calls.clear();
        plugin->ApplyFont();
        const int expected = row.points ? MulDiv(row.points, USER_DEFAULT_SCREEN_DPI, 72) : usual;
        EXPECT_EQ(FontHeight(dialog), expected);
        ExpectNothingClipped(dialog);
        for (const char* edit :
             {"pu_resize_EditCtrlForFontChange(#1025)", "pu_resize_EditCtrlForFontChange(#1037)"})
            EXPECT_EQ(std::ranges::count(host.calls, edit), 1) << edit;
    }
}

TEST_F(Layout, LabelsOfEveryStateFit) {
    HWND dialog = OpenOrderEntry();
    host.Answer(kOrderEntryControl, {{32767, "get_sip_operation_mode"}, {10012, "monthly"}});
    probe::Select(dialog, order::kInvestBy, "Quantity");
    for (const std::intptr_t size : {8, 20}) {
        host.fontSize = size;
        plugin->ApplyFont();
        ExpectNothingClipped(dialog);
    }
    EXPECT_EQ(probe::Text(dialog, order::kSymbol), "ARBORTEX") << "a new layout changes no value";
}

TEST_F(Layout, WindowOpenedLaterHasTheHostsFontToo) {
    host.fontSize = 16;
    SendMessageA(OpenOrderEntry(), WM_CLOSE, 0, 0);
    plugin->ApplyFont();
    HWND dialog = OpenOrderEntry();
    EXPECT_EQ(FontHeight(dialog), MulDiv(16, USER_DEFAULT_SCREEN_DPI, 72));
    ExpectNothingClipped(dialog);
}

TEST_F(Layout, FollowsTheResolution) {
    HWND dialog = OpenOrderEntry();
    const int usual = FontHeight(dialog);
    RECT suggested{};
    GetWindowRect(dialog, &suggested);
    for (const int dpi : {144, 192, 96}) {
        SCOPED_TRACE(dpi);
        SendMessageA(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
        EXPECT_NEAR(FontHeight(dialog), MulDiv(usual, dpi, USER_DEFAULT_SCREEN_DPI), 1);
        ExpectNothingClipped(dialog);
    }
}

} // namespace
