// What a menu pick does before any window is at work, opening, closing and leaving.
#include "tests/window/PluginTest.h"

#include <cstring>
#include <filesystem>
#include <set>

namespace {

class Life : public PluginTest {
protected:
    void ExpectRefusedAtEveryPick(const char* text) {
        for (const char* entry : {"Order Entry", "SIP Basket Entry", "a text of nobody"}) {
            SCOPED_TRACE(entry);
            Pick(entry);
            EXPECT_EQ(boxes.Texts(), std::string(text) + "|");
            EXPECT_TRUE(PluginWindows().empty());
        }
        EXPECT_EQ(LoadedPlugin::watched.scratchOpened, 0);
    }
    int Activate() { return plugin->Activate("C001", host.strings); }
};

TEST_F(Life, HostWithoutARequiredExportIsRefusedAtEveryPick) {
    const std::pair<const char*, const char*> rows[] = {
        {"pu_get_exe_app", "Exe is not compatible with ZUP"},
        {"pu_get_peer_data", "Initialisation failed. ZUP not compatible with Trader version."},
        {"pu_is_actionright_enabled", "Initialisation failed. ZUP not compatible with Trader version."},
    };
    for (const auto& [name, text] : rows) {
        const HiddenExport hidden(name);
        ExpectRefusedAtEveryPick(text);
        EXPECT_TRUE(host.controls.empty());
        EXPECT_EQ(Activate(), 0);
    }
    EXPECT_NE(OpenOrderEntry(), nullptr) << "the host is asked again at the next pick";
}

TEST_F(Life, TheRightCountsAtEveryPick) {
    const auto rights = std::exchange(host.rights, {});
    ExpectRefusedAtEveryPick("You are not enabled on Planfold.");
    host.rights = rights;
    Close(OpenOrderEntry());
    host.rights.clear();
    EXPECT_EQ(OpenOrderEntry(), nullptr);
    EXPECT_EQ(boxes.Texts(), "You are not enabled on Planfold.|");
    EXPECT_EQ(Activate(), 1) << "what exists stays";
}

TEST_F(Life, WithoutAMainFrameNothingOpens) {
    for (const int lacking : {0, 1, 2}) {
        host.hasApp = lacking != 0;
        host.app.mainFrame = lacking == 1 ? nullptr : host.mainFrame;
        host.app.size = lacking == 2 ? 12 : sizeof(VeskApp);
        EXPECT_EQ(OpenOrderEntry(), nullptr) << lacking;
    }
    EXPECT_EQ(LoadedPlugin::watched.scratchOpened, 0);
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(Life, EveryPickOpensTheHandlesAnewAndExitClosesThemOnce) {
    const Watched& watched = LoadedPlugin::watched;
    EXPECT_EQ(Activate(), 0);
    int picks = 0;
    for (const char* entry : {"", "order entry", "Order Entry ", "Order Entry", "Order Entry"}) {
        Pick(entry);
        EXPECT_EQ(OrderEntry() != nullptr, picks >= 3) << "only the exact text opens a window";
        EXPECT_EQ(watched.scratchOpened, ++picks);
        EXPECT_EQ(watched.messagesOpened, picks);
        EXPECT_EQ(Activate(), 1);
    }
    EXPECT_EQ(watched.scratchClosed + watched.messagesClosed, 0);
    plugin->Exit();
    EXPECT_EQ(watched.scratchClosed, 1);
    EXPECT_EQ(watched.messagesClosed, 1);
    EXPECT_EQ(Activate(), 0);
    EXPECT_EQ(host.CallsOf("pu_get_UserDirectory"), 1);
    EXPECT_EQ(host.CallsOf("pu_get_non_trading_dates_map"), 1);
}

TEST_F(Life, ListsAndPositionsAreKeptApartInTheUsersDirectory) {
    const auto folder = std::filesystem::temp_directory_path() / "planfold-life";
    std::filesystem::create_directory(folder);
    host.userDirectory = folder.string();
    for (const char* entry : {"SIP Basket Entry", "SIP Registration Book"})
        Pick(entry);
    plugin->Exit();
    const auto keys = [&](const char* file, const char* section) {
        char text[512] = "";
        GetPrivateProfileStringA(section, nullptr, "", text, sizeof text, (folder / file).string().c_str());
        std::set<std::string> found;
        for (const char* key = text; *key; key += std::strlen(key) + 1)
            found.insert(key);
        return found;
    };
    const std::set<std::string> lists{"SIPBasket", "SIPCancelledBook", "SIPRegistrationBook"};
    EXPECT_EQ(keys("UserSetting.ini", "Lists"), lists);
    EXPECT_EQ(keys("DialogPos.ini", "Lists"), std::set<std::string>{});
    std::filesystem::remove_all(folder);
}

TEST_F(Life, TheActivatedClientIsTheBasketsWhereTheHostTellsNone) {
    const HiddenExport hidden("pu_get_ActiveClient");
    OpenOrderEntry();
    Activate();
    Pick("SIP Basket Entry");
    EXPECT_EQ(probe::Text(probe::FindDialog("Planfold Basket Order"), IDC_CLIENT_SEARCH), "C001");
}

TEST_F(Life, ThePluginGivesNothingBackAtTheEndOfTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // the plug-in is loaded anew
    EXPECT_EXIT(
        {
            for (const char* entry : {"Order Entry", "SIP Basket Entry", "SIP Registration Book"})
                Pick(entry);
            host.ended = true;
            ExitProcess(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Life, ALateAnswerFindsNoWindowAndHarmsNothing) {
    for (const bool escape : {false, true, false}) {
        HWND dialog = OpenOrderEntry();
        SendMessageA(dialog, escape ? WM_COMMAND : WM_CLOSE, escape ? IDCANCEL : 0, 0);
        probe::Pump();
        EXPECT_FALSE(IsWindow(dialog));
    }
    EXPECT_EQ(host.requests.size(), 3u);
    EXPECT_EQ(host.LiveControls(), static_cast<int>(host.controls.size())) << "as long as the plug-in lives";
    AnswerDefaults();
    host.Answer("echoedRequest=add_sip_orders errorCode=3");
    host.Answer("echoedRequest=modify_sip_order userText=modified");
    EXPECT_EQ(host.log.size(), 1u);
    EXPECT_EQ(OrderEntry(), nullptr);
}

TEST_F(Life, ExitTakesAnOpenWindowAwayAndPicksBeginAnew) {
    plugin->Exit(); // without any pick nothing happens
    EXPECT_EQ(host.calls, Texts{});
    for (std::size_t life = 1; life <= 2; ++life) {
        HWND dialog = OpenOrderEntry();
        EXPECT_GT(LoadedPlugin::watched.hooksLive, 0);
        plugin->Exit();
        EXPECT_FALSE(IsWindow(dialog));
        EXPECT_EQ(LoadedPlugin::watched.hooksLive, 0);
        EXPECT_EQ(host.LiveControls(), 0);
        EXPECT_EQ(static_cast<std::size_t>(host.CallsOf("DestoryKeloRxCOntrol")), host.controls.size());
    }
}

} // namespace
