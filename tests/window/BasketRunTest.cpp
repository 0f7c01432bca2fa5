// The basket's placing and other long runs, and what comes in the middle of them.
#include "tests/window/BasketWindowTest.h"

namespace {

TEST_F(BasketWindow, FilterAndSortChangeNothingOfThePlacing) {
    Load(Line("C2") + Line("C3") + Line("C1") + Line("C3"));
    Command(basket::kSort);
    Command(basket::kFilterCell);
    EXPECT_EQ(Column(0), "C3 C3");
    host.calls.clear();
    host.requests.clear();
    host.cautionOfRow = {{1, 0}};
    probe::Press(dialog, IDC_BASKET_PLACE);
    const auto questioned = [&](const char* client, int place) {
        return std::ranges::count(host.calls, "pu_build_bskt_caution_order_map(" + std::string(client)
                                                  + ",value,CNC,150000,ARBORTEX-EQ,nse_cm,"
                                                  + std::to_string(place) + ")");
    };
    EXPECT_EQ(questioned("C3", 0) + questioned("C1", 1) + questioned("C3", 2) + questioned("C2", 3), 4);
    std::string sent;
    for (const std::string& request : host.requests)
        sent += request.substr(request.find(" account=") + 9, 2)
                + request.substr(request.find(" echoedNumber="), 15) + "|";
    EXPECT_EQ(sent, "C3 echoedNumber=4|C3 echoedNumber=2|C2 echoedNumber=1|");
    EXPECT_EQ(boxes.Texts(), "1 like another of these orders: C3 ARBORTEX-EQ monthly\n\nYes: place all 4.\n"
                             "No: place only the other 3.\nCancel: place none.|"
                             "Are you sure to place these Basket Orders?|Order Placed..!!|");
    for (const int command : {0, basket::kClearFilters, basket::kNaturalOrder}) {
        Command(command);
        char status[128] = "";
        SendMessageA(GetDlgItem(dialog, IDC_BASKET_STATUS), SB_GETTEXTA, 3, reinterpret_cast<LPARAM>(status));
        EXPECT_STREQ(status,
                     "Duplicates: 2  Sent 3: 0 registered, 0 refused, 0 in doubt  Waiting: 3  Not placed: 1")
            << command;
    }
}

TEST_F(BasketWindow, LongRunsArePaintedAndCanBeStopped) {
    constexpr std::size_t many = 20000;
    Write(Lines(many));
    const auto run = [&](int button, auto reached, auto during) {
        lookCosts = 20;
        probe::Press(dialog, button);
        ASSERT_NE(Progress(), nullptr);
        EXPECT_EQ(GetAncestor(GetFocus(), GA_ROOT), Progress());
        EXPECT_FALSE(IsWindowEnabled(dialog));
        InvalidateRect(dialog, nullptr, FALSE);
        const WhenShown painted(
            [&] { return !GetUpdateRect(dialog, nullptr, FALSE) && reached() ? Progress() : nullptr; },
            [&](HWND) {
                lookCosts = 0;
                during();
            });
        EXPECT_TRUE(probe::PumpUntil([] { return !Progress(); }));
        EXPECT_TRUE(painted.Seen());
        EXPECT_TRUE(IsWindowEnabled(dialog));
        EXPECT_TRUE(IsEnabled(IDC_BASKET_PLACE));
        EXPECT_EQ(GetAncestor(GetFocus(), GA_ROOT), dialog);
    };
    const auto soon = [] { return true; };
    const auto escape = [] { probe::PostKey(VK_ESCAPE); };
    run(IDC_BASKET_LOAD, soon,
        [&] { EXPECT_TRUE(probe::Text(dialog).ends_with(" - Loading Basket. Please Wait.... ")); });
    EXPECT_EQ(Rows(list), static_cast<int>(many));
    EXPECT_EQ(boxes.Texts(), "");

    host.requests.clear();
    // What comes before the host's question, at once; what comes after it, slowly.
    const auto sending = [&] {
        if (!host.CallsOf("pu_invoke_bskt_caution_order_confirmation")) lookCosts = 0;
        return !host.requests.empty();
    };
    host.duringCaution = [] { lookCosts = 20; };
    run(IDC_BASKET_PLACE, sending, [&] {
        Answer("echoedRequest=add_sip_orders echoedNumber=" + std::to_string(many - 1)
               + " userText=registered");
        EXPECT_EQ(probe::Cell(list, 1, 12), "registered");
        escape();
    });
    const std::string sent = std::to_string(host.requests.size());
    EXPECT_EQ(boxes.Texts(), "Are you sure to place these Basket Orders?|Placing was stopped: " + sent
                                 + " of 20000 orders were sent.\nRemove these " + sent + " from the basket?|");
    EXPECT_EQ(static_cast<std::size_t>(Rows(list)), many - host.requests.size());

    run(IDC_BASKET_LOAD, soon, escape);
    EXPECT_NE(boxes.Texts().find("|Loading was stopped: "), std::string::npos);
    EXPECT_LT(Rows(list), static_cast<int>(many));
}

// Nothing is left, and nothing goes on any more; another pick changes nothing.
TEST_F(BasketWindow, MayEndInTheMiddleOfEverything) {
    enum End { exits, closes, picks };
    End end = exits;
    const auto ends = [&] {
        if (end == exits)
            plugin->Exit();
        else if (end == closes)
            Close(dialog);
        else
            Pick(basket::kName);
    };
    struct Row {
        const char* middle;
        std::function<void()> happens;
        std::size_t sent = 0; // when another pick is all that happens
    };
    const Row rows[] = {
        {"the question of a placing",
         [&] {
             boxes.during = ends;
             probe::Press(dialog, IDC_BASKET_PLACE);
         },
         9},
        {"the host's question",
         [&] {
             host.duringCaution = ends;
             probe::Press(dialog, IDC_BASKET_PLACE);
         },
         9},
        {"the row menu",
         [&] {
             const WhenShown menu(probe::OpenMenu, [&](HWND) {
                 ends();
                 if (end == picks) EndMenu();
             });
             SendMessageA(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), MAKELPARAM(60, 60));
             EXPECT_TRUE(menu.Seen());
         }},
        {"a file dialog",
         [&] {
             const std::filesystem::path given = std::exchange(path, {});
             const WhenShown question([] { return probe::FindDialog("Open"); },
                                      [&](HWND shown) {
                                          ends();
                                          if (end == picks) probe::Press(shown, IDCANCEL);
                                      });
             probe::Press(dialog, IDC_BASKET_LOAD);
             EXPECT_TRUE(question.Seen());
             path = given;
         }},
        {"the progress of a placing",
         [&] {
             lookCosts = 100;
             const WhenShown sending([&] { return host.requests.empty() ? nullptr : Progress(); },
                                     [&](HWND progress) {
                                         ends();
                                         if (end == picks) SendMessageA(progress, WM_CLOSE, 0, 0);
                                     });
             probe::Press(dialog, IDC_BASKET_PLACE);
             EXPECT_TRUE(probe::PumpUntil([&] { return sending.Seen(); }));
             lookCosts = 0;
         }},
    };
    for (const Row& row : rows)
        for (const End how : {exits, closes, picks}) {
            SCOPED_TRACE(testing::Message() << row.middle << ", " << how);
            end = how;
            Open();
            Load(Lines(9));
            host.requests.clear();
            boxes.Texts();
            row.happens();
            const std::size_t sent = host.requests.size();
            probe::Pump();
            EXPECT_EQ(host.requests.size(), sent) << "nothing goes on";
            EXPECT_TRUE(how != picks || !row.sent || sent == row.sent) << sent;
            EXPECT_EQ(probe::FindDialog(basket::kCaption), how == picks ? dialog : nullptr);
            EXPECT_EQ(std::ranges::count_if(PluginWindows(), IsWindowVisible), how == picks);
            EXPECT_TRUE(how != picks || IsWindowEnabled(dialog));
            EXPECT_EQ(host.LiveControls() == 0, how == exits);
        }
    boxes.Texts();
}

// Closed and picked again in the host's hands before it stood: the new window is filled once.
TEST_F(BasketWindow, OpenedAnewBeforeItStoodIsFilledOnce) {
    for (const int resizesBefore : {0, 2}) {
        Close(dialog);
        int left = resizesBefore;
        std::function<void()> anew = [&] {
            if (left-- > 0) {
                host.duringResize = anew;
                return;
            }
            Close(probe::FindDialog(basket::kCaption));
            Pick(basket::kName);
        };
        host.duringResize = anew;
        Open();
        EXPECT_LT(left, 0);
        EXPECT_EQ(probe::Items(dialog, IDC_EXCHANGE), (Texts{"NSE", "BSE"})) << resizesBefore;
    }
}

} // namespace
