// The client search box with its pop-up list and mode menu, and the value edit, in the real window.
#include "tests/window/PluginTest.h"

#include <commctrl.h>

namespace {

using probe::Cell;

class ClientSearchWindow : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        dialog = OpenOrderEntry();
        box = GetDlgItem(dialog, IDC_CLIENT_SEARCH);
        SetFocus(box);
    }

    void Type(std::string_view text) const {
        for (const char character : text)
            PostMessageA(box, WM_CHAR, static_cast<WPARAM>(character), 1);
        probe::Pump();
    }
    // The pop-up's list while it is shown; null otherwise.
    HWND List() const {
        for (HWND window : probe::TopWindows())
            if (HWND list = GetDlgItem(window, IDC_CLIENT_RESULTS); list && IsWindowVisible(window))
                return list;
        return nullptr;
    }
    bool Opens(WPARAM key) const {
        probe::PostKey(key);
        return probe::PumpUntil([&] { return List() != nullptr; });
    }
    HWND dialog = nullptr, box = nullptr;
};

TEST_F(ClientSearchWindow, SearchesAfterTheDelayAndListsBothTexts) {
    EXPECT_EQ(host.settings["Client_Search/Planfold Order Entry"], "1");
    Type("client");
    EXPECT_EQ(host.CallsOf("pu_get_entered_text_results"), 0) << "not with every letter";
    EXPECT_FALSE(List());
    ASSERT_TRUE(probe::PumpUntil([&] { return List() != nullptr; }));
    EXPECT_EQ(host.CallsOf("pu_get_entered_text_results"), 1);
    HWND list = List();
    EXPECT_EQ(Rows(list), 2);
    EXPECT_EQ(Cell(list, 1, 0) + "|" + Cell(list, 1, 1), "C002|Second Client");
    EXPECT_EQ(probe::SizeOf(GetParent(list)).cx, 500);
    EXPECT_EQ(probe::SizeOf(GetParent(list)).cy, 2 * 20 + 50);
    EXPECT_EQ(GetFocus(), box) << "the typing goes on";
}

TEST_F(ClientSearchWindow, StaysOnTheScreenAndFollowsTheFont) {
    host.clients.clear();
    for (int i = 0; i < 100; ++i)
        host.clients.emplace_back("K" + std::to_string(i), "Client " + std::to_string(i));
    RECT screen{}, outside{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &screen, 0);
    for (const std::intptr_t points : {8, 14, 36}) {
        host.fontSize = points;
        plugin->ApplyFont();
        for (const LONG top : {screen.top, (screen.top + screen.bottom) / 3, screen.bottom - 250}) {
            SetWindowPos(dialog, nullptr, screen.right - 300, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            Type("client");
            ASSERT_TRUE(Opens(VK_DOWN));
            const RECT place = probe::PlaceOf(GetParent(List())), field = probe::PlaceOf(box);
            RECT common{};
            SubtractRect(&outside, &place, &screen);
            EXPECT_TRUE(IsRectEmpty(&outside)) << points << " points, at " << top;
            const bool boxIsSeen = field.bottom <= screen.bottom;
            EXPECT_FALSE(boxIsSeen && IntersectRect(&common, &place, &field)) << "what is typed stays in sight";
            EXPECT_EQ(SendMessageA(List(), LVM_GETCOLUMNWIDTH, 0, 0) > 100, points > 8);
            probe::PressKey(VK_ESCAPE);
            probe::SetEdit(dialog, IDC_CLIENT_SEARCH, "");
        }
    }
}

TEST_F(ClientSearchWindow, DoubleClickPicksAndFocusLossCloses) {
    Type("client");
    ASSERT_TRUE(Opens(VK_DOWN));
    probe::DoubleClick(List(), 1);
    EXPECT_FALSE(List());
    EXPECT_EQ(probe::Text(box), "C002");

    SetFocus(box);
    ASSERT_TRUE(Opens(VK_DOWN));
    SetFocus(GetDlgItem(dialog, IDC_VALUE));
    probe::Pump();
    EXPECT_FALSE(List());
}

TEST_F(ClientSearchWindow, TheModeGoesToTheHostAndIsKept) {
    std::string entries;
    {
        const WhenShown menu(probe::OpenMenu, [&](HWND open) {
            entries = probe::Entries(probe::MenuOf(open));
            EndMenu();
        });
        probe::Press(dialog, IDC_CLIENT_SEARCH_MODE);
    }
    EXPECT_EQ(entries, "Search Mode: All 2024|Search Mode: Client ID 2025|Search Mode: Client Name 2026|-");
    SendMessageA(box, WM_COMMAND, 2026, 0);
    EXPECT_EQ(host.settings["Client_Search_Settings/Planfold Order Entry"], "3");
}

class ValueEdit : public PluginTest {
protected:
    void Type(char character) const {
        PostMessageA(value, WM_CHAR, static_cast<WPARAM>(character), 1);
        probe::Pump();
    }
    // The balloon's text; empty when none is shown.
    std::string Balloon() const {
        for (HWND window : probe::TopWindows()) {
            if (probe::ClassOf(window) != TOOLTIPS_CLASSA || !IsWindowVisible(window)) continue;
            if (!(GetWindowLongA(window, GWL_STYLE) & TTS_BALLOON) || GetWindow(window, GW_OWNER) != dialog)
                continue;
            char text[256] = "";
            TTTOOLINFOA tool{};
            tool.cbSize = sizeof tool;
            tool.hwnd = value;
            tool.uId = reinterpret_cast<UINT_PTR>(value);
            tool.lpszText = text;
            SendMessageA(window, TTM_GETTEXTA, sizeof text, reinterpret_cast<LPARAM>(&tool));
            return text;
        }
        return {};
    }

    HWND dialog = nullptr, value = nullptr;
};

TEST_F(ValueEdit, RefusesALetterWithABalloonThatTheNextDigitTakesAway) {
    dialog = OpenOrderEntry();
    value = GetDlgItem(dialog, IDC_VALUE);
    SetFocus(value);
    Type('1');
    EXPECT_EQ(Balloon(), "");
    for (const char refused : {'x', '-', ','}) {
        Type(refused);
        EXPECT_EQ(Balloon(), "You can only type positive decimal number") << refused;
        EXPECT_EQ(probe::Text(value), "1");
    }
    Type('2');
    EXPECT_EQ(Balloon(), "");
    EXPECT_EQ(probe::Text(value), "12");
}

} // namespace
