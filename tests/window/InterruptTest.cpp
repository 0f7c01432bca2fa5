// What comes in the middle of something: keys of a menu, a close, another pick or the host's exit under a box
// or a question, and answers, which wait for an open box. What must be left behind, nothing, is checked at each
// test's end.
#include "tests/window/PluginTest.h"

#include <functional>

namespace {

class Interrupt : public PluginTest {
protected:
    HWND OpenGoodOrder() {
        HWND dialog = OpenWithDefaults();
        FillGoodOrder(dialog);
        SetForegroundWindow(dialog);
        return dialog;
    }
};

// What the host was asked about still goes out, and nothing else. Nothing is left; opened anew, the window has
// its first contents.
TEST_F(Interrupt, TheWindowOrThePluginMayEndInTheMiddleOfEverything) {
    enum End { closes, exits, opensAnew };
    struct Row {
        const char* middle;
        std::function<void(HWND dialog, const std::function<void()>& ends)> happens;
        std::size_t sent = 0; // unless the plug-in ends
    };
    const auto submit = [](HWND dialog) { probe::Press(dialog, IDC_SUBMIT); };
    const Row rows[] = {
        {"the box of Submit",
         [&](HWND dialog, const auto& ends) {
             probe::SetEdit(dialog, IDC_PERIOD, "");
             boxes.during = ends;
             submit(dialog);
         }},
        {"the box of an answer, while another waits",
         [&](HWND, const auto& ends) {
             boxes.during = [&] {
                 host.Answer(Told("waiting"));
                 ends();
             };
             host.Answer(Told("last words"));
         }},
        {"the host's question",
         [&](HWND dialog, const auto& ends) {
             host.duringCaution = ends;
             submit(dialog);
         },
         1},
        {"a search",
         [&](HWND dialog, const auto& ends) {
             SetFocus(GetDlgItem(dialog, IDC_CLIENT_SEARCH));
             host.duringSearch = ends;
             probe::PostKey(VK_DOWN);
             probe::PumpUntil([&] { return !IsWindow(dialog); });
         }},
    };
    for (const Row& row : rows)
        for (const End end : {closes, exits, opensAnew}) {
            SCOPED_TRACE(testing::Message() << row.middle << ", " << end);
            Close(OrderEntry());
            HWND dialog = OpenGoodOrder();
            host.requests.clear();
            row.happens(dialog, [&, end] {
                end == exits ? plugin->Exit() : Close(dialog);
                if (end == opensAnew) OpenOrderEntry();
            });
            probe::Pump();
            EXPECT_EQ(host.LiveControls() == 0, end == exits);
            EXPECT_EQ(LoadedPlugin::watched.hooksLive == 0, end == exits);
            EXPECT_EQ(host.requests.size(), (end == exits ? 0 : row.sent) + (end == opensAnew));
            EXPECT_EQ(OrderEntry() != nullptr, end == opensAnew);
            EXPECT_EQ(probe::Text(OrderEntry(), IDC_PERIOD), end == opensAnew ? "1" : "");
            boxes.Texts();
        }
}

TEST_F(Interrupt, AnswersThatArriveWhileABoxIsOpenAreJoined) {
    HWND dialog = OpenWithDefaults();
    boxes.during = [&] {
        for (const char* text : {"second", "third"})
            host.Answer(Told(text));
    };
    host.Answer(Told("first"));
    EXPECT_EQ(boxes.Texts(), "first|second\nthird|");
    EXPECT_EQ(boxes.lastOwner, dialog);
}

TEST_F(Interrupt, AQuestionComesWhenTheOpenBoxIsGone) {
    HWND dialog = OpenWithDefaults();
    FillGoodOrder(dialog, "C009");
    boxes.during = [&] {
        probe::Press(dialog, IDC_SUBMIT);
        EXPECT_EQ(host.requests.size(), 1u);
    };
    host.Answer(Told("first"));
    EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() == 2; }));
    EXPECT_EQ(boxes.Texts(), "first|The terminal knows no client C009.\nPlace the order all the same?|");
}

TEST_F(Interrupt, KeysOfAMenuStayTheMenus) {
    HWND dialog = OpenGoodOrder();
    HWND search = GetDlgItem(dialog, IDC_CLIENT_SEARCH);
    HWND value = GetDlgItem(dialog, IDC_VALUE);
    struct Row {
        HWND focus;
        UINT opens;
        WPARAM wParam;
        WPARAM last;
    };
    const Row rows[] = {{value, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(value), VK_RETURN},
                        {search, WM_COMMAND, MAKEWPARAM(IDC_CLIENT_SEARCH_MODE, BN_CLICKED), VK_RETURN},
                        {search, WM_COMMAND, MAKEWPARAM(IDC_CLIENT_SEARCH_MODE, BN_CLICKED), VK_ESCAPE}};
    for (const Row& row : rows) {
        SetFocus(row.focus);
        const LPARAM place = row.opens == WM_CONTEXTMENU
                                 ? MAKELPARAM(50, 50)
                                 : reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDC_CLIENT_SEARCH_MODE));
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

TEST_F(Interrupt, AnotherIdentityUnderTheQuestionDoesNotReachTheOrder) {
    HWND dialog = OpenGoodOrder();
    host.duringCaution = [&] {
        host.peerIdA = std::string(200, 'N');
        Pick("a text of nobody");
    };
    probe::Press(dialog, IDC_SUBMIT);
    EXPECT_NE(host.LastRequest().find(" peerIdA=PEERA peerIdB=PEERB "), std::string::npos)
        << host.LastRequest();
}

TEST_F(Interrupt, SubmitWorksUnderABoxOfAnotherWindow) {
    HWND dialog = OpenGoodOrder();
    probe::SetEdit(dialog, IDC_PERIOD, "");
    boxes.during = [&] {
        host.rights.clear();
        Pick("Order Entry"); // refused: its box waits for the first
        boxes.during = [&] {
            FillGoodOrder(dialog);
            probe::Press(dialog, IDC_SUBMIT);
        };
    };
    probe::Press(dialog, IDC_SUBMIT);
    EXPECT_EQ(boxes.Texts(), "Enter a Month.|You are not enabled on Planfold.|");
    EXPECT_EQ(host.requests.size(), 2u);
}

TEST_F(Interrupt, APickBringsUpAMinimisedWindowInTheHostsFont) {
    host.fontVariation = 6;
    HWND dialog = OpenOrderEntry();
    const LONG opened = probe::SizeOf(dialog).cx;
    plugin->ApplyFont();
    EXPECT_EQ(probe::SizeOf(dialog).cx, opened);
    ShowWindow(dialog, SW_MINIMIZE);
    host.fontVariation = 12;
    plugin->ApplyFont();
    probe::SetEdit(dialog, IDC_VALUE, "77");
    EXPECT_EQ(OpenOrderEntry(), dialog);
    EXPECT_FALSE(IsIconic(dialog));
    EXPECT_EQ(probe::Text(dialog, IDC_VALUE), "77") << "it is the same window";
    EXPECT_GT(probe::SizeOf(dialog).cx, opened) << "the new font's size";
}

} // namespace
