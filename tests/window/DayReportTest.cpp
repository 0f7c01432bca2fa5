// The window of a day's orders: where it is opened, what it shows of files in the user's folder, and its keys.
#include "tests/window/BookWindowTest.h"

#include <filesystem>
#include <fstream>

namespace {

constexpr int kDayReport = 25103;

class DayReportWindow : public BookWindowTest {
protected:
    static HWND Report() { return probe::FindDialog("Orders of a Day"); }
    std::filesystem::path FileOf(int daysFromNow) const {
        const SYSTEMTIME day = DaysFromNow(daysFromNow);
        char name[32];
        std::snprintf(name, sizeof name, "%04d-%02d-%02d.csv", day.wYear, day.wMonth, day.wDay);
        return std::filesystem::path(host.userDirectory) / "PlanfoldOrders" / name;
    }
    static std::string Order(const std::string& client) {
        return "t,sending,o" + client + ",,D7,form,," + client
               + ",nse_cm,ALPHA,B,value,150000,daily,05-Mar-2027,12,x\r\n";
    }
    static std::string Clients() {
        const HWND list = GetDlgItem(Report(), IDC_DAY_LIST);
        std::string text;
        for (int row = 0; row < Rows(list); ++row)
            text += probe::Cell(list, row, 4) + " ";
        return text;
    }
    static bool ShowsNotice() { return IsWindowVisible(GetDlgItem(Report(), IDC_DAY_NOTICE)); }
};

TEST_F(DayReportWindow, OpensOnceFromEachListWhereRecordsAreKept) {
    Open();
    Pick("SIP Basket Entry");
    const HWND basket = probe::FindDialog("Planfold Basket Order");
    Command(kDayReport);
    const HWND report = Report();
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(GetFocus(), GetDlgItem(report, IDC_DAY_LIST));
    EXPECT_TRUE(ShowsNotice());
    SetForegroundWindow(basket);
    SendMessageA(basket, WM_COMMAND, kDayReport, 0);
    EXPECT_EQ(Report(), report);
    EXPECT_EQ(GetForegroundWindow(), report);
    Key(VK_ESCAPE);
    EXPECT_EQ(Report(), nullptr);
    Command(kDayReport);
    plugin->Exit();
    EXPECT_EQ(Report(), nullptr);

    host.userDirectory.clear();
    Open();
    EXPECT_NE(MenuOf(registered).find("|(Orders of a Day... 25103)|"), std::string::npos);
    Command(kDayReport);
    EXPECT_EQ(Report(), nullptr);
}

TEST_F(DayReportWindow, ShowsEachDaysFileAsItIsNow) {
    std::filesystem::create_directory(std::filesystem::path(host.userDirectory) / "PlanfoldOrders");
    std::ofstream(FileOf(-1), std::ios::binary) << Order("C1") << "torn";
    // As another terminal has it open, in UTF-8.
    std::ofstream today(FileOf(0), std::ios::binary);
    today << Order("J\xC3\xBCrgen") << std::flush;
    Open();
    Command(kDayReport);
    const HWND report = Report(), list = GetDlgItem(report, IDC_DAY_LIST);
    const struct {
        const char* what;
        std::function<void()> happens;
        const char* clients;
    } steps[] = {
        {"today", [] {}, "J\xFCrgen "},
        {"another order", [&] { today << Order("C3") << std::flush; }, "J\xFCrgen "},
        {"F5", [&] { Key(VK_F5); }, "C3 J\xFCrgen "},
        {"the day before", [&] { Key(VK_PRIOR, 0x80); }, "C1 "},
        {"a page of the list", [&] { Key(VK_PRIOR); }, "C1 "},
        {"one without a file", [&] { Key(VK_PRIOR, 0x80); }, ""},
        {"Next", [&] { SendMessageA(report, WM_COMMAND, IDC_DAY_NEXT, 0); }, "C1 "},
        {"Today", [&] { SendMessageA(report, WM_COMMAND, IDC_DAY_TODAY, 0); }, "C3 J\xFCrgen "},
    };
    for (const auto& step : steps) {
        step.happens();
        EXPECT_EQ(Clients(), step.clients) << step.what;
        EXPECT_EQ(ShowsNotice(), !*step.clients) << step.what;
        EXPECT_EQ(GetFocus(), list) << step.what;
    }
    EXPECT_TRUE(MenuOf(list).starts_with("(Copy\tCtrl+C 26400)"));
}

} // namespace
