// The report of a day: what its rows say of a record's text, what they come to, and how long files are read.
#include "plugin/dayreport/DayReport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace planfold::test {
namespace {

constexpr LocalDateTime kDay{2027, 12, 31, 14, 0, 0};
constexpr char kHeading[] =
    "time,event,order_id,registration,user,source,line,client,exchange,trading_symbol,side,"
    "invest_type,value,frequency,start,periods,text\n";

struct Files final : RecordFiles {
    bool HasFolder() const override { return true; }
    std::optional<std::string> Read(const LocalDateTime& day) override {
        return days.try_emplace(day, "").first->second;
    }
    bool Append(const LocalDateTime&, std::string_view, bool) override { return false; }
    std::map<LocalDateTime, std::optional<std::string>> days{{kDay.Midnight(), ""}, {{2028, 1, 1}, ""}};
};

struct View final : DayReportView {
    void ShowRows(bool anew) override { shown += anew ? "anew " : "more "; }
    void ShowRun() override { shown += "run "; }
    std::int64_t Milliseconds() const override { return now += 200; }
    std::string Shown() { return std::exchange(shown, {}); }
    std::string shown;
    mutable std::int64_t now = 0;
};

class DayReportTest : public testing::Test {
protected:
    void Show(const std::string& lines, const std::string& nextDay = {}) {
        files.days[kDay.Midnight()] = kHeading + lines;
        files.days[{2028, 1, 1}] = nextDay;
        report.Show(kDay);
        while (report.IsUnderWay())
            report.Continue();
    }
    // The row's cells that are not empty.
    std::string Row(std::size_t row) const {
        std::string text;
        for (const DayColumn& column : kDayColumns)
            if (const auto cell = report.Text(row, column.field); !cell.empty())
                text.append(text.empty() ? "" : "|").append(cell);
        return text;
    }
    std::string Status() const {
        std::string text;
        for (const std::string& part : report.Status())
            text += part + "|";
        return text;
    }

