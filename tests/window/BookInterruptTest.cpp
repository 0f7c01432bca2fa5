// What a dealer does in the registration book, and what comes in the middle of it: the stream, the end of the
// pane, the host's exit.
#include "tests/window/BookWindowTest.h"

#include <algorithm>

namespace {

class BookInterrupt : public BookWindowTest {
protected:
    // Filled while nothing is drawn.
    void OpenWith(int rows, const std::vector<std::string>& selected) {
        Open();
        ShowWindow(Frame(), SW_HIDE);
        QueriedUpTo(rows);
        ShowWindow(Frame(), SW_SHOW);
        SetForegroundWindow(Frame());
        Select(registered, selected);
        host.requests.clear();
    }
    void SendText(const char* text) const {
        SendMessageA(pane, book::kCommandText, 0, reinterpret_cast<LPARAM>(text));
    }
    static std::string CancelRequest(const std::string& number, const std::string& reason) {
        return "cancel_sip_order registrationNumber=" + number + " echoedNumber=" + number
               + " orderId=UUID-1 userText=" + reason + " cancelledBy=LOGIN orderSource= ";
    }
};

TEST_F(BookInterrupt, CancelAsksOnceAndSendsOneReasonForAll) {
    struct Row {
        const char* start;
        std::function<void()> starts;
        int closes;       // the reason dialog, by this command; 0: by Escape
        const char* sent; // null: nothing is asked or sent
    };
    const Row rows[] = {
        {"a key in the list", [&] { probe::PressKey(VK_DELETE); }, IDOK, "not wanted"},
        {"the host's text", [&] { SendText("Cancel Order"); }, 0, " "},
        {"no text", [&] { SendText(nullptr); }, IDOK, nullptr},
        {"a key in the other list",
         [&] {
             SetFocus(cancelled);
             probe::PressKey(VK_DELETE);
         },
         IDOK, nullptr},
    };
    OpenWith(4, {});
    for (const Row& row : rows) {
        SCOPED_TRACE(row.start);
        host.requests.clear();
        Select(registered, {"SIP1", "SIP2", "SIP4"});
        SetFocus(registered);
        std::string caption;
        const WhenShown reason(ReasonDialog, [&](HWND shown) {
            EXPECT_FALSE(IsWindowEnabled(Frame()));
            EXPECT_EQ(GetFocus(), GetDlgItem(shown, IDC_REJECT_REASON));
            probe::SetEdit(shown, IDC_REJECT_REASON, "not wanted");
            if (row.closes)
                probe::Press(shown, row.closes);
            else
                probe::PostKey(VK_ESCAPE);
        });
        row.starts();
        EXPECT_EQ(reason.Seen(), row.sent != nullptr);
        Texts expected;
        if (row.sent)
            for (const char* number : {"SIP4", "SIP2", "SIP1"})
                expected.push_back(CancelRequest(number, row.sent));
        EXPECT_EQ(host.requests, expected);
        EXPECT_EQ(boxes.Texts(), row.sent ? "You have selected 3 Orders to Cancel. Proceed?|" : "");
        EXPECT_TRUE(!row.sent || GetFocus() == registered) << "the dealer goes on by keyboard";
    }
}

TEST_F(BookInterrupt, WhatIsAskedForUnderAnotherBoxIsAskedOnceThatIsGone) {
    OpenWith(4, {"SIP1", "SIP3"});
    const WhenShown reason(ReasonDialog, [&](HWND shown) {
        EXPECT_EQ(probe::Text(shown, IDC_REJECT_NOTE),
                  "These 2 orders will be cancelled, also when you press Cancel here");
        probe::Press(shown, IDOK);
    });
    boxes.during = [&] {
        SetForegroundWindow(Frame());
        Command(book::kCancel);
        Command(book::kCancel);
        EXPECT_NE(GetForegroundWindow(), Frame()) << "the box comes to the front";
        Select(registered, {"SIP2"});
    };
    host.AnswerBook("echoedRequest=add_sip_orders userText=first");
    EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() == 2; }));
    probe::Pump();
    EXPECT_EQ(boxes.Texts(), "first|You have selected 2 Orders to Cancel. Proceed?|");
    EXPECT_EQ(host.requests, (Texts{CancelRequest("SIP3", " "), CancelRequest("SIP1", " ")}));
}

