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
    std::string children;
    for (HWND child : probe::Children(dialog))
        children += std::to_string(GetDlgCtrlID(child)) + " " + probe::ClassOf(child)
                    + (IsWindowVisible(child) ? "|" : " hidden|");
    EXPECT_EQ(children, "1200 SysTabControl32|1201 SysListView32|1202 SysListView32 hidden|"
                        "1203 msctls_statusbar32|");
    EXPECT_EQ(GetFocus(), registered);
    EXPECT_EQ(announced, std::vector{pane});
    EXPECT_EQ(host.requests.size(), 4u);
    EXPECT_EQ(std::ranges::count(host.requests, kOrdersQuery), 2);
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
            UINT arrived = 0;
            const auto handle = std::exchange(onFrame, [&](UINT message, HWND) { arrived = message; });
            RECT suggested{0, 0, 800, 600};
            SendMessageA(Frame(), WM_DPICHANGED, MAKEWPARAM(96, 96), reinterpret_cast<LPARAM>(&suggested));
            EXPECT_EQ(arrived, UINT{WM_DPICHANGED}) << "is the frame's own affair";
            onFrame = handle;
            SizeFrame(hides ? 900 : 800, 650);
            EXPECT_EQ(PlaceText(), row.floats ? placed : row.takesOverOn ? "10,20 300x120" : Bottom()) << hides;
        }
        // The lists fill what the tabs and the status bar leave.
        RECT client{};
        GetClientRect(dialog, &client);
        EXPECT_EQ(probe::SizeOf(registered).cx, client.right);
        EXPECT_EQ(probe::PlaceOf(registered).bottom, probe::PlaceOf(GetDlgItem(dialog, IDC_BOOK_STATUS)).top);
        DestroyWindow(pane);
        DestroyWindow(floating);
    }
}

TEST_F(BookTest, ColumnsAndCellsAreReadAsTheyAreShown) {
    const char* twenty =
        "User ID 100|Client ID 100|Exchange 50|Trading Symbol 200|Product 100|Action 50|Order Type 75|"
        "Amount 50 right|Quantity 50 right|Frequency 75|Start Date 100|Total Period(Month(s)) 200|"
        "Next Exec Date 150|SIP Status 150|SIP Registration No  100|SIP Registration Date 100|Account Name 100|"
        "Order Source 50|End Date 100|No of Installments registered 50 right|";
    const char* cells = "DEALER7|C002|NSE|ARBORTOOLS-EQ|CNC|SIP|MARKET|1234.50||monthly|05-Mar-2020|12|"
                        "05-Apr-2027|%|S1|01-Mar-2027|Second Client|TWS|05-Feb-2028||";
    Open();
    for (const char* status : {"active", "canceled"}) {
        QueriedInFull("S1", status);
        const bool ended = *status == 'c';
        std::string headings, texts;
        HWND list = ended ? cancelled : registered;
        HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
        for (int i = 0; i < SendMessageA(header, HDM_GETITEMCOUNT, 0, 0); ++i) {
            headings += HeadingAt(list, i);
            texts += probe::Cell(list, 0, i) + "|";
        }
        std::string shown = cells;
        shown.replace(shown.find('%'), 1, status);
        EXPECT_EQ(headings,
                  std::string(twenty) + (ended ? "Remarks 100|Cancelled By 100|Cancelled Date 100|" : ""));
        EXPECT_EQ(texts, shown + (ended ? "no longer wanted|DEALER8|09-Mar-2027|" : ""));
    }
    EXPECT_EQ(probe::Cell(registered, 0, 13), "canceled") << "a query leaves the registered row";
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
        {"nothing yet", [] {}, "0 0"},
        {"five rows", [&] { QueriedUpTo(5); }, "5 0"},
        {"of another client", [&] { Queried("SIP6", "active", "C002"); }, "6 0"},
        {"a cancelled one", [&] { Queried("SIP7", "canceled", "C002"); }, "6 1"},
        {"cancelled elsewhere", [&] { Streamed("SIP2", "cancelled"); }, "5 2"},
        {"a client", [&] { activate("C001"); }, "4 1"},
        {"insertion behind the filter", [&] { Queried("SIP8", "active", "C002"); }, "4 1"},
        {"the other client", [&] { activate("C002"); }, "2 1"},
        {"a row changes its client", [&] { Queried("SIP1", "Paused", "C002"); }, "3 1"},
        {"all", [&] { activate(""); }, "6 2"},
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
    // Between the separators the list's own; some of them can be picked only while a row is selected.
    const auto expect = [&](HWND list, const std::string& own, int first, bool selected) {
        const std::string entries = MenuOf(list);
        const std::string copy = "Copy\tCtrl+C " + std::to_string(first);
        const std::string begin = own + (selected ? copy : "(" + copy + ")") + "|Select All";
        EXPECT_EQ(entries.substr(0, begin.size()), begin);
        EXPECT_TRUE(entries.ends_with("|Reset Columns " + std::to_string(first + 11) + "|-")) << entries;
    };
    for (const Row& row : rows) {
        Select(registered, row.selected);
        expect(registered,
               std::string("Refresh 25001|Cancel\tDel 25002|") + row.changes + "Order History 4|-|"
                   + (row.selected.size() > 1 ? "Pause Selected... 25101|Resume Selected... 25102|" : "")
                   + "Orders of a Day... 25103|",
               26000, !row.selected.empty());
    }
    SendMessageA(GetDlgItem(dialog, IDC_BOOK_TABS), TCM_SETCURFOCUS, 1, 0);
    EXPECT_TRUE(IsWindowVisible(cancelled));
    EXPECT_FALSE(IsWindowVisible(registered));
    expect(cancelled, "Order History 4|-|Orders of a Day... 25103|", 26100, false);
}

