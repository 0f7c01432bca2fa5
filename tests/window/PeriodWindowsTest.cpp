// The windows of a period over the book: where they are opened, their keys, and what they leave behind.
#include "tests/window/BookWindowTest.h"

namespace {

constexpr int kUpcomingRuns = 25105, kRunsOfPeriod = 25106;

class PeriodWindows : public BookWindowTest {
protected:
    static HWND Upcoming() { return probe::FindDialog("Upcoming Runs"); }
    static HWND Runs() { return probe::FindDialog("Runs of a Period"); }
    static std::string DateText(int daysFromNow) {
        constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
        const SYSTEMTIME day = DaysFromNow(daysFromNow);
        char text[32];
        std::snprintf(text, sizeof text, "%02d-%s-%04d", day.wDay, months[day.wMonth - 1], day.wYear);
        return text;
    }
    // A daily plan that began five days ago and goes on tomorrow.
    void Plan(const std::string& number, const char* client) {
        host.AnswerBook("echoedRequest=om_get_sip_orders queriedRow=1 sipStatus=active investType=value side=B "
                        "amountOrQuantity=150000 frequency=daily registrationNumber="
                        + number + " account=" + client + " startDate=" + DateText(-5)
                        + " nextExecutionDate=" + DateText(1) + " endDate=" + DateText(200));
    }
    // The clients with the marks of their plans, and the row with the focus in brackets.
    static std::string Listed(HWND list) {
        std::string text;
        const int focused = Next(list, LVNI_FOCUSED);
        for (int row = 0; row < Rows(list); ++row) {
            const std::string plans = probe::Cell(list, row, 2), mark = plans.substr(0, plans[0] < 'A');
            const std::string cells = mark + probe::Cell(list, row, 0);
            text += row == focused ? "[" + cells + "] " : cells + " ";
        }
        return text;
    }
};

TEST_F(PeriodWindows, AreOpenedOnceByMenuAndKeyAndGoAtTheExit) {
    Open();
    const struct {
        const char key;
        int command;
        HWND (*window)();
        int resetColumns;
    } rows[] = {{'U', kUpcomingRuns, Upcoming, 26511}, {'R', kRunsOfPeriod, Runs, 26611}};
    for (const auto& row : rows) {
        SetFocus(registered);
        Key(static_cast<WPARAM>(row.key));
        EXPECT_EQ(row.window(), nullptr) << "a letter finds a row";
        Key(static_cast<WPARAM>(row.key), 0x80);
        const HWND window = row.window();
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(GetFocus(), GetDlgItem(window, IDC_RUNS_LIST));
        EXPECT_TRUE(IsWindowVisible(GetDlgItem(window, IDC_RUNS_NOTICE)));
        Command(row.command);
        EXPECT_EQ(row.window(), window);
        const SIZE before = probe::SizeOf(window), list = probe::SizeOf(GetDlgItem(window, IDC_RUNS_LIST));
        SetWindowPos(window, nullptr, 0, 0, before.cx, before.cy + 100, SWP_NOZORDER | SWP_NOMOVE);
        EXPECT_GT(probe::SizeOf(GetDlgItem(window, IDC_RUNS_LIST)).cy, list.cy + 50);
        Key(VK_ESCAPE);
        EXPECT_EQ(row.window(), nullptr);
        Command(row.command);
        EXPECT_EQ(probe::SizeOf(row.window()).cy, before.cy + 100) << "as it was left";
        SendMessageA(row.window(), WM_COMMAND, static_cast<WPARAM>(row.resetColumns), 0);
        EXPECT_EQ(probe::SizeOf(row.window()).cy, before.cy);
    }
    plugin->Exit();
    EXPECT_EQ(Upcoming(), nullptr);
    EXPECT_EQ(Runs(), nullptr);
}

TEST_F(PeriodWindows, ATreeOfClientsIsWalkedByKeys) {
    Open();
    Plan("SIP1", "A");
    Plan("SIP2", "B");
    Plan("SIP3", "A");
    Command(kUpcomingRuns);
    const HWND list = GetDlgItem(Upcoming(), IDC_RUNS_LIST);
    const struct {
        WPARAM key;
        const char* listed;
    } steps[] = {
        {VK_HOME, "[+A] +B "},       {VK_RIGHT, "[-A] A A +B "}, {VK_RIGHT, "[-A] A A +B "},
        {VK_DOWN, "-A [A] A +B "},   {VK_LEFT, "[-A] A A +B "},  {VK_LEFT, "[+A] +B "},
        {VK_ADD, "[-A] A A +B "},    {VK_DOWN, "-A [A] A +B "},  {VK_SUBTRACT, "[+A] +B "},
        {VK_RETURN, "[-A] A A +B "}, {VK_F5, "[-A] A A +B "},
    };
    for (const auto& step : steps) {
        Key(step.key);
        EXPECT_EQ(Listed(list), step.listed) << step.key;
    }
    Key(VK_DOWN);
    Key(VK_RETURN);
    EXPECT_EQ(host.LastRequest(), "qry_eq_sip_orders registrationNumber=SIP1");
    EXPECT_TRUE(MenuOf(list).starts_with("Expand All 25301|Collapse All 25302|Order History\tEnter 25303|-|"));
    // What a font makes of it.
    for (const int points : {6, 28, 0}) {
        host.fontVariation = points;
        plugin->ApplyFont();
        EXPECT_EQ(Listed(list), "-A [A] A +B ");
    }
}

TEST_F(PeriodWindows, TheRunsOfAPeriodAreAskedForAndGoOnToTheHistory) {
    Open();
    Plan("SIP1", "A");
    Plan("SIP2", "B");
    Command(kRunsOfPeriod);
    const HWND runs = Runs(), list = GetDlgItem(runs, IDC_RUNS_LIST);
    const auto choose = [&](int choice) {
        SendMessageA(GetDlgItem(runs, IDC_RUNS_PERIOD), CB_SETCURSEL, static_cast<WPARAM>(choice), 0);
        SendMessageA(runs, WM_COMMAND, MAKEWPARAM(IDC_RUNS_PERIOD, CBN_SELCHANGE), 0);
    };
    choose(2); // the last seven days
    EXPECT_NE(Progress(), nullptr);
    SetForegroundWindow(runs); // as a host may
    Command(kRunsOfPeriod);
    EXPECT_EQ(GetActiveWindow(), Progress()) << "what has to be done with first";
    SetForegroundWindow(runs);
    const auto answer = [&](const std::string& number, const char* status) {
        host.AnswerSender("echoedRequest=qry_eq_sip_orders orderNumber=1 quantity=10 placementTime="
                          + DateText(-1) + "%s10:15 registrationNumber=" + number + status);
        host.AnswerSender("echoedRequest=qry_eq_sip_orders errorCode=");
    };
    answer("SIP1", " account=A sipStatus=complete tradedQuantity=10");
    answer("SIP2", " account=B sipStatus=rejected userText=Margin");
    SendMessageA(Progress(), WM_TIMER, 1, 0);
    EXPECT_EQ(Progress(), nullptr);
    EXPECT_EQ(GetFocus(), list) << "where it was";
    EXPECT_TRUE(probe::PumpUntil([&] { return Rows(list) == 2; }));
    EXPECT_EQ(probe::Cell(list, 1, 11), "Margin");
    SendMessageA(GetDlgItem(runs, IDC_RUNS_FAILED), BM_CLICK, 0, 0);
    EXPECT_EQ(Rows(list), 1);
    const std::size_t asked = host.requests.size();
    SetFocus(list);
    Key(VK_RETURN);
    EXPECT_EQ(host.LastRequest(), "qry_eq_sip_orders registrationNumber=SIP2");
    Close(runs);
    Command(kRunsOfPeriod);
    EXPECT_EQ(host.requests.size(), asked + 1) << "kept for the day";
}

} // namespace
