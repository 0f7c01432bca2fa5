// What the two windows of a period decide without being windows: the rows of what is to run, and which plans
// are asked for what has run.
#include "plugin/morning/PeriodRuns.h"
#include "plugin/morning/UpcomingRuns.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

#include <sstream>

namespace planfold::test {
namespace {

const Day kMonday = *ReadServerDay("22-Mar-2027");
using std::chrono::days;

// A record of the book: "number client frequency start next end status side value", a hyphen for nothing; a
// value in rupees has a point.
void Enter(OrderCache& book, const std::string& text) {
    constexpr OrderField fields[] = {
        OrderField::account, OrderField::frequency, OrderField::startDate, OrderField::nextExecutionDate,
        OrderField::endDate, OrderField::sipStatus, OrderField::side};
    std::istringstream words(text);
    std::string number, word, texts[std::size(fields)];
    words >> number;
    OrderChanges changes;
    for (std::size_t i = 0; i < std::size(fields); ++i)
        if (words >> texts[i]; texts[i] != "-") changes[fields[i]] = texts[i];
    words >> word;
    const bool byValue = word.find('.') != word.npos;
    changes[byValue ? OrderField::amount : OrderField::quantity] = word;
    changes[OrderField::investType] = byValue ? "value" : "qty";
    changes[OrderField::cancelledDate] = texts[4];
    const RecordId known = book.Find(number);
    book[known == kNoRecord ? book.Add(number) : known].Apply(changes);
}

class UpcomingWindow : public testing::Test, protected Stage, protected UpcomingView {
protected:
    void ShowRows() override { shown += "rows "; }
    void ShowRun() override { shown += "run "; }
    std::int64_t Milliseconds() const override { return now += 200; }

    std::string Listed() const {
        std::string text;
        for (const std::uint32_t row : runs.Rows()) {
            for (const RunColumn& column : kRunColumns)
                if (const auto cell = runs.Text(row, column.field); !cell.empty())
                    text.append(text.empty() || text.back() == '\n' ? "" : "|").append(cell);
            text += "\n";
        }
        return text;
    }
    std::string Told() const {
        const auto parts = runs.Status();
        return parts[0] + "/" + parts[1] + "/" + parts[2] + "/" + runs.Notice();
    }
    void Show(int length) {
        runs.Show({kMonday, kMonday + days(length - 1)}, kMonday);
        while (runs.IsUnderWay())
            runs.Continue();
    }

