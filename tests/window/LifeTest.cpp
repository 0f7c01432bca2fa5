// Opening, closing and leaving.
#include "tests/window/PluginTest.h"

namespace {

class Life : public PluginTest {};

TEST_F(Life, TwoPicksAreOneWindow) {
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    AnswerDefaults();
    probe::SetEdit(dialog, order::kValue, "77");
    const std::size_t windows = PluginWindows().size();
    ShowWindow(dialog, SW_HIDE);
    EXPECT_EQ(OpenOrderEntry(), dialog);
    EXPECT_TRUE(IsWindowVisible(dialog));
    EXPECT_EQ(PluginWindows().size(), windows);
    EXPECT_EQ(probe::Text(dialog, order::kValue), "77");
    EXPECT_EQ(host.requests.size(), 1u);
}

TEST_F(Life, ClosesAndReopensAnyNumberOfTimes) {
    const struct {
        const char* name;
        UINT message;
        WPARAM wParam;
    } ways[] = {{"close", WM_CLOSE, 0}, {"escape", WM_COMMAND, IDCANCEL}, {"close again", WM_CLOSE, 0}};
    std::size_t requests = 0;
    for (const auto& way : ways) {
        SCOPED_TRACE(way.name);
        HWND dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(host.requests.size(), ++requests);
        SendMessageA(dialog, way.message, way.wParam, 0);
        probe::Pump();
        EXPECT_FALSE(IsWindow(dialog));
    }
    EXPECT_EQ(host.LiveControls(), static_cast<int>(host.controls.size()))
        << "controls live as long as the plug-in";
}

TEST_F(Life, LateAnswerFindsNoWindowAndHarmsNothing) {
    HWND dialog = OpenOrderEntry();
    SendMessageA(dialog, WM_CLOSE, 0, 0);
    AnswerDefaults();
    host.Answer(kOrderEntryControl, {{32767, "add_sip_orders"}, {32766, "3"}});
    EXPECT_EQ(host.log.size(), 1u);
    host.Answer(kOrderEntryControl, {{32767, "modify_sip_order"}, {20008, "modified"}});
    EXPECT_EQ(OrderEntry(), nullptr);
    EXPECT_NE(OpenOrderEntry(), nullptr);
}

TEST_F(Life, AnswersOfTwoOpeningsFillTheFrequenciesOnce) {
    SendMessageA(OpenOrderEntry(), WM_CLOSE, 0, 0);
    HWND dialog = OpenOrderEntry();
    AnswerDefaults();
    AnswerDefaults();
    EXPECT_EQ(probe::Items(dialog, order::kFrequency),
              (std::vector<std::string>{"daily", "weekly", "monthly"}));
}

TEST_F(Life, ExitWithoutAnyPickDoesNothing) {
    plugin->Exit();
    EXPECT_TRUE(host.calls.empty());
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(Life, ExitTakesAnOpenWindowAway) {
    HWND dialog = OpenOrderEntry();
    EXPECT_GT(LoadedPlugin::LiveHooks(), 0);
    plugin->Exit();
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_EQ(LoadedPlugin::LiveHooks(), 0);
    EXPECT_EQ(host.LiveControls(), 0);
}

TEST_F(Life, PicksAfterExitBeginAnew) {
    OpenOrderEntry();
    plugin->Exit();
    const std::size_t controls = host.controls.size();
    EXPECT_NE(OpenOrderEntry(), nullptr);
    EXPECT_EQ(host.controls.size(), 2 * controls);
    plugin->Exit();
}

} // namespace