TEST_F(BookTest, TakesItsControlsLastAndStopsItsStreams) {
    {
        const HiddenExport hidden("GetKeloRxControl");
        Open();
        // Once by each window that takes controls.
        std::string texts = boxes.Texts();
        texts.erase(0, texts.find("Sending"));
        EXPECT_EQ(texts, "Sending Request add_sip_orders Failed\nRequest Failure\n"
                         "Subscription  is failed ,error code : 0\nRequest Failure\nRequest Failure|");
        plugin->Exit();
    }
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

TEST_F(BookTest, EachMissingOptionalExportTakesOnlyWhatNeedsItAway) {
    struct Row {
        const char* name;
        const char* changes; // "from>to"
    };
    const Row rows[] = {{"register_hotkey", ""},
                        {"pu_get_client_name", "First Client>"},
                        {"pu_get_uuid", " orderId=UUID-1>"},
                        {"pu_get_client_overview_status", ""},
                        {"pu_get_all_mappedAccount_ids", ""},
                        {"pu_add_to_tabbed_log", "Sending request to cancel SIP1>"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const HiddenExport hidden(row.name);
        host.log.clear();
        Open();
        Queried("SIP1");
        Select(registered, {"SIP1"});
        const WhenShown reason(ReasonDialog, [](HWND shown) { probe::Press(shown, IDOK); });
        Command(book::kCancel);
        std::string expected = "First Client;cancel_sip_order registrationNumber=SIP1 "
                               "echoedNumber=SIP1 orderId=UUID-1 userText=  "
                               "cancelledBy=LOGIN orderSource= ;Sending request to cancel SIP1";
        if (const std::string change = row.changes; !change.empty()) {
            const auto bar = change.find('>');
            expected.replace(expected.find(change.substr(0, bar)), bar, change.substr(bar + 1));
        }
        EXPECT_EQ(probe::Cell(registered, 0, 16) + ";" + host.LastRequest() + ";"
                      + (host.log.empty() ? "" : host.log.back()),
                  expected);
        plugin->Exit();
        boxes.Texts();
    }
}

} // namespace
