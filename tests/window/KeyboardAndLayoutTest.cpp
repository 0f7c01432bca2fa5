// Keys go through the host's loop, which only translates and dispatches; the plug-in makes dialog keys of them.
// At other font sizes and resolutions every text fits, and nothing lies over another.
#include "tests/window/PluginTest.h"

#include <algorithm>

namespace {

constexpr int kDayReport = 25103;

class Keyboard : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        dialog = OpenWithDefaults();
        SetForegroundWindow(dialog);
        SetFocus(GetDlgItem(dialog, IDC_EXCHANGE));
    }
    // The direct child of the dialog that has the focus or holds it.
    HWND Focused() const {
        HWND window = GetFocus();
        while (window && GetParent(window) != dialog)
            window = GetParent(window);
        return window;
    }

    HWND dialog = nullptr;
};

TEST_F(Keyboard, TabVisitsEveryControlInReadingOrder) {
    for (const char* entry : {"SIP Basket Entry", "SIP Set Restricted Date"})
        Pick(entry);
    const HWND basket = probe::FindDialog("Planfold Basket Order");
    SendMessageA(basket, WM_COMMAND, kDayReport, 0);
    for (HWND window :
         {dialog, basket, probe::FindDialog("Orders of a Day"), probe::FindDialog("SIP Set Restricted Date")}) {
        dialog = window;
        SetForegroundWindow(dialog);
        std::vector<HWND> stops;
        for (HWND child : probe::Children(dialog)) {
            const LONG_PTR style = GetWindowLongPtrA(child, GWL_STYLE);
            if ((style & WS_TABSTOP) && (style & WS_VISIBLE) && !(style & WS_DISABLED)) stops.push_back(child);
        }
        // Rows from top to bottom, each from left to right.
        const int sameRow = 8;
        std::ranges::sort(stops, [&](HWND a, HWND b) {
            const RECT first = probe::PlaceOf(a), second = probe::PlaceOf(b);
            return std::abs(first.top - second.top) > sameRow ? first.top < second.top
                                                              : first.left < second.left;
        });
        ASSERT_GE(stops.size(), 6u);
        SetFocus(stops.front());
        for (std::size_t i = 0; i < stops.size(); ++i) {
            EXPECT_EQ(GetDlgCtrlID(Focused()), GetDlgCtrlID(stops[i])) << "stop " << i;
            probe::PressKey(VK_TAB);
        }
        EXPECT_EQ(Focused(), stops.front()) << "and around";
    }
}

TEST_F(Keyboard, KeysOfTheOpenCalendarStayInIt) {
    FillGoodOrder(dialog);
    const HWND picker = GetDlgItem(dialog, IDC_START_DATE);
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) {
        SetFocus(picker);
        RECT client{};
        GetClientRect(picker, &client);
        const auto calendar = [&] {
            return reinterpret_cast<HWND>(SendMessageA(picker, DTM_GETMONTHCAL, 0, 0));
        };
        // After a calendar that was not closed by a click, not every system opens the next at the first one.
        ASSERT_TRUE(probe::PumpUntil([&] {
            if (IsWindowVisible(calendar())) return true;
            for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP})
                PostMessageA(picker, message, 0, MAKELPARAM(client.right - 8, client.bottom / 2));
            return false;
        }));
        probe::PostKey(key);
        EXPECT_TRUE(probe::PumpUntil([&] { return !IsWindowVisible(calendar()); })) << key;
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_EQ(GetFocus(), picker);
        EXPECT_EQ(host.requests.size(), 1u) << "nothing is submitted";
    }
}