    OrderCache book;
    std::string shown;
    mutable std::int64_t now = 0;
    UpcomingRuns runs{session, book, *this};
};

TEST_F(UpcomingWindow, ListsClientsWithTheirPlansAndWhatTheyNeed) {
    Show(7);
    EXPECT_EQ(Told(), "///The registration book holds no plans.");
    Enter(book, "S1 B monthly 27-Feb-2027 29-Mar-2027 27-Feb-2028 active SIP 1500.50");
    Show(7);
    EXPECT_EQ(Told(), "///No plan runs from 22-Mar-2027 to 28-Mar-2027.");
    // Held up since Friday, over its end.
    Enter(book, "S2 A weekly 05-Mar-2027 19-Mar-2027 26-Mar-2027 active SWP 30");
    Enter(book, "S3 A daily 20-Mar-2027 22-Mar-2027 31-Mar-2027 active SIP 4");
    Enter(book, "S4 A monthly 22-Mar-2027 22-Mar-2027 22-Jun-2027 active SWP 2000.00");
    Enter(book, "S5 A monthly 22-Mar-2027 22-Mar-2027 22-Jun-2027 Paused SIP 2000.00");
    Enter(book, "S6 A monthly 22-Mar-2027 22-Mar-2027 22-Jun-2027 cancelled SIP 2000.00");
    Enter(book, "S7 A fortnightly 22-Mar-2027 22-Mar-2027 22-Jun-2027 active SIP 2000.00");
    Show(8);
    const std::string first = "3 plans|9|2000.00|24|60|2 moved\n", last = "B|+ 1 plan|1|1500.50|1 moved\n";
    EXPECT_EQ(Listed(), "A|+ " + first + last);
    EXPECT_TRUE(runs.SetOpen(0, true));
    EXPECT_EQ(Listed(), "A|- " + first
                            + "A|S2|2|60|19-Mar-2027|22-Mar-2027|weekly|Ends 26-Mar\n"
                              "A|S3|6|24|20-Mar-2027|22-Mar-2027|daily|2 moved: due 20-Mar, expected 22-Mar\n"
                              "A|S4|1|2000.00|22-Mar-2027|22-Mar-2027|monthly\n"
                            + last);
    EXPECT_EQ(Told(),
              "2 clients, 4 plans, 10 runs/To pay Rs 1,500.50 and for 24 shares; to receive Rs 2,000.00; "
              "to deliver 60 shares/3 runs due on closed days are moved; 1 paused plan does not run; the "
              "dates of 1 plan cannot be read/");
    EXPECT_EQ(runs.Chart().Summary(),
              "6 days from 22-Mar-2027 to 29-Mar-2027. To pay: Rs 1,500.50. To receive: "
              "Rs 2,000.00.");
    EXPECT_EQ(runs.Chart().Bars(2)[1].values[0], 1500.5);
    // Without what colleagues have registered.
    OrderChanges mine;
    mine[OrderField::loginId] = session.identity.loginId;
    book[book.Find("S1")].Apply(mine);
    runs.Show({kMonday, kMonday + days(7)}, kMonday, true);
    EXPECT_EQ(Listed(), last);
    // What is open stays so; of a plan it is its client that is closed.
    Show(1);
    runs.SetOpen(0, true);
    const std::uint32_t plan = runs.Rows()[1];
    EXPECT_EQ(runs.Registration(plan), "S2");
    EXPECT_EQ(runs.ClientRow(plan), 0u);
    EXPECT_FALSE(runs.SetOpen(plan, true));
    EXPECT_TRUE(runs.SetOpen(plan, false));
    EXPECT_EQ(runs.Rows().size(), 1u);
    // Numbers of a book that was filled anew are others' records.
    book.Clear();
    for (const char* number : {"T1 ", "T2 ", "T3 "})
        Enter(book, number + std::string("A weekly 22-Mar-2027 22-Mar-2027 22-Mar-2028 active SIP 1"));
    EXPECT_EQ(runs.Registration(plan), "");
    EXPECT_EQ(runs.Text(plan, RunField::frequency), "");
}

TEST_F(UpcomingWindow, TakesALongBookInPortionsAndSeesItGrow) {
    for (int i = 0; i < 3000; ++i)
        Enter(book, "S" + std::to_string(i) + " A weekly 22-Mar-2027 22-Mar-2027 22-Mar-2028 active SIP 1");
    runs.Show({kMonday, kMonday}, kMonday);
    EXPECT_EQ(shown, "run ");
    EXPECT_EQ(runs.Progress(), "Calculating the runs: 1000 of 3000 plans");
    runs.Continue();
    runs.Stop();
    EXPECT_TRUE(Told().starts_with("1 client, 1500 plans, 1500 runs/")) << Told();
    EXPECT_NE(Told().find("stopped before the last plan"), std::string::npos);
    Show(1);
    EXPECT_FALSE(runs.IsOutdated());
    Enter(book, "T A weekly 22-Mar-2027 22-Mar-2027 22-Mar-2028 active SIP 1");
    EXPECT_FALSE(runs.IsOutdated()); // it may grow on
    EXPECT_TRUE(runs.IsOutdated());
}

class RunsWindow : public testing::Test, protected Stage, protected PeriodRunsView {
protected:
    RunsWindow() {
        for (int i = 0; i < 6; ++i)
            Enter(book, std::string(1, static_cast<char>('A' + i))
                            + " C monthly 19-Feb-2027 19-Apr-2027 19-Feb-2028 active SIP 30");
    }
    void ShowRows() override { shown += "rows "; }
    void ShowRun() override { shown += "run "; }
    std::int64_t Milliseconds() const override { return now; }

    // "A" an order of A, "A!" a rejected one, "." the end of an answer, "!" a refusal, "+30" that time goes on.
    void Play(const std::string& script) {
        std::istringstream words(script);
        for (std::string word; words >> word;) {
            if (word[0] == '+') {
                now += 1000 * std::stoi(word.substr(1));
                runs.Continue();
                continue;
            }
            const bool rejected = word.size() > 1;
            Fields fields = word == "." ? Fields("errorCode=")
                            : word == "!"
                                ? Fields("errorCode=7%s")
                                : Fields("account=C orderNumber=1 quantity=30 placementTime=19-Mar-2027%s09:15 "
                                         "registrationNumber="
                                         + word.substr(0, 1)
                                         + (rejected ? " sipStatus=rejected userText=Margin tradedQuantity=0"
                                                     : " sipStatus=complete tradedQuantity=30"));
            fields.push_back({tag::echoedRequest, {"qry_eq_sip_orders"}});
            const Received received(fields);
            runs.OnResponse(received.Message());
        }
    }
    std::string Listed() const {
        std::string text;
        for (std::size_t row = 0; row < runs.RowCount(); ++row)
            text.append(runs.Text(row, PastField::registration))
                .append(" ")
                .append(runs.Text(row, PastField::status)) += "|";
        const auto parts = runs.Status();
        return text + parts[0] + " " + parts[1] + "/" + parts[2] + "/" + runs.Notice();
    }
    void Show(const char* from, const char* to, bool anew = false) {
        runs.Show({*ReadServerDay(from), *ReadServerDay(to)}, kMonday, anew);
    }
    std::size_t Asked() const { return host.requests.size(); }

