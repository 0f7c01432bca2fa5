// The report of a day: what its rows say of a record's text, what they come to, and how long files are read.
#include "plugin/dayreport/DayReport.h"

#include <gtest/gtest.h>

#include <map>

namespace planfold::test {
namespace {

constexpr LocalDateTime kDay{2027, 12, 31}, kNextDay{2028, 1, 1};
const std::string kSending = "t,sending,", kAdd = "add_sip_orders\n";
const std::string kHeading =
    "time,event,order_id,registration,user,source,line,client,exchange,trading_symbol,side,"
    "invest_type,value,frequency,start,periods,text\n";
const std::string kBuy = ",D7,a.csv,3,C1,nse_cm,ALPHATEX-EQ,B,value,150050,monthly,05-Jan-2028,12,";
const std::string kSell = ",D7,form,,C2,bse_cm,ASTER,S,qty,30,daily,06-Jan-2028,5,";

class DayReportTest : public testing::Test, protected RecordFiles, protected DayReportView {
protected:
    bool HasFolder() const override { return true; }
    std::optional<std::string> Read(const LocalDateTime& day) override {
        return files.try_emplace(day, "").first->second;
    }
    bool Append(const LocalDateTime&, std::string_view, bool, std::size_t&) override { return false; }
    void ShowRows(bool anew) override { shown += anew ? "anew " : "more "; }
    void ShowRun() override { shown += "run "; }
    std::int64_t Milliseconds() const override { return now += 200; }

