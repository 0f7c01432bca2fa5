// What comes in the middle of something: keys of a menu, a close, another pick or the host's exit under a box
// or a question. What must be left behind, nothing, is checked at each test's end.
#include "tests/window/PluginTest.h"

namespace {

constexpr int kModeButton = 1058, kResults = 1501;

class Interrupt : public PluginTest {
protected:
    HWND OpenGoodOrder() {
        HWND dialog = OpenWithDefaults();
        FillGoodOrder(dialog);
        SetForegroundWindow(dialog);
        return dialog;
    }
    bool ResultsShown() const {
        for (HWND window : PluginWindows())
            if (GetDlgItem(window, kResults) && IsWindowVisible(window)) return true;
        return false;
    }
};

TEST_F(Interrupt, KeysOfAMenuStayTheMenus) {
    HWND dialog = OpenGoodOrder();
    HWND search = GetDlgItem(dialog, order::kClientSearch);
    HWND value = GetDlgItem(dialog, order::kValue);
    struct Row {
        HWND focus;
        UINT opens;
        WPARAM wParam;
        WPARAM last;
    };
    const Row rows[] = {{value, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(value), VK_RETURN},
                        {search, WM_COMMAND, MAKEWPARAM(kModeButton, BN_CLICKED), VK_RETURN},
                        {search, WM_COMMAND, MAKEWPARAM(kModeButton, BN_CLICKED), VK_ESCAPE}};
    for (const Row& row : rows) {
        SetFocus(row.focus);
        const LPARAM place = row.opens == WM_CONTEXTMENU
                                 ? MAKELPARAM(50, 50)
                                 : reinterpret_cast<LPARAM>(GetDlgItem(dialog, kModeButton));
        PostMessageA(row.opens == WM_CONTEXTMENU ? value : dialog, row.opens, row.wParam, place);
        for (const WPARAM key : {WPARAM{VK_DOWN}, WPARAM{VK_DOWN}, row.last})
            PostMessageA(row.focus, WM_KEYDOWN, key, 1);
        probe::Pump();
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_EQ(host.requests.size(), 1u) << "no order went out";
        EXPECT_EQ(host.CallsOf("pu_get_entered_text_results"), 0);
    }
}

TEST_F(Interrupt, ExitUnderTheFirstPicksBoxesEndsThePick) {
    {
        const HiddenExport hidden("GetKeloRxControl");
        boxes.during = [&] { plugin->Exit(); };
        Pick("Order Entry");
        EXPECT_EQ(OrderEntry(), nullptr);
    }
    boxes.during = [&] { plugin->Exit(); };
    LoadedPlugin::watched.failScratch = true;
    Pick("Order Entry");
    EXPECT_EQ(OrderEntry(), nullptr);
    EXPECT_EQ(boxes.Texts(), "Exe is not compatible with the plugin|Buffer Handle open Failed|")
        << "the book's box does not come after the end";
}

TEST_F(Interrupt, ExitUnderTheQuestionSendsNothingAndLeavesNothing) {
    HWND dialog = OpenGoodOrder();
    host.requests.clear();
    host.duringCaution = [&] {
        plugin->Exit();
        EXPECT_EQ(host.LiveControls(), 0);
        EXPECT_EQ(LoadedPlugin::watched.hooksLive, 0);
    };
    probe::Press(dialog, order::kSubmit);
    EXPECT_TRUE(host.requests.empty());
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(Interrupt, AnotherIdentityUnderTheQuestionDoesNotReachTheOrder) {
    HWND dialog = OpenGoodOrder();
    host.duringCaution = [&] {
        host.peerIdA = std::string(200, 'N');
        Pick("a text of nobody");
    };
    probe::Press(dialog, order::kSubmit);
    EXPECT_NE(host.LastRequest().find(" peerIdA=PEERA peerIdB=PEERB "), std::string::npos)
        << host.LastRequest();
}

TEST_F(Interrupt, AWindowOpenedAnewUnderTheQuestionKeepsItsContents) {
    HWND dialog = OpenGoodOrder();
    host.duringCaution = [&] {
        Close(dialog);
        OpenOrderEntry();
    };
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(probe::Text(OrderEntry(), order::kPeriod), "1");
}

TEST_F(Interrupt, AWindowClosedDuringTheScripLookUpSendsNoOrder) {
    HWND dialog = OpenGoodOrder();
    host.duringScripLookUp = [&] { SendMessageA(dialog, WM_CLOSE, 0, 0); };
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.CallsOf("pu_invoke_caution_order_confirmation"), 0);
}

TEST_F(Interrupt, SubmitWorksUnderABoxOfAnotherWindow) {
    HWND dialog = OpenGoodOrder();
    probe::SetEdit(dialog, order::kPeriod, "");
    boxes.during = [&] {
        host.rights.clear();
        Pick("Order Entry"); // refused: its box waits for the first
        boxes.during = [&] {
            FillGoodOrder(dialog);
            probe::Press(dialog, order::kSubmit);
        };
    };
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(boxes.Texts(), "Enter a Month.|You are not enabled on Planfold.|");
    EXPECT_EQ(host.requests.size(), 2u);
}

TEST_F(Interrupt, TheWindowOrThePluginMayEndDuringASearch) {
    for (const bool exits : {false, true}) {
        HWND dialog = OpenOrderEntry();
        SetFocus(GetDlgItem(dialog, order::kClientSearch));
        probe::SetEdit(dialog, order::kClientSearch, "C00");
        host.duringSearch = [&] {
            if (exits)
                plugin->Exit();
            else
                Close(dialog);
        };
        probe::PostKey(VK_DOWN);
        EXPECT_TRUE(probe::PumpUntil([&] { return !IsWindow(dialog); }));
        EXPECT_TRUE(PluginWindows().empty());
    }
}

TEST_F(Interrupt, LeavingTheBoxBeforeTheDelayStartsNoSearch) {
    HWND dialog = OpenOrderEntry();
    SetFocus(GetDlgItem(dialog, order::kClientSearch));
    probe::SetEdit(dialog, order::kClientSearch, "C00");
    SetFocus(GetDlgItem(dialog, order::kValue));
    const DWORD start = GetTickCount();
    probe::PumpUntil([&] { return ResultsShown() || GetTickCount() - start > 900; });
    EXPECT_FALSE(ResultsShown());
    // On return, also after the window moved, Enter searches; it does not submit.
    SetFocus(GetDlgItem(dialog, order::kClientSearch));
    SetWindowPos(dialog, nullptr, 30, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    probe::PostKey(VK_RETURN);
    EXPECT_TRUE(probe::PumpUntil([&] { return ResultsShown(); }));
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(Interrupt, APickBringsUpAMinimisedWindowInTheHostsFont) {
    host.fontVariation = 6;
    HWND dialog = OpenOrderEntry();
    RECT opened{}, applied{};
    GetWindowRect(dialog, &opened);
    plugin->ApplyFont();
    GetWindowRect(dialog, &applied);
    EXPECT_EQ(opened.right - opened.left, applied.right - applied.left);
    ShowWindow(dialog, SW_MINIMIZE);
    host.fontVariation = 12;
    plugin->ApplyFont();
    OpenOrderEntry();
    EXPECT_FALSE(IsIconic(dialog));
    RECT restored{};
    GetWindowRect(dialog, &restored);
    EXPECT_GT(restored.right - restored.left, applied.right - applied.left) << "the new font's size";
}

} // namespace
