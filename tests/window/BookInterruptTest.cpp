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
        return "0=cancel_sip_order 64804=" + number + " 32760=" + number + " 54158=UUID-1 20008=" + reason
               + " 49281=LOGIN 64756= ";
    }
};

TEST_F(BookInterrupt, CancelAsksOnceAndSendsOneReasonForAll) {
    struct Row {
        const char* start;
        std::function<void()> starts;
        int closes;       // the reason dialog, by this command
        const char* sent; // null: nothing is asked or sent
    };
    const auto press = [](UINT key) {
        probe::PostKey(key);
        probe::Pump();
    };
    const Row rows[] = {
        {"a key in the list", [&] { press(VK_DELETE); }, IDOK, "not wanted"},
        {"the host's text", [&] { SendText("Cancel Order"); }, IDCANCEL, " "},
        {"the command", [&] { Command(book::kCancel); }, 0, " "}, // Escape
        {"another text", [&] { SendText("Cancel order"); }, IDOK, nullptr},
        {"no text", [&] { SendText(nullptr); }, IDOK, nullptr},
        {"a key in the other list",
         [&] {
             SetFocus(cancelled);
             press(VK_DELETE);
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
            EXPECT_EQ(GetFocus(), GetDlgItem(shown, book::kReason));
            probe::SetEdit(shown, book::kReason, "not wanted");
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
    boxes.toQuestions = IDNO;
    Select(registered, {"SIP3"});
    host.requests.clear();
    Command(book::kCancel);
    EXPECT_EQ(boxes.Texts(), "Do you want to cancel Order No: SIP3 |");
    EXPECT_TRUE(host.requests.empty());
}

TEST_F(BookInterrupt, TheStreamGoesOnUnderTheReason) {
    OpenWith(4, {"SIP1", "SIP2"});
    const WhenShown reason(ReasonDialog, [&](HWND shown) {
        Streamed("SIP2", "cancelled");
        Queried("SIP5");
        EXPECT_EQ(Counts(), "4 1");
        Command(book::kCancel); // not twice
        probe::Press(shown, IDOK);
    });
    Command(book::kCancel);
    EXPECT_EQ(host.requests, (Texts{CancelRequest("SIP2", " "), CancelRequest("SIP1", " ")}));
    EXPECT_EQ(SelectedNumbers(registered), "SIP1");
    host.AnswerBook({{32767, {"cancel_sip_order"}}, {32760, {"SIP1"}}});
    EXPECT_EQ(Counts(), "3 1");
    EXPECT_EQ(boxes.Texts(), "You have selected 2 Orders to Cancel. Proceed?|SIP1 Order Cancelled |");
}

// Nothing is left, and nothing is sent any more.
TEST_F(BookInterrupt, TheBookMayEndInTheMiddleOfEverything) {
    const auto progress = [] {
        HWND found = nullptr;
        for (HWND window : probe::TopWindows())
            if (GetDlgItem(window, book::kRunBar)) found = window;
        return found;
    };
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
        {"the question of a run",
         [&](bool exits) {
             boxes.during = [&, exits] { ends(exits); };
             Command(book::kPauseSelected);
         }},
        {"the progress of a run",
         [&](bool exits) {
             Command(book::kPauseSelected);
             EXPECT_TRUE(probe::PumpUntil([&] { return progress() && host.requests.size() > 250; }));
             ends(exits);
         },
         300, 300},
        {"the last box of a run",
         [&](bool exits) {
             Command(book::kPauseSelected);
             boxes.during = [&, exits] { ends(exits); };
             SendMessageA(progress(), WM_CLOSE, 0, 0);
         },
         251, 250},
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

TEST_F(BookInterrupt, ModifyOpensTheRegistrationInTheOrderForm) {
    Open();
    QueriedInFull("SIP1", "active"); // its start is long past
    Select(registered, {"SIP1"});
    const auto modifying = [] { return probe::FindDialog("Planfold Modify Order: SIP1"); };
    for (const char* end : {"answer", "escape", "new order"}) {
        SCOPED_TRACE(end);
        Command(book::kModify);
        HWND form = modifying();
        ASSERT_NE(form, nullptr);
        std::string enabled;
        for (HWND child : probe::Children(form)) {
            const LONG_PTR style = GetWindowLongPtrA(child, GWL_STYLE);
            if ((style & WS_VISIBLE) && !(style & WS_DISABLED) && probe::ClassOf(child) != "Static")
                enabled += std::to_string(GetDlgCtrlID(child)) + " ";
        }
        EXPECT_EQ(enabled, "1025 1037 1161 1034 ");
        EXPECT_EQ(probe::Text(form, order::kSubmit) + probe::Text(form, order::kSymbol), "ModifyARBORTOOLS");
        EXPECT_EQ(SelectedAt(form, order::kValue), "0-7 focus") << "1234.50 is typed over";
        if (*end == 'a') {
            probe::SetEdit(form, order::kValue, "99.5");
            probe::SetEdit(form, order::kPeriod, "24");
            probe::Press(form, order::kSubmit);
            EXPECT_EQ(host.LastRequest(), "0=modify_sip_order 64804=SIP1 53063=9950 63415=24");
            EXPECT_EQ(boxes.Texts(), "");
            host.Answer({{32767, {"modify_sip_order"}}, {20008, {"modified"}}});
            EXPECT_EQ(boxes.Texts(), "modified|");
        } else if (*end == 'e') {
            probe::PostKey(VK_ESCAPE);
            probe::Pump();
        } else {
            form = OpenOrderEntry();
            ASSERT_NE(form, nullptr);
            EXPECT_EQ(probe::Text(form, order::kSubmit) + probe::Text(form, order::kPeriod), "Submit1");
            EXPECT_TRUE(IsWindowEnabled(GetDlgItem(form, order::kSymbol)));
            EXPECT_EQ(host.LastRequest(), "0=get_sip_operation_mode");
        }
        EXPECT_EQ(modifying(), nullptr);
        EXPECT_EQ(PluginWindows().empty(), *end != 'n');
    }
    Command(book::kModify);
    Streamed("SIP1", "Paused");
    EXPECT_NE(probe::Text(modifying(), order::kSummary)
                  .find("Changed meanwhile by DEALER7: Status Paused instead of active\n"),
              std::string::npos)
        << probe::Text(modifying(), order::kSummary);
    QueriedInFull("SIP1", "cancelled");
    boxes.toQuestions = IDNO;
    host.requests.clear();
    probe::Press(modifying(), order::kSubmit);
    EXPECT_EQ(boxes.Texts(),
              "SIP1 was changed by DEALER8 while this form was open:\nStatus cancelled instead of "
              "active\n\nModify it all the same?|");
    EXPECT_TRUE(host.requests.empty());
    EXPECT_EQ(probe::Text(modifying(), order::kValue), "1234.50");
    Streamed("SIP1", "expired");
    Command(book::kModify);
    EXPECT_EQ(boxes.Texts(), "Cannot modify SIP. Order status: expired|");
}

} // namespace
