// Keys go through the host's loop, which only translates and dispatches; the plug-in makes dialog keys of them.
#include "tests/window/PluginTest.h"

#include <algorithm>

namespace {

class Keyboard : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        AnswerDefaults();
        SetForegroundWindow(dialog);
        SetFocus(GetDlgItem(dialog, order::kExchange));
    }
    // The direct child of the dialog that has the focus or holds it.
    HWND Focused() const {
        HWND window = GetFocus();
        while (window && GetParent(window) != dialog)
            window = GetParent(window);
        return window;
    }
    RECT PlaceOf(HWND control) const {
        RECT place{};
        GetWindowRect(control, &place);
        return place;
    }

    HWND dialog = nullptr;
};

TEST_F(Keyboard, TabVisitsEveryControlInReadingOrder) {
    std::vector<HWND> stops;
    for (HWND child : probe::Children(dialog)) {
        const LONG_PTR style = GetWindowLongPtrA(child, GWL_STYLE);
        if ((style & WS_TABSTOP) && (style & WS_VISIBLE) && !(style & WS_DISABLED)) stops.push_back(child);
    }
    // Rows from top to bottom, each from left to right.
    const int sameRow = 8;
    std::ranges::sort(stops, [&](HWND a, HWND b) {
        const RECT first = PlaceOf(a), second = PlaceOf(b);
        return std::abs(first.top - second.top) > sameRow ? first.top < second.top : first.left < second.left;
    });
    ASSERT_GE(stops.size(), 12u);
    SetFocus(stops.front());
    for (std::size_t i = 0; i < stops.size(); ++i) {
        EXPECT_EQ(GetDlgCtrlID(Focused()), GetDlgCtrlID(stops[i])) << "stop " << i;
        probe::PostKey(VK_TAB);
        probe::Pump();
    }
    EXPECT_EQ(Focused(), stops.front()) << "and around";
}

TEST_F(Keyboard, EnterSubmits) {
    FillGoodOrder(dialog);
    SetFocus(GetDlgItem(dialog, order::kValue));
    probe::PostKey(VK_RETURN);
    EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() == 2; }));
    EXPECT_TRUE(host.LastRequest().starts_with("0=add_sip_orders;"));
}

TEST_F(Keyboard, EscapeCloses) {
    probe::PostKey(VK_ESCAPE);
    EXPECT_TRUE(probe::PumpUntil([&] { return !IsWindow(dialog); }));
    EXPECT_TRUE(host.misuses.empty());
}

TEST_F(Keyboard, KeysOfTheHostsOwnWindowsStayTheHosts) {
    HWND edit = CreateWindowExA(0, "EDIT", "", WS_CHILD | WS_VISIBLE, 0, 0, 100, 20, host.MainFrame(), nullptr,
                                nullptr, nullptr);
    ShowWindow(host.MainFrame(), SW_SHOW);
    SetFocus(edit);
    ASSERT_EQ(GetFocus(), edit);
    probe::PostKey(VK_ESCAPE);
    probe::PostKey(VK_TAB);
    probe::Pump();
    EXPECT_TRUE(IsWindow(dialog));
    EXPECT_EQ(GetFocus(), edit);
    DestroyWindow(edit);
}

TEST_F(Keyboard, TypedCharactersReachTheValue) {
    HWND value = GetDlgItem(dialog, order::kValue);
    SetFocus(value);
    for (const char character : {'1', '2', '.', '5', '.', '3'})
        PostMessageA(value, WM_CHAR, static_cast<WPARAM>(character), 1);
    probe::Pump();
    EXPECT_EQ(probe::Text(value), "12.53");
    PostMessageA(value, WM_CHAR, 'x', 1);
    probe::Pump();
    EXPECT_EQ(probe::Text(value), "12.53");
}

} // namespace