    OrderCache book;
    std::int64_t now = 0;
    std::string shown;
    PeriodRuns runs{session, book, *this, [this] { return &control; }};
};

TEST_F(RunsWindow, AsksFourAtATimeAndKeepsTheAnswersForTheDay) {
    Show("20-Mar-2027", "21-Mar-2027");
    EXPECT_EQ(Listed(), "0 runs of 0 plans//No runs are known from 20-Mar-2027 to 21-Mar-2027.");
    Show("18-Mar-2027", "19-Mar-2027");
    EXPECT_EQ(Asked(), 4u);
    EXPECT_EQ(runs.Progress(), "Asking for the runs of 6 plans: 0");
    EXPECT_TRUE(shown.ends_with("rows run ")) << shown;
    Play("A . B! .");
    EXPECT_EQ(Asked(), 6u);
    shown.clear();
    Play("C! . . E . F .");
    EXPECT_TRUE(shown.ends_with("run rows ")) << shown;
    EXPECT_EQ(Listed(),
              "A complete|B rejected|C rejected|E complete|F complete|5 runs: 3 filled, 2 failed of 6 plans//");
    runs.ShowFailedOnly(true);
    EXPECT_EQ(Listed(), "B rejected|C rejected|5 runs: 3 filled, 2 failed of 6 plans//");
    ASSERT_EQ(runs.Failed().size(), 2u);
    EXPECT_EQ(runs.Failed()[1].registration + runs.Failed()[1].reason, "CMargin");
    runs.Show({kMonday - days(4), kMonday - days(3)}, kMonday, false, true);
    EXPECT_EQ(Listed(), "0 runs of 0 plans//No runs are known from 18-Mar-2027 to 19-Mar-2027.");
    Show("01-Mar-2027", "20-Mar-2027");
    EXPECT_EQ(Asked(), 6u);
    Show("01-Mar-2027", "20-Mar-2027", true);
    EXPECT_EQ(Asked(), 10u);
    EXPECT_EQ(runs.RowCount(), 0u); // none of what is no longer kept
}

TEST_F(RunsWindow, EndsWithWhatIsThere) {
    const struct {
        const char *script, *listed;
    } rows[] = {
        {"A . +31",
         "A complete|1 run: 1 filled of 6 plans/no answer for 30 seconds: 5 of 6 plans without an answer/"},
        {"! B . +20 C . D . E . +20 F .",
         "B complete|C complete|D complete|E complete|F complete|5 runs: 5 filled "
         "of 6 plans/1 refused: 1 of 6 plans without an answer/"},
        // A row of a later one shows that the earlier answers are lost.
        {"C . D . E . F .",
         "C complete|D complete|E complete|F complete|4 runs: 4 filled of 6 plans/not all have "
         "answered: 2 of 6 plans without an answer/"},
    };
    for (const auto& row : rows) {
        Show("18-Mar-2027", "19-Mar-2027", true);
        Play(row.script);
        EXPECT_FALSE(runs.IsUnderWay());
        EXPECT_EQ(Listed(), row.listed) << row.script;
    }
    Show("18-Mar-2027", "19-Mar-2027", true);
    Play("A .");
    runs.Stop();
    EXPECT_EQ(Listed(), "A complete|1 run: 1 filled of 6 plans/stopped: 5 of 6 plans without an answer/");
    // What was under way comes yet, and is not asked for twice.
    const std::size_t before = Asked();
    Show("18-Mar-2027", "19-Mar-2027");
    Play("B . C . D . E . F .");
    EXPECT_EQ(
        Listed(),
        "A complete|B complete|C complete|D complete|E complete|F complete|6 runs: 6 filled of 6 plans//");
    EXPECT_EQ(Asked() - before, 1u);
    host.refuses = true;
    Show("18-Mar-2027", "19-Mar-2027", true);
    EXPECT_EQ(Listed(),
              "0 runs of 6 plans/the server could not be asked: Request Failure: 6 of 6 plans without an "
              "answer/No runs are known from 18-Mar-2027 to 19-Mar-2027.");
}

TEST_F(RunsWindow, ShowsWhatShouldHaveRunAndChoosesWhatCanHave) {
    book.Clear();
    Enter(book, "N C weekly 05-Mar-2027 19-Mar-2027 19-Mar-2028 active SIP 30");
    Enter(book, "P C weekly 05-Mar-2027 19-Mar-2027 19-Mar-2028 Paused SIP 30");
    Enter(book, "X C weekly 05-Mar-2027 19-Mar-2027 18-Mar-2027 cancelled SIP 30"); // on that day
    Enter(book, "Y C weekly 05-Mar-2027 19-Mar-2027 17-Mar-2027 cancelled SIP 30");
    Enter(book, "Z C weekly 20-Mar-2027 20-Mar-2027 19-Mar-2028 active SIP 30");
    Enter(book, "M C monthly 15-Jan-2027 15-Apr-2027 19-Mar-2028 active SIP 30");
    Show("18-Mar-2027", "19-Mar-2027");
    EXPECT_EQ(Asked(), 3u);
    Play(". . .");
    EXPECT_EQ(Listed(), "N not run|1 run: 1 failed of 3 plans//");
}

} // namespace
} // namespace planfold::test