    Files files;
    View view;
    DayReport report{files, view};
};

const std::string kBuy = ",D7,a.csv,3,C1,nse_cm,ALPHATEX-EQ,B,value,150050,monthly,05-Jan-2028,12,";
const std::string kSell = ",D7,form,,C2,bse_cm,ASTER,S,qty,30,daily,06-Jan-2028,5,";

TEST_F(DayReportTest, SaysWhatBecameOfEachOrder) {
    const std::string asked = "|New order|C1|NSE|ALPHATEX-EQ|SIP|1500.50|monthly|05-Jan-2028|12|a.csv|3|D7|";
    const struct {
        std::string events; // the lines after the first
        std::string nextDay;
        std::string row;
        KorvexRowLook look;
    } cases[] = {
        {"", "", "t1|Sent" + asked + "o1", kKorvexAttention},
        {"t2,refused,o1," + kBuy + "\"Refused: no, (code 7).\"\n", "",
         "t1|Refused" + asked
             + "t2|"
               "Refused: no, (code 7).|o1",
         kKorvexBad},
        {"t2,absent,o1," + kBuy + "\nt3,sending,o1," + kBuy + "add_sip_orders\nt4,registered,o1,S9" + kBuy
             + "fine\n",
         "",
         "t1|Registered|S9|New "
         "order|C1|NSE|ALPHATEX-EQ|SIP|1500.50|monthly|05-Jan-2028|12|a.csv|3|D7|t4|fine|o1",
         kKorvexGood},
        {"", "n1,found,o1,S9" + kBuy + "\n", "t1|Found in book|S9" + asked + "n1|o1", kKorvexGood},
        {"",
         "n0,absent,o1," + kBuy + "\nn1,sending,o1," + kBuy + "add_sip_orders\nn2,refused,o1," + kBuy + "no\n",
         "t1|Refused" + asked + "n2|no|o1", kKorvexBad},
        // What the next day sent is no row of this one.
        {"", "n1,sending,o2," + kBuy + "add_sip_orders\nn2,refused,o2," + kBuy + "no\n",
         "t1|Sent" + asked + "o1", kKorvexAttention},
    };
    for (const auto& each : cases) {
        Show("t1,sending,o1," + kBuy + "add_sip_orders\n" + each.events,
             each.nextDay.empty() ? "" : kHeading + each.nextDay);
        ASSERT_EQ(report.RowCount(), 1u) << each.events;
        EXPECT_EQ(Row(0), each.row);
        EXPECT_EQ(report.Look(0), each.look) << each.row;
    }
    const std::string pause = ",,S9,D7,form,,,,,,,,,,,pause_sip_order";
    Show("t0,sending,o1," + kBuy + "add_sip_orders\nt0,absent,o1," + kBuy + "\nt1,sending" + pause
         + "\nt2,paused" + pause + ": done\nt2,sending,o1," + kBuy + "add_sip_orders\nt3,sending,o2," + kSell
         + "add_sip_orders\nt3,not_sent,o2," + kSell + "\n");
    EXPECT_EQ(Row(1), "t1|Paused|S9|Pause|form|D7|t2|done");
    EXPECT_EQ(Row(2), "t3|Not sent|New order|C2|BSE|ASTER|SWP|30|daily|06-Jan-2028|5|form|D7|t3|o2");
}

TEST_F(DayReportTest, SaysWhatItComesTo) {
    const auto order = [](const char* id, const char* event, const std::string& asked) {
        return "t,sending," + std::string(id) + "," + asked + "add_sip_orders\nt," + event + "," + id + ",S"
               + id + asked + "x\n";
    };
    const std::string change = "t,sending,,S1,D7,form,,,,,,value,200000,,,9,modify_sip_order\n";
    const struct {
        std::string lines;
        const char* status;
    } cases[] = {
        {"", "|||"},
        {"torn\nt,unknown,o1\n", "||2 lines could not be read|"},
        {order("1", "registered", kBuy) + order("2", "found", kBuy) + order("3", "refused", kBuy),
         "Sent 3: 2 registered, 1 refused, 0 in doubt|Registered: SIP Rs 3,001.00, SWP Rs 0.00||"},
        {order("1", "absent", kBuy) + order("2", "in_doubt", kBuy) + order("3", "not_sent", kBuy)
             + "t,sending,4," + kBuy + "\n" + order("5", "registered", kSell) + "torn",
         "Sent 4: 1 registered, 0 refused, 1 in doubt, 1 waiting, 1 absent|"
         "Registered: SIP Rs 0.00, SWP Rs 0.00 and 30 shares|1 line could not be read; Not sent 1|"},
        {change + "t,modified,,S1,,,,,,,,,,,,,modify_sip_order: fine\n" + change,
         "Sent 0: 0 registered, 0 refused, 0 in doubt|Registered: SIP Rs 0.00, SWP Rs 0.00|"
         "Changes 2: 1 done, 1 waiting|"},
    };
    for (const auto& each : cases) {
        Show(each.lines);
        EXPECT_EQ(Status(), each.status) << each.lines;
    }
}

TEST_F(DayReportTest, SaysWhyThereIsNothing) {
    report.Show(kDay);
    EXPECT_EQ(report.Notice(), "No orders were sent on 31-Dec-2027.");
    files.days[kDay.Midnight()] = std::nullopt;
    report.Show(kDay);
    EXPECT_EQ(report.Notice(), "The order record of 31-Dec-2027 cannot be read.");
    EXPECT_EQ(report.Day(1), (LocalDateTime{2028, 1, 1})) << report.Day(-1).day;
    EXPECT_EQ(report.Day(-31), (LocalDateTime{2027, 11, 30}));
}

// The same day keeps its rows until it is read; another day's are gone at once, so that none stands under a
// date that is not its own.
TEST_F(DayReportTest, ReadsALongFileInPortionsAndStopsWhenAsked) {
    files.days[{2028, 1, 1}] = "t,sending,o1," + kBuy + "add_sip_orders\n";
    report.Show({2028, 1, 1});
    EXPECT_EQ(report.RowCount(), 1u);
    view.Shown();
    std::string lines;
    for (int i = 0; i < 5000; ++i)
        lines += "t,sending,o" + std::to_string(i) + "," + kBuy + "add_sip_orders\n";
    files.days[kDay.Midnight()] = lines;
    report.Show(kDay);
    EXPECT_EQ(view.Shown(), "anew run ");
    EXPECT_TRUE(report.IsUnderWay());
    EXPECT_EQ(report.RowCount(), 0u);
    EXPECT_EQ(report.Notice(), "") << "nobody knows yet";
    EXPECT_EQ(report.Progress(), "Reading the orders of 31-Dec-2027: 3000 lines");
    EXPECT_EQ(report.Done() * 10 / report.Total(), 5u);
    while (report.IsUnderWay())
        report.Continue();
    EXPECT_EQ(view.Shown(), "run anew ");
    EXPECT_EQ(report.RowCount(), 5000u);
    EXPECT_EQ(report.Text(4999, DayField::orderId), "o4999");

    report.Show(kDay);
    EXPECT_EQ(view.Shown(), "run ");
    EXPECT_EQ(report.RowCount(), 5000u);
    report.Stop();
    EXPECT_EQ(view.Shown(), "run anew ") << "there are fewer now";
    EXPECT_EQ(report.Status()[2], "reading was stopped");
    report.Show(kDay);
    report.Forget();
    report.Continue();
    EXPECT_EQ(report.RowCount(), 0u);
    Show("t,sending,o1," + kBuy + "add_sip_orders\n");
    view.Shown();
    report.Show(kDay);
    EXPECT_EQ(view.Shown(), "run more ");
}

} // namespace
} // namespace planfold::test