// A key that is still held down from a box stops nothing, and progress takes no keyboard away.
TEST_F(BookInterrupt, ARunIsStoppedByAKeyThatIsPressedForIt) {
    const auto hold = [](WPARAM key) {
        PostMessageA(GetFocus(), WM_KEYDOWN, key, 1 | (1 << 30));
        probe::Pump();
    };
    OpenWith(6000, {});
    for (const bool inItsWindow : {false, true}) {
        host.requests.clear();
        SetForegroundWindow(Frame());
        SetFocus(registered);
        ListView_SetItemState(registered, -1, LVIS_SELECTED, LVIS_SELECTED);
        Command(book::kPauseSelected);
        EXPECT_TRUE(probe::PumpUntil([] { return Progress() && IsWindowVisible(Progress()); }));
        EXPECT_EQ(GetFocus(), registered);
        const WPARAM key = inItsWindow ? VK_SPACE : VK_ESCAPE;
        if (inItsWindow) {
            SetForegroundWindow(Progress());
            SetFocus(GetDlgItem(Progress(), IDCANCEL));
        }
        hold(key);
        const auto before = host.requests.size();
        EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() > before; }));
        probe::PressKey(key);
        const auto sent = host.requests.size();
        probe::Pump();
        EXPECT_EQ(host.requests.size(), sent);
        EXPECT_LT(sent, 6000u);
        EXPECT_TRUE(IsWindowVisible(Progress())) << "until the last answer";
        EXPECT_TRUE(probe::PumpUntil([] { return !IsWindowEnabled(GetDlgItem(Progress(), IDCANCEL)); }));
        for (std::size_t i = 0; i < sent; ++i)
            host.AnswerBook("echoedRequest=pause_sip_order userText=paused");
        EXPECT_EQ(Progress(), nullptr);
        EXPECT_NE(boxes.Texts().find("Pause: " + std::to_string(sent) + " of 6000 requests were sent, then"),
                  std::string::npos);
    }
}

// Nothing is left, and nothing is sent any more.
TEST_F(BookInterrupt, TheBookMayEndInTheMiddleOfEverything) {
    const auto ends = [&](bool exits) {
        if (exits)
            plugin->Exit();
        else
            DestroyWindow(pane);
    };
    struct Row {
        const char* middle;
        std::function<void(bool exits)> happens;
        int rows = 3;
        std::size_t sent = 0; // before the end
    };
    const Row rows[] = {
        {"the question of a cancellation",
         [&](bool exits) {
             boxes.during = [&, exits] { ends(exits); };
             Command(book::kCancel);
         }},
        {"the reason",
         [&](bool exits) {
             const WhenShown reason(ReasonDialog, [&](HWND) { ends(exits); });
             Command(book::kCancel);
             EXPECT_TRUE(reason.Seen());
         }},
        {"the row menu",
         [&](bool exits) {
             const WhenShown menu(probe::OpenMenu, [&](HWND) { ends(exits); });
             SendMessageA(registered, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(registered), MAKELPARAM(60, 60));
             EXPECT_TRUE(menu.Seen());
         }},
        {"the progress of a run",
         [&](bool exits) {
             Command(book::kPauseSelected);
             EXPECT_TRUE(probe::PumpUntil([&] { return Progress() && host.requests.size() > 250; }));
             ends(exits);
         },
         300, 300},
    };
    for (const Row& row : rows)
        for (const bool exits : {false, true}) {
            SCOPED_TRACE(std::string(exits ? "exit during " : "end of the pane during ") + row.middle);
            OpenWith(row.rows, {});
            ListView_SetItemState(registered, -1, LVIS_SELECTED, LVIS_SELECTED);
            row.happens(exits);
            const auto sent = host.requests.size();
            probe::Pump();
            EXPECT_FALSE(IsWindow(pane));
            EXPECT_TRUE(PluginWindows().empty()) << probe::Text(PluginWindows().front());
            EXPECT_TRUE(IsWindowEnabled(Frame()));
            EXPECT_EQ(host.requests.size(), sent) << "nothing goes on";
            EXPECT_LE(sent, row.sent);
            EXPECT_EQ(exits, host.LiveControls() == 0);
            boxes.Texts();
        }
}

} // namespace
