// The registration book in the host's main frame: its pane, lists, counts, menus and controls.
#include "tests/window/BookWindowTest.h"

#include <algorithm>

namespace {

const char kOrdersQuery[] = "om_get_sip_orders loginId=LOGIN";

class BookTest : public BookWindowTest {
protected:
    // The pane in the client area of its parent.
    std::string PlaceText() const {
        RECT place = probe::PlaceOf(pane);
        MapWindowPoints(nullptr, GetAncestor(pane, GA_PARENT), reinterpret_cast<POINT*>(&place), 2);
        return std::to_string(place.left) + "," + std::to_string(place.top) + " "
               + std::to_string(place.right - place.left) + "x" + std::to_string(place.bottom - place.top);
    }
    std::string Bottom() const {
        RECT client{};
        GetClientRect(Frame(), &client);
        const int height = MulDiv(200, static_cast<int>(GetDpiForWindow(pane)), 96);
        return "0," + std::to_string(client.bottom - height) + " " + std::to_string(client.right) + "x"
               + std::to_string(height);
    }
    void SizeFrame(int width, int height) const {
        SetWindowPos(Frame(), nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
};

TEST_F(BookTest, OpensInItsPaneOnceAndEveryPickAsksAgain) {
    host.accounts = {"C001"};
    Open();
    ASSERT_NE(registered, nullptr);
    EXPECT_EQ(GetParent(pane), Frame());
    EXPECT_EQ(probe::Text(pane), book::kName);
    EXPECT_EQ(probe::Children(pane), std::vector{dialog});
    EXPECT_EQ(probe::ClassOf(dialog), "#32770");
    EXPECT_EQ(GetFocus(), registered);
    EXPECT_EQ(announced, std::vector{pane});
    EXPECT_EQ(host.requests.size(), 4u);
    EXPECT_EQ(std::ranges::count(host.requests, kOrdersQuery), 2);
    const SYSTEMTIME today = DaysFromNow(0);
    const std::string upTo = " toDate=" + std::to_string(today.wMonth) + "/" + std::to_string(today.wDay) + "/"
                             + std::to_string(today.wYear);
    EXPECT_EQ(std::ranges::count_if(host.requests, [&](const auto& text) { return text.ends_with(upTo); }), 1);
    Command(book::kRefresh);
    EXPECT_EQ(host.requests.size(), 5u);
    EXPECT_EQ(host.LastRequest(), kOrdersQuery);
    host.requests.pop_back();
    EXPECT_EQ(host.subscriptions, (Texts{"streamName=PLANFOLD registrationNumber=- loginId=LOGIN account=C001",
                                         "loginId=LOGIN registrationNumber=-"}));

    const HWND first = pane;
    const auto windows = PluginWindows().size();
    for (const bool hidden : {false, true}) {
        if (hidden) SendMessageA(dialog, WM_CLOSE, 0, 0);
        EXPECT_EQ(IsWindowVisible(pane), !hidden);
        SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0); // Escape changes nothing
        EXPECT_EQ(IsWindowVisible(pane), !hidden);
        Open();
        EXPECT_EQ(pane, first);
        EXPECT_TRUE(IsWindowVisible(registered));
        EXPECT_EQ(probe::Children(Frame()).size(), 1u);
        EXPECT_EQ(PluginWindows().size(), windows);
        EXPECT_EQ(host.requests.size(), hidden ? 6u : 5u);
        EXPECT_EQ(host.LastRequest(), kOrdersQuery);
    }
    EXPECT_EQ(announced.size(), 1u);
    EXPECT_EQ(host.subscriptions.size(), 2u);

    // A frame that has taken it away gets a new one, empty, with everything asked for.
    Queried("SIP1");
    DestroyWindow(pane);
    Queried("SIP2");
    Open();
    EXPECT_EQ(announced.size(), 2u);
    EXPECT_EQ(host.requests.size(), 10u);
    EXPECT_EQ(Counts(), "0 0");
}

TEST_F(BookTest, StandsAtTheBottomUntilTheFrameTakesItOver) {
    struct Row {
        const char* frame;
        UINT takesOverOn; // 0: never
        bool floats;
    };
    const Row rows[] = {{"knows nothing of panes", 0, false},
                        {"lays it out when it is told of it", book::kRegisterPane, false},
                        {"lays it out when it is sized", WM_SIZE, false},
                        {"lets it float", book::kRegisterPane, true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.frame);
        SizeFrame(1000, 700);
        HWND floating = CreateWindowExA(0, "FakeHostFrame", "", WS_POPUP | WS_VISIBLE, 0, 0, 500, 300, Frame(),
                                        nullptr, nullptr, nullptr);
        bool taken = false;
        onFrame = [&](UINT message, HWND told) {
            if (message != row.takesOverOn || std::exchange(taken, true)) return;
            if (row.floats)
                SetParent(told, floating);
            else
                SetWindowPos(told, nullptr, 10, 20, 300, 120, SWP_NOZORDER);
        };
        Pick(book::kName);
        pane = announced.back();
        dialog = GetWindow(pane, GW_CHILD);
        registered = GetDlgItem(dialog, IDC_REGISTERED_LIST);
        const std::string placed = PlaceText();
        EXPECT_TRUE(row.floats || placed == (taken ? "10,20 300x120" : Bottom())) << placed;
        for (const bool hides : {false, true}) {
            if (hides) {
                SendMessageA(pane, WM_CLOSE, 0, 0);
                Pick(book::kName);
            }
            SizeFrame(hides ? 900 : 800, 650);
            EXPECT_EQ(PlaceText(), row.floats ? placed : row.takesOverOn ? "10,20 300x120" : Bottom()) << hides;
        }
        DestroyWindow(pane);
        DestroyWindow(floating);
    }
}

TEST_F(BookTest, ColumnsAndCellsAreReadAsTheyAreShown) {
    const char* cells = "DEALER7|C002|NSE|ARBORTOOLS-EQ|CNC|SIP|MARKET|1234.50||monthly|05-Mar-2020|12|"
                        "05-Apr-2027|%|S1|01-Mar-2027|Second Client|TWS|05-Feb-2028||";
    Open();
    for (const char* status : {"active", "canceled"}) {
        Fields fields(
            std::string("echoedRequest=om_get_sip_orders registrationNumber=S1 sipStatus=") + status
            + " queriedRow=1 loginId=DEALER7 account=C002 exchange=nse_cm product=CNC "
              "tradingSymbol=ARBORTOOLS-EQ side=B orderType=MKT investType=value amountOrQuantity=123450 "
              "frequency=monthly totalPeriod=12 startDate=05-Mar-2020 nextExecutionDate=05-Apr-2027 "
              "registrationDate=01-Mar-2027 orderSource=TWS endDate=05-Feb-2028 cancelledBy=DEALER8 "
              "cancelledDate=09-Mar-2027");
        fields.push_back({tag::userText, {"no longer wanted"}});
        host.AnswerBook(fields);
        const bool ended = *status == 'c';
        std::string texts;
        HWND list = ended ? cancelled : registered;
        for (int i = 0; i < (ended ? 23 : 20); ++i)
            texts += probe::Cell(list, 0, i) + "|";
        std::string shown = cells;
        shown.replace(shown.find('%'), 1, status);
        EXPECT_EQ(texts, shown + (ended ? "no longer wanted|DEALER8|09-Mar-2027|" : ""));
    }
    EXPECT_EQ(probe::Cell(registered, 0, 13), "canceled") << "a query leaves the registered row";
}

TEST_F(BookTest, NumbersAreSortedByValue) {
    Open();
    for (const char* row :
         {"1 investType=value amountOrQuantity=900000", "2 investType=value amountOrQuantity=1000000",
          "3 investType=qty amountOrQuantity=9", "4 investType=qty amountOrQuantity=10"})
        host.AnswerBook(
            std::string("echoedRequest=om_get_sip_orders queriedRow=1 sipStatus=active registrationNumber=SIP")
            + row);
    const HWND header = ListView_GetHeader(registered);
    for (const auto& [column, last] : {std::pair(7, "10000.00"), {8, "10"}}) {
        RECT rect{};
        SendMessageA(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&rect));
        const LPARAM place = MAKELPARAM((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
        SendMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, place);
        SendMessageA(header, WM_LBUTTONUP, 0, place);
        EXPECT_EQ(probe::Cell(registered, 1, column), last); // empty cells come behind
    }
}

TEST_F(BookTest, ThePeriodsStayTheServersWhileAFormIsOpenForModification) {
    Open();
    host.AnswerBook("echoedRequest=get_sip_operation_mode frequency=monthly minimumPeriods=6");
    Queried("SIP1");
    Select(registered, {"SIP1"});
    Command(book::kModify);
    host.Stream(kRxAccountStream, "registrationNumber=SIP1 totalPeriod=24");
    EXPECT_EQ(probe::Cell(registered, 0, 11) + "|" + probe::Cell(registered, 0, 19), "|24");
}

TEST_F(BookTest, CountsFollowEveryChangeOfWhatIsShown) {
    struct Step {
        const char* what;
        std::function<void()> happens;
        const char* counts;
    };
    const auto activate = [&](const char* client) { EXPECT_EQ(plugin->Activate(client, host.strings), 1); };
    EXPECT_EQ(plugin->Activate("C001", host.strings), 0);
    Open();
    const Step steps[] = {
        {"rows of two clients",
         [&] {
             QueriedUpTo(5);
             Queried("SIP6", "active", "C002");
             Queried("SIP7", "canceled", "C002");
         },
         "6 1"},
        {"cancelled elsewhere", [&] { Streamed("SIP2", "cancelled"); }, "5 2"},
        {"a client", [&] { activate("C001"); }, "4 1"},
        {"insertion behind the filter", [&] { Queried("SIP8", "active", "C002"); }, "4 1"},
        {"the other client", [&] { activate("C002"); }, "2 1"},
        {"a row changes its client", [&] { Queried("SIP1", "Paused", "C002"); }, "3 1"},
        {"cancelled elsewhere behind the filter", [&] { Streamed("SIP3", "cancelled"); }, "3 1"},
        {"told once more", [&] { Streamed("SIP3", "cancelled"); }, "3 1"},
        {"all", [&] { activate(""); }, "5 3"},
    };
    for (const Step& step : steps) {
        step.happens();
        EXPECT_EQ(Counts(), step.counts) << step.what;
    }
}

TEST_F(BookTest, RowMenusOfferWhatTheSelectionAllows) {
    Open();
    for (const char* status : {"active", "Paused"})
        Streamed(status, status); // the number says the status
    Queried("canceled", "canceled");
    struct Row {
        std::vector<std::string> selected; // the newest first
        const char* changes;
    };
    const Row rows[] = {
        {{}, ""},
        {{"active"}, "Modify 25003|Pause 25004|(Resume 25005)|"},
        {{"Paused", "active"}, "Modify 25003|(Pause 25004)|Resume 25005|"},
    };
    // Behind the separator the list's own; some of them can be picked only while a row is selected.
    for (const Row& row : rows) {
        Select(registered, row.selected);
        const std::string own =
            std::string("Refresh 25001|Cancel\tDel 25002|") + row.changes + "Order History 4|-|"
            + (row.selected.size() > 1 ? "Pause Selected... 25101|Resume Selected... 25102|-|" : "")
            + "Orders of a Day... 25103|(Compare Orders in Doubt 25104)|Upcoming Runs...\tCtrl+U 25105|"
              "Runs of a Period...\tCtrl+R 25106|Copy to Basket...\tCtrl+B 25107|Export for Changes... "
              "25121|Load Changes... 25122|Step Up... "
              "25123|-|"
            + (row.selected.empty() ? "(Copy\tCtrl+C 26000)" : "Copy\tCtrl+C 26000");
        EXPECT_EQ(MenuOf(registered).substr(0, own.size()), own);
    }
    SendMessageA(GetDlgItem(dialog, IDC_BOOK_TABS), TCM_SETCURFOCUS, 1, 0);
    EXPECT_TRUE(IsWindowVisible(cancelled));
    EXPECT_FALSE(IsWindowVisible(registered));
    EXPECT_TRUE(MenuOf(cancelled).starts_with(
        "Order History 4|-|Orders of a Day... 25103|(Compare Orders in "
        "Doubt 25104)|Upcoming Runs...\tCtrl+U 25105|"
        "Runs of a Period...\tCtrl+R 25106|Copy to Basket...\tCtrl+B 25107|-|(Copy\tCtrl+C 26100)"));
}

TEST_F(BookTest, TakesItsControlsLastAndStopsItsStreams) {
    host.refuses = true;
    host.accounts = Texts(45, "C001");
    Open();
    const std::string texts = boxes.Texts();
    EXPECT_TRUE(texts.ends_with("error code : 42\n... and 20 more|")) << texts;
    EXPECT_EQ(std::ranges::count(texts, '|'), 1);
    plugin->Exit();
    host.refuses = false;
    host.accounts = {"C001", "C002"};
    Open();
    EXPECT_EQ(host.Newest(kRxAccountStream).subscribed, 2) << "one for each account";
    EXPECT_EQ(host.Newest(kRxIdentityStream).subscribed, 1);
    ASSERT_GT(host.controls.size(), 3u);
    for (const int kind : {kRxRequests, kRxIdentityStream, kRxAccountStream})
        EXPECT_EQ(host.controls[host.controls.size() - 3 + static_cast<std::size_t>(kind)].kind, kind);
    plugin->Exit();
    EXPECT_EQ(host.Newest(kRxIdentityStream).stops + host.Newest(kRxAccountStream).stops, 2);
}

} // namespace
