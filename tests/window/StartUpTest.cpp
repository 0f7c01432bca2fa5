// What a menu pick does before any window is at work: the check of the host, the right, the connection handles.
#include "tests/window/PluginTest.h"

namespace {

constexpr const char* kMenu[] = {"Order Entry", "SIP Basket Entry", "SIP Registration Book",
                                 "SIP Set Restricted Date", "a text of nobody"};

class StartUp : public PluginTest {
protected:
    void ExpectRefusedAtEveryPick(const std::string& text) {
        for (const char* entry : kMenu) {
            SCOPED_TRACE(entry);
            boxes.Clear();
            plugin->Pick(entry);
            EXPECT_EQ(boxes.Texts(), text + "|");
            EXPECT_TRUE(PluginWindows().empty());
        }
        EXPECT_EQ(ConnectionWatch::Current().scratchOpened, 0);
    }
};

struct RequiredRow {
    const char* hidden; // an export of the host
    const char* text;
};
constexpr RequiredRow kRequired[] = {
    {"pu_get_exe_app", "Exe is not compatible with ZUP"},
    {"pu_get_peer_data", "Initialisation failed. ZUP not compatible with Trader version."},
    {"pu_is_actionright_enabled", "Initialisation failed. ZUP not compatible with Trader version."},
};

TEST_F(StartUp, HostWithoutARequiredExportIsRefusedAtEveryPick) {
    for (const RequiredRow& row : kRequired) {
        SCOPED_TRACE(row.hidden);
        {
            const HiddenExport hidden(row.hidden);
            ExpectRefusedAtEveryPick(row.text);
            EXPECT_TRUE(host.controls.empty());
            EXPECT_EQ(plugin->Activate("C001"), 0);
        }
    }
    EXPECT_NE(OpenOrderEntry(), nullptr) << "the host is asked again at the next pick";
}

TEST_F(StartUp, TheRightCountsAtEveryPick) {
    host.rights.clear();
    ExpectRefusedAtEveryPick("You are not enabled on Planfold.");
    host.rights = {"QV: Planfold"};
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    SendMessageA(dialog, WM_CLOSE, 0, 0);

    host.rights.clear();
    boxes.Clear();
    EXPECT_EQ(OpenOrderEntry(), nullptr);
    EXPECT_EQ(boxes.Texts(), "You are not enabled on Planfold.|");
    EXPECT_EQ(plugin->Activate("C001"), 1) << "what exists stays";
}

struct FrameRow {
    const char* name;
    bool hasApp, hasMainFrame;
    std::uint32_t appSize;
};
constexpr FrameRow kNoFrame[] = {
    {"no record", false, false, 0},
    {"no frame yet", true, false, sizeof(VeskApp)},
    {"record of an older host", true, true, 8},
    {"record that ends within the frame", true, true, 12},
};

TEST_F(StartUp, WithoutAMainFrameNothingOpens) {
    for (const FrameRow& row : kNoFrame) {
        SCOPED_TRACE(row.name);
        host.hasApp = row.hasApp;
        host.hasMainFrame = row.hasMainFrame;
        host.appSize = row.appSize;
        EXPECT_EQ(OpenOrderEntry(), nullptr);
        EXPECT_EQ(ConnectionWatch::Current().scratchOpened, 0);
        EXPECT_EQ(boxes.Texts(), "");
    }
    host.hasApp = host.hasMainFrame = true;
    host.appSize = 4096;
    EXPECT_NE(OpenOrderEntry(), nullptr) << "a newer host's larger record";
}

TEST_F(StartUp, HostThatGivesNoControlFailsTheSending) {
    host.givesControls = false;
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(boxes.Texts(), "Sending Request add_sip_orders Failed|");
    EXPECT_EQ(host.CallsOf("DestoryKeloRxCOntrol"), 0);
    plugin->Exit();
    EXPECT_EQ(host.CallsOf("DestoryKeloRxCOntrol"), 0);
}

TEST_F(StartUp, OnlyTheExactTextOpensAWindow) {
    for (const char* other : {"", "order entry", "ORDER ENTRY", " Order Entry", "Order Entry ", "Order"}) {
        plugin->Pick(other);
        EXPECT_TRUE(PluginWindows().empty()) << other;
    }
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(StartUp, EveryPickOpensTheHandlesAnewAndExitClosesThemOnce) {
    const ConnectionWatch& watch = ConnectionWatch::Current();
    int picks = 0;
    for (const char* entry : {"Order Entry", "unknown", "Order Entry"}) {
        plugin->Pick(entry);
        ++picks;
        EXPECT_EQ(watch.scratchOpened, picks);
        EXPECT_EQ(watch.messagesOpened, picks);
    }
    EXPECT_EQ(watch.scratchSize, 32768u);
    EXPECT_EQ(watch.scratchClosed + watch.messagesClosed, 0);
    plugin->Exit();
    EXPECT_EQ(watch.scratchClosed, 1);
    EXPECT_EQ(watch.messagesClosed, 1);
}

struct HandleRow {
    const char* name;
    bool scratchFails, messageFails;
    const char* texts;
};
constexpr HandleRow kHandles[] = {
    {"scratch", true, false, "Buffer Handle open Failed|zup_add_parameter: Error while building message|"},
    {"message", false, true, "MNM Handle Open Failed|zup_add_parameter: Error while building message|"},
    {"both", true, true,
     "Buffer Handle open Failed|MNM Handle Open Failed|zup_add_parameter: Error while building message|"},
};

TEST_F(StartUp, AHandleThatCannotBeOpenedIsToldAndTheWindowOpens) {
    for (const HandleRow& row : kHandles) {
        SCOPED_TRACE(row.name);
        boxes.Clear();
        ConnectionWatch::Current().failOpenScratch = row.scratchFails;
        ConnectionWatch::Current().failOpenMessage = row.messageFails;
        HWND dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(boxes.Texts(), row.texts);
        EXPECT_TRUE(host.requests.empty());
        SendMessageA(dialog, WM_CLOSE, 0, 0);
    }
    ConnectionWatch::Current().failOpenScratch = ConnectionWatch::Current().failOpenMessage = false;
    boxes.Clear();
    EXPECT_NE(OpenOrderEntry(), nullptr);
    EXPECT_EQ(boxes.Texts(), "");
    EXPECT_EQ(host.LastRequest(), "0=get_sip_operation_mode;");
}

TEST_F(StartUp, ActivationCountsOnceThereIsAControlBlock) {
    EXPECT_EQ(plugin->Activate("C001"), 0);
    plugin->Pick("unknown");
    EXPECT_EQ(plugin->Activate("C001"), 1);
    EXPECT_EQ(plugin->Activate(""), 1);
    plugin->Exit();
    EXPECT_EQ(plugin->Activate("C001"), 0);
}

TEST_F(StartUp, UserDirectoryAndNonTradingDatesAreAskedForOnce) {
    host.userDirectory = "C:\\user";
    for (int i = 0; i < 3; ++i)
        plugin->Pick("unknown");
    EXPECT_EQ(host.CallsOf("pu_get_UserDirectory"), 1);
    EXPECT_EQ(host.CallsOf("pu_get_non_trading_dates_map"), 1);
    EXPECT_EQ(host.CallsOf("pu_get_peer_data"), 3);
}

} // namespace