    std::string Shown() { return std::exchange(shown, {}); }
    void Show(const std::string& lines, const std::string& nextDay = {}) {
        files[kDay] = kHeading + lines;
        files[kNextDay] = nextDay;
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

    std::map<LocalDateTime, std::optional<std::string>> files;
    std::string shown;
    mutable std::int64_t now = 0;
    DayReport report{*this, *this};
};

TEST_F(DayReportTest, SaysWhatBecameOfEachOrder) {
    const std::string asked = "|New order|C1|NSE|ALPHATEX-EQ|SIP|1500.50|monthly|05-Jan-2028|12|a.csv|3|D7|";
    const struct {
        std::string events, nextDay; // the lines after the first
        std::string state, answer;   // around what was asked for
        KorvexRowLook look;
    } cases[] = {
        {"", "", "Sent", "", kKorvexAttention},
        {"t2,refused,o1," + kBuy + "\"no, (7)\"\n", "", "Refused", "t2|no, (7)|", kKorvexBad},
        {"t2,absent,o1," + kBuy + "\nt3,sending,o1," + kBuy + kAdd + "t4,registered,o1,S9" + kBuy + "fine\n",
         "", "Registered|S9", "t4|fine|", kKorvexGood},
        {"", "n1,found,o1,S9" + kBuy + "\n", "Found in book|S9", "n1|", kKorvexGood},
        {"", "n0,absent,o1," + kBuy + "\nn1,sending,o1," + kBuy + kAdd + "n2,refused,o1," + kBuy + "no\n",
         "Refused", "n2|no|", kKorvexBad},
        // What the next day sent is no row of this one.
        {"", kSending + "o2," + kBuy + kAdd + "n2,refused,o2," + kBuy + "no\n", "Sent", "", kKorvexAttention},
    };
    for (const auto& each : cases) {
        Show("t1,sending,o1," + kBuy + kAdd + each.events, each.nextDay);
        ASSERT_EQ(report.RowCount(), 1u) << each.events;
        EXPECT_EQ(Row(0), "t1|" + each.state + asked + each.answer + "o1");
        EXPECT_EQ(report.Look(0), each.look) << each.state;
    }
    const std::string pause = ",,S9,D7,form,,,,,,,,,,,pause_sip_order";
    Show(kSending + "o1," + kBuy + kAdd + "t0,absent,o1," + kBuy + "\nt1,sending" + pause + "\nt2,paused"
         + pause + ": done\nt2,sending,o1," + kBuy + kAdd + "t3,sending,o2," + kSell + kAdd + "t3,not_sent,o2,"
         + kSell + "\n");
    EXPECT_EQ(Row(1), "t1|Paused|S9|Pause|form|D7|t2|done");
    EXPECT_EQ(Row(2), "t3|Not sent|New order|C2|BSE|ASTER|SWP|30|daily|06-Jan-2028|5|form|D7|t3|o2");
}

TEST_F(DayReportTest, SaysWhatItComesTo) {
    const auto order = [](const std::string& id, const char* event, const std::string& asked) {
        return kSending + id + "," + asked + kAdd + "t," + event + "," + id + ",S" + id + asked + "x\n";
    };
    const std::string change = "t,sending,,S1,D7,form,,,,,,value,200000,,,9,modify_sip_order\n";
    const std::string nothing = "Registered: SIP Rs 0.00, SWP Rs 0.00|";
    const struct {
        std::string lines, status;
    } cases[] = {
        {"", "||"},
        {"torn\nt,unknown,o1\n", "||2 lines could not be read"},
        {order("1", "registered", kBuy) + order("2", "found", kBuy) + order("3", "refused", kBuy),
         "Sent 3: 2 registered, 1 refused, 0 in doubt|Registered: SIP Rs 3,001.00, SWP Rs 0.00|"},
        {order("1", "absent", kBuy) + order("2", "in_doubt", kBuy) + order("3", "not_sent", kBuy) + kSending
             + "4," + kBuy + "\n" + order("5", "registered", kSell) + "torn",
         "Sent 4: 1 registered, 0 refused, 1 in doubt, 1 waiting, 1 not in the book|"
         "Registered: SIP Rs 0.00, SWP Rs 0.00 and 30 shares|1 line could not be read; Not sent 1"},
        {change + "t,modified,,S1,,,,,,,,,,,,,modify_sip_order: fine\n" + change,
         "Sent 0: 0 registered, 0 refused, 0 in doubt|" + nothing + "Changes 2: 1 done, 1 waiting"},
    };
    for (const auto& each : cases) {
        Show(each.lines);
        const auto parts = report.Status();
        EXPECT_EQ(parts[0] + "|" + parts[1] + "|" + parts[2], each.status) << each.lines;
    }
    Show("");
    EXPECT_EQ(report.Notice(), "No orders were sent on 31-Dec-2027.");
    files[kDay] = std::nullopt;
    report.Show(kDay);
    EXPECT_EQ(report.Notice(), "The order record of 31-Dec-2027 cannot be read.");
    EXPECT_TRUE(report.Day(1) == kNextDay && report.Day(-31) == (LocalDateTime{2027, 11, 30}));
}

// The rows of a day that is read again stay meanwhile; another day's are gone at once, so that none stands
// under a date that is not its own.
TEST_F(DayReportTest, ReadsALongFileInPortionsAndStopsWhenAsked) {
    files[kNextDay] = kSending + "o1," + kBuy + kAdd;
    report.Show(kNextDay);
    EXPECT_EQ(report.RowCount(), 1u);
    EXPECT_EQ(Shown(), "run anew ");
    report.Show(kNextDay);
    EXPECT_EQ(Shown(), "run more ");
    std::string lines;
    for (int i = 0; i < 5000; ++i)
        lines += kSending + std::to_string(i) + "," + kBuy + kAdd;
    files[kDay] = lines;
    report.Show(kDay);
    EXPECT_EQ(Shown(), "anew run ");
    EXPECT_TRUE(report.IsUnderWay() && report.RowCount() == 0 && report.Notice().empty());
    EXPECT_EQ(report.Progress(), "Reading the orders of 31-Dec-2027: 3000 lines");
    EXPECT_EQ(report.Done() * 10 / report.Total(), 5u);
    while (report.IsUnderWay())
        report.Continue();
    EXPECT_EQ(Shown(), "run anew ");
    EXPECT_EQ(report.Text(4999, DayField::orderId), "4999");
    report.Show(kDay);
    EXPECT_EQ(report.RowCount(), 5000u);
    Shown();
    report.Stop();
    EXPECT_EQ(Shown(), "run anew ") << "there are fewer now";
    EXPECT_EQ(report.Status()[2], "reading was stopped");
    report.Show(kDay);
    report.Forget();
    report.Continue();
    EXPECT_EQ(report.RowCount(), 0u);
}

} // namespace
} // namespace planfold::test