TEST_F(Keyboard, TheDefaultButtonsRingFollowsAClick) {
    const HWND submit = GetDlgItem(dialog, IDC_SUBMIT), dates = GetDlgItem(dialog, IDC_PLAN_DATES);
    const HWND value = GetDlgItem(dialog, IDC_VALUE);
    const auto hasRing = [](HWND button) {
        return (SendMessageA(button, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON) != 0;
    };
    probe::SetEdit(dialog, IDC_VALUE, "100");
    for (const HWND clicked : {dates, value, dates, submit}) {
        // Let go beside it: the button is not pressed.
        PostMessageA(clicked, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        PostMessageA(clicked, WM_LBUTTONUP, 0, MAKELPARAM(-50, -50));
        probe::Pump();
        EXPECT_EQ(hasRing(dates), clicked == dates);
        EXPECT_EQ(hasRing(submit), clicked != dates);
    }
}

TEST_F(Keyboard, KeysOfTheHostsOwnWindowsStayTheHosts) {
    HWND edit = CreateWindowExA(0, "EDIT", "", WS_CHILD | WS_VISIBLE, 0, 0, 100, 20, host.mainFrame, nullptr,
                                nullptr, nullptr);
    ShowWindow(host.mainFrame, SW_SHOW);
    SetFocus(edit);
    ASSERT_EQ(GetFocus(), edit);
    probe::PostKey(VK_ESCAPE);
    probe::PressKey(VK_TAB);
    EXPECT_TRUE(IsWindow(dialog));
    EXPECT_EQ(GetFocus(), edit);
    DestroyWindow(edit);
}

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
            // A box around others is there to be stood upon.
            const bool group = probe::ClassOf(child) == "Button"
                               && (GetWindowLongPtrA(child, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
            if (!IsWindowVisible(child) || group) continue;
            RECT place = probe::PlaceOf(child);
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
            EXPECT_FALSE(IsRectEmpty(&control.place)) << "no size";
            const LONG width = control.place.right - control.place.left,
                       height = control.place.bottom - control.place.top;
            EXPECT_TRUE(control.place.left >= 0 && control.place.top >= 0 && control.place.right <= client.right
                        && control.place.bottom <= client.bottom)
                << "outside the window";
            const std::string name = probe::ClassOf(control.window);
            const bool icon =
                name == "Static" && (GetWindowLongPtrA(control.window, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
            if ((name != "Static" && name != "Button") || icon) continue;
            const SIZE needed = Needed(control, width);
            EXPECT_LE(needed.cx, width);
            EXPECT_LE(needed.cy, height);
        }
        for (std::size_t i = 0; i < controls.size(); ++i)
            for (std::size_t k = i + 1; k < controls.size(); ++k) {
                RECT common{};
                EXPECT_FALSE(IntersectRect(&common, &controls[i].place, &controls[k].place))
                    << controls[i].name << " and " << controls[k].name;
            }
    }

    static constexpr int kUsualColumn = 50;

    static int ColumnWidth(HWND dialog, int list) {
        return static_cast<int>(SendDlgItemMessageA(dialog, list, LVM_GETCOLUMNWIDTH, 0, 0));
    }

    static void ExpectOnScreen(HWND window) {
        const RECT place = probe::PlaceOf(window);
        RECT screen{}, outside{};
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &screen, 0);
        SubtractRect(&outside, &place, &screen);
        EXPECT_TRUE(IsRectEmpty(&outside)) << probe::Text(window);
    }

    int FontHeight(HWND dialog) const {
        LOGFONTA font{};
        GetObjectA(reinterpret_cast<HGDIOBJ>(SendMessageA(GetDlgItem(dialog, IDC_VALUE), WM_GETFONT, 0, 0)),
                   sizeof font, &font);
        return std::abs(font.lfHeight);
    }
};

TEST_F(Layout, FollowsTheHostsFontInEveryState) {
    Pick("SIP Basket Entry");
    const HWND basket = probe::FindDialog("Planfold Basket Order");
    ExpectNothingClipped(basket);
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    ExpectNothingClipped(dialog);
    const int usual = FontHeight(dialog);
    struct Row {
        std::intptr_t size, variation;
        int points; // 0: the template's
    };
    for (const bool serverPeriods : {false, true}) {
        if (serverPeriods) host.Answer("echoedRequest=get_sip_operation_mode frequency=monthly");
        probe::Select(dialog, IDC_INVEST_BY, serverPeriods ? "Quantity" : "Amount");
        for (const Row& row : {Row{0, 0, 0}, Row{6, 0, 6}, Row{9, 2, 11}, Row{18, -2, 16}, Row{60, 0, 36}}) {
            SCOPED_TRACE(testing::Message() << row.size << " points, " << row.variation << " more");
            host.fontSize = row.size;
            host.fontVariation = row.variation;
            host.calls.clear();
            plugin->ApplyFont();
            const int asked = row.points ? MulDiv(row.points, USER_DEFAULT_SCREEN_DPI, 72) : usual;
            // On a screen without room for the largest, it is what fits.
            if (row.points == 36)
                EXPECT_TRUE(FontHeight(dialog) > usual && FontHeight(dialog) <= asked);
            else
                EXPECT_EQ(FontHeight(dialog), asked);
            ExpectOnScreen(dialog);
            ExpectOnScreen(basket);
            EXPECT_NEAR(ColumnWidth(basket, IDC_BASKET_LIST), MulDiv(kUsualColumn, FontHeight(basket), usual),
                        kUsualColumn / usual)
                << "columns grow with the text";
            ExpectNothingClipped(dialog);
            ExpectNothingClipped(basket);
            for (const char* edit : {"(#1025)", "(#1037)"})
                EXPECT_EQ(std::ranges::count(host.calls, "pu_resize_EditCtrlForFontChange" + std::string(edit)),
                          2);
        }
    }
    EXPECT_EQ(probe::Text(dialog, IDC_SYMBOL), "ARBORTEX") << "a new layout changes no value";
    const int largest = FontHeight(dialog);
    Close(dialog);
    dialog = OpenOrderEntry();
    EXPECT_EQ(FontHeight(dialog), largest) << "a window opened later";
    ExpectNothingClipped(dialog);
}

TEST_F(Layout, FollowsTheResolution) {
    Pick("SIP Basket Entry");
    HWND basket = probe::FindDialog("Planfold Basket Order");
    HWND dialog = OpenOrderEntry();
    const int usual = FontHeight(dialog);
    RECT suggested = probe::PlaceOf(dialog);
    for (const int dpi : {144, 192, 96}) {
        SCOPED_TRACE(dpi);
        for (HWND window : {basket, dialog}) {
            SendMessageA(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
            ExpectNothingClipped(window);
        }
        EXPECT_NEAR(FontHeight(dialog), MulDiv(usual, dpi, USER_DEFAULT_SCREEN_DPI), 1);
    }
    // The largest font there is, where all is twice as large.
    Pick("SIP Set Restricted Date");
    host.fontSize = 36;
    plugin->ApplyFont();
    for (HWND window : PluginWindows()) {
        if (probe::ClassOf(window) != "#32770") continue;
        SCOPED_TRACE(probe::Text(window));
        SendMessageA(window, WM_DPICHANGED, MAKEWPARAM(192, 192), reinterpret_cast<LPARAM>(&suggested));
        ExpectNothingClipped(window);
        ExpectOnScreen(window);
    }
}

} // namespace
