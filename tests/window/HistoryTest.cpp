// The order history: opened from the book, filled by answers, and closed or ended in the middle of things.
#include "tests/window/BookWindowTest.h"

namespace {

constexpr int kHistoryCommand = 4;

class HistoryTest : public BookWindowTest {
protected:
    // Its control is the one taken before the book's three.
    void Answer(const char* request, Fields fields) {
        fields.push_back({tag::echoedRequest, {request}});
        const Received message(fields);
        host.controls.at(host.controls.size() - 4).notifier->OnResponse(nullptr, message.Message(), nullptr);
    }
    void Order(const char* number, const char* traded) {
        Fields fields(
            "orderNumber=" + std::string(number) + " tradedQuantity=" + traded
            + " registrationNumber=SIP1 loginId=DEALER7 sipStatus=complete orderSource=TWS price=12345 "
              "quantity=10 userText=fine");
        fields.push_back({tag::placementTime, {"05-Mar-2027 10:15"}});
        Answer("qry_eq_sip_orders", fields);
    }
    void Trade(const char* number, const char* price) {
        Answer("qry_eq_sip_trades", "registrationNumber=SIP1 orderNumber=" + std::string(number)
                                        + " tradedPrice=" + price + " fillDetailA=9:15 fillDetailB=today");
    }
    void End() { Answer("qry_eq_sip_orders", "errorCode="); }
    // Asks for SIP1 and gives it two orders, of which the first awaits its trades.
    HWND OpenHistory() {
        if (!pane || !IsWindow(pane)) Open();
        Queried("SIP1");
        Select(registered, {"SIP1"});
        Command(kHistoryCommand);
        Order("O1", "4");
        Order("O2", "0");
        End();
        return History();
    }
    static HWND History() { return probe::FindDialog("SIP Order History"); }
    static std::string Details(HWND dialog) {
        std::string text;
        for (int i = 0; i < 9; ++i)
            text += probe::Text(dialog, IDC_HISTORY_DETAIL + i) + "|";
        return text;
    }
};

TEST_F(HistoryTest, OpensForTheFirstSelectedRowOfTheActivePage) {
    Open();
    for (const char* number : {"SIP1", "SIP2", "SIP3"})
        Queried(number);
    Queried("SIP8", "canceled");
    const auto asked = [&] {
        host.requests.clear();
        Command(kHistoryCommand);
        return host.LastRequest();
    };
    EXPECT_EQ(asked(), "(none)") << "nothing is selected";
    Select(registered, {"SIP1", "SIP2"});
    EXPECT_EQ(asked(), "qry_eq_sip_orders registrationNumber=SIP2");
    SendMessageA(GetDlgItem(dialog, IDC_BOOK_TABS), TCM_SETCURFOCUS, 1, 0);
    Select(cancelled, {"SIP8"});
    EXPECT_EQ(asked(), "qry_eq_sip_orders registrationNumber=SIP8");
    host.refuses = true;
    Command(kHistoryCommand);
    EXPECT_EQ(boxes.Texts(), "Request Failure|");
    EXPECT_EQ(History(), nullptr) << "it comes with the answer";
}

TEST_F(HistoryTest, ShowsTheOrdersAndTheFocusedOneInDetail) {
    HWND history = OpenHistory();
    ASSERT_NE(history, nullptr);
    EXPECT_EQ(GetWindow(history, GW_OWNER), nullptr);
    EXPECT_EQ(host.LastRequest(), "qry_eq_sip_trades registrationNumber=SIP1");
    HWND list = GetDlgItem(history, IDC_HISTORY_LIST);
    EXPECT_EQ(GetFocus(), list);
    std::string cells;
    for (int i = 0; i < 7; ++i)
        cells += probe::Cell(list, 0, i) + "|";
    EXPECT_EQ(cells, "DEALER7|complete|TWS|05-Mar-2027 10:15|123.45|10|fine|");
    const auto expect = [&](const char* details) {
        probe::Pump();
        EXPECT_EQ(Details(history), details);
    };
    expect("NA|NA|NA|NA|NA|SIP1|NA|4| |");
    Trade("O1", "12350");
    probe::PostKey(VK_DOWN);
    expect("NA|NA|NA|NA|NA|SIP1|NA|0| |");
    probe::PostKey(VK_UP);
    expect("NA|NA|NA|NA|NA|SIP1|123.50|4|9:15 today|");
    EXPECT_TRUE(probe::PumpUntil([&] {
        return probe::Text(history, IDC_HISTORY_CHART).find("Amount filled: Rs 494.00.") != std::string::npos;
    })) << "the chart counts what was paid: "
        << probe::Text(history, IDC_HISTORY_CHART);
    InvalidateRect(list, nullptr, FALSE);
    Trade("O1", "12370");
    EXPECT_TRUE(GetUpdateRect(list, nullptr, FALSE)) << "what waited to be painted still waits";
    const SIZE listBefore = probe::SizeOf(list),
               chartBefore = probe::SizeOf(GetDlgItem(history, IDC_HISTORY_CHART));
    const SIZE before = probe::SizeOf(history);
    SetWindowPos(history, nullptr, 0, 0, before.cx + 100, before.cy + 60, SWP_NOZORDER | SWP_NOMOVE);
    EXPECT_EQ(probe::SizeOf(list).cx, listBefore.cx + 100);
    EXPECT_EQ(probe::SizeOf(list).cy + probe::SizeOf(GetDlgItem(history, IDC_HISTORY_CHART)).cy,
              listBefore.cy + chartBefore.cy + 60);
    host.fontVariation = 6;
    plugin->ApplyFont();
    EXPECT_GT(probe::SizeOf(history).cx, before.cx + 150) << "grown by the user and by the font";
    EXPECT_GT(probe::SizeOf(list).cx, listBefore.cx + 150);
    EXPECT_TRUE(MenuOf(list, -1).starts_with("Copy\tCtrl+C"));
    probe::PostKey(VK_ESCAPE);
    EXPECT_TRUE(probe::PumpUntil([&] { return !IsWindow(history); }));
}

TEST_F(HistoryTest, IsHiddenWithoutOrdersAndOutlivesItsWindow) {
    HWND first = OpenHistory();
    Command(kHistoryCommand);
    End();
    EXPECT_TRUE(IsWindow(first));
    EXPECT_FALSE(IsWindowVisible(first));
    EXPECT_EQ(boxes.Texts(), "No orders yet: SIP1|");
    EXPECT_EQ(OpenHistory(), first);
    Close(first);
    EXPECT_FALSE(IsWindow(first));
    Trade("O1", "100");
    Order("O7", "0");
    EXPECT_EQ(History(), nullptr);
    End(); // closed in the middle of an answer
    HWND again = History();
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(Rows(GetDlgItem(again, IDC_HISTORY_LIST)), 1);

    // The host closes it, or exits, under the box of the trades' query.
    for (const bool exits : {false, true}) {
        Command(kHistoryCommand);
        Order("O1", "4");
        host.refuses = true;
        boxes.during = [&] {
            if (exits)
                plugin->Exit();
            else
                Close(again);
        };
        End();
        host.refuses = false;
        EXPECT_EQ(boxes.Texts(), "Request Failure|");
        EXPECT_EQ(History(), nullptr);
        if (!exits) again = OpenHistory();
    }
}

} // namespace
