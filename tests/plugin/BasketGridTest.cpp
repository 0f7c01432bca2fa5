// Editing in the basket's list.
#include "tests/plugin/BasketGridStage.h"

#include <set>

namespace planfold::test {
namespace {

using Field = BasketField;

class BasketGridTest : public BasketGridStage {};

TEST_F(BasketGridTest, ACellTakesWhatALineOfAFileMaySay) {
    Load(Line("C1") + Line("C2", "1013", "qty"));
    const struct {
        std::size_t row; // 0 is by quantity, 1 by amount
        Field field;
        const char* typed;
        const char* refusal;
        const char* text;
    } cells[] = {
        {1, Field::amount, " 2500.5 ", "", "250050"},
        {1, Field::amount, "12abc", "Please enter valid amount.", "250050"},
        {1, Field::amount, "0", "Enter valid Amount", "250050"},
        {1, Field::amount, "-5", "Please enter valid amount.", "250050"},
        {1, Field::amount, "12345678.00", "cannot have more than 7 digits in rupees part of Amount", "250050"},
        {1, Field::quantity, "5", "The order is by amount.", "7"},
        {0, Field::quantity, "12", "", "12"},
        {0, Field::quantity, "1.5", "Enter valid Qty", "12"},
        {0, Field::amount, "5", "The order is by quantity.", "150000"},
        {1, Field::account, "C9", "", "C9"},
        {1, Field::account, " ", "Please select the ClientID", "C9"},
        {1, Field::account, "C,9", "Invalid Format", "C9"},
        {1, Field::frequency, "Weekly", "", "weekly"},
        {1, Field::frequency, "hourly", "InValid Frequency.", "weekly"},
        {1, Field::side, "swp", "", "S"},
        {1, Field::side, "X", "InValid Action Type.", "S"},
        {1, Field::startDateText, "6-Mar-27", "", "6/Mar/2027"},
        {1, Field::startDateText, "31/Jan/2027", "Invalid Date", "6/Mar/2027"},
        {1, Field::totalPeriod, "61", "Period Should be Between 1 and 60", "12"},
        {1, Field::product, "cnc", "", "CNC"},
        {1, Field::orderType, "limit", "InValid Order Type", "MKT"},
        {1, Field::symbol, "NOSUCH", "InValid Token", "ARBORTEX"},
    };
    for (const auto& cell : cells) {
        EXPECT_EQ(Edit(cell.row, cell.field, cell.typed), cell.refusal) << cell.typed;
        EXPECT_EQ(basket.Rows()[Row(cell.row)].Text(cell.field), cell.text) << cell.typed;
    }
}

TEST_F(BasketGridTest, FillingAndReplacingTellWhatTheyLeave) {
    Load(Line("C1", "1013", "qty") + Line("C2") + Line("C3") + Line("C4"));
    Edit(0, Field::amount, "2000");
    Select({0, 1, 2, 3});
    basket.Grid().FillDown(Field::amount);
    EXPECT_EQ(Rows(Field::amount), "200000 200000 200000 150000");
    EXPECT_EQ(Taken(view.boxes),
              Texts{"Rows filled: 2.\nRefused: 1, the first for \"The order is by quantity.\"\n"});
    basket.Undo();
    EXPECT_EQ(Rows(Field::amount), "200000 150000 150000 150000");

    view.list.selected.clear();
    const CellReplacement all{Field::account, "C", "CC"}, selected{Field::account, "C", "CC", false, true};
    const CellReplacement whole{Field::account, "C4", "C9", true}, part{Field::account, "C", "X", true};
    EXPECT_EQ(basket.Grid().MatchesText(all), "4 of 4 rows contain it.");
    view.list.hidden = 1;
    EXPECT_EQ(basket.Grid().MatchesText(all), "4 of 4 rows contain it, those that a filter hides among them.");
    Select({1, 2});
    EXPECT_EQ(basket.Grid().MatchesText(selected), "2 of 2 selected rows contain it.");
    basket.Grid().Replace(selected);
    EXPECT_EQ(Rows(Field::account), "C4 CC3 CC2 C1");
    basket.Grid().Replace(whole);
    EXPECT_EQ(Rows(Field::account), "C9 CC3 CC2 C1");
    EXPECT_EQ(basket.Grid().Matches(part), 0u);
    basket.Grid().Replace(part);
    basket.Undo();
    basket.Undo();
    EXPECT_EQ(Rows(Field::account), "C4 C3 C2 C1");

    // All that stands in a cell, none of what replaced it; a replacement of nothing changes nothing.
    Load(Line("CACC"));
    for (const CellReplacement& each : {all, {Field::account, "", "X"}, {Field::userText, "NA", "X"}})
        basket.Grid().Replace(each);
    EXPECT_EQ(Rows(Field::account) + Rows(Field::userText), "CCACCCCNA");
    EXPECT_TRUE(view.unsent.text.starts_with("CCACCCC,")) << "kept as it is now";
}

TEST_F(BasketGridTest, RowsOfASpreadsheetAreJudgedAsLines) {
    basket.Grid().Paste("Client ID\tExchange\tSeries\tSymbol\tProduct\tAmount\tFrequency\tStart Date\t"
                        "Total Period\tAction\r\n"
                        "C1\tNSE\tEQ\tARBORTEX\tcnc\t1500.50\tMonthly\t05/Mar/2027\t12\tSIP\r\n"
                        "C2\tNSE\tEQ\tARBORTEX\tCNC\tmuch\tmonthly\t05/Mar/2027\t12\tSIP\r\n\r\n");
    EXPECT_EQ(Rows(Field::amount), "150050");
    EXPECT_EQ(Rows(Field::token), "1013");
    ASSERT_EQ(basket.Rejected().size(), 1u);
    EXPECT_EQ(basket.Rejected()[0].reason, "Please enter valid amount.");
    EXPECT_EQ(Taken(view.boxes), Texts{"Lines pasted: 2, rejected: 1."});

    std::string cells = Line("C3");
    std::ranges::replace(cells, ',', '\t');
    basket.Grid().Paste(cells);
    EXPECT_EQ(Rows(Field::account), "C3 C1");
    // One known word is no line of headings.
    basket.Grid().Paste("Client ID\tbad\n");
    EXPECT_EQ(Taken(view.boxes).back(), "Lines pasted: 1, rejected: 1.");
    basket.Undo();

    // What an order is not by may stand there as 0, as in a copy of the list.
    basket.Grid().Paste(
        "Client ID\tExchange\tSeries\tSymbol\tProduct\tAmount\tQuantity\tFrequency\tStart Date\t"
        "Total Period\tAction\n"
        "C4\tNSE\tEQ\tARBORTEX\tCNC\t0.00\t7\tmonthly\t05/Mar/2027\t12\tSIP\n");
    EXPECT_EQ(Rows(Field::investType), "qty value value");
    basket.Undo();

    // The rejected one is mended as it stands, or says why not, and is another row then.
    const int number = basket.Rejected()[0].number;
    EXPECT_EQ(basket.Grid().EditRejected(number, "C2,nse_cm"), "Invalid Format");
    EXPECT_EQ(basket.Grid().EditRejected(number, Line("C2", "77")), "InValid Token");
    EXPECT_EQ(basket.Grid().EditRejected(number, Line("C2")), std::nullopt);
    EXPECT_EQ(Rows(Field::account), "C2 C3 C1");
    EXPECT_TRUE(basket.Rejected().empty());
}

TEST_F(BasketGridTest, APastedLineHasANumberOfItsOwn) {
    Load(Line("C1") + "bad\n" + "worse\n");
    basket.Grid().Paste("worst\n");
    std::set<int> numbers;
    for (const RejectedLine& line : basket.Rejected())
        numbers.insert(line.number);
    EXPECT_EQ(numbers, (std::set{2, 3, 4}));
}

TEST_F(BasketGridTest, TheNextFaultIsARejectedLineOrARowThatStandsTwice) {
    Load(Line("C1") + "bad\n" + Line("C2") + Line("C1") + "worse\n");
    const BasketFault faults[] = {{0u}, {1u}, {{}, Row(0)}, {{}, Row(2)}};
    BasketFault at;
    for (const BasketFault& fault : faults) {
        at = basket.Grid().NextFault(at, false).value();
        EXPECT_EQ(at, fault);
    }
    EXPECT_EQ(basket.Grid().NextFault(at, false), faults[0]);
    EXPECT_EQ(basket.Grid().NextFault(faults[0], true), faults[3]);
    EXPECT_EQ(basket.Grid().NextFault(faults[3], true), faults[2]);
}

// Two orders that ask for the same: the one that may be in the book is shown.
TEST_F(BasketGridTest, ALoadedRowIsKnownByTheOrderThatMayStand) {
    using enum OrderEvent;
    const struct {
        OrderEvent first, second;
        RowState shown;
    } pairs[] = {
        {registered, refused, RowState::registered}, {refused, registered, RowState::registered},
        {inDoubt, registered, RowState::registered}, {refused, inDoubt, RowState::inDoubt},
        {refused, refused, RowState::refused},
    };
    int round = 0;
    StartDates dates;
    for (const auto& [first, second, shown] : pairs) {
        const std::string line = Line("K" + std::to_string(++round));
        Load(line);
        const RecordedOrder order(AskedForBy(basket.Rows()[Row(0)].Texts(), dates));
        const std::vector<OrderPlace> places = session.record.Sending(std::vector{order, order}).value();
        session.record.Tell(places[0], first, {});
        session.record.Tell(places[1], second, {});
        Load(line);
        EXPECT_EQ(basket.Rows().Count(shown), 1u) << round;
    }
}

TEST_F(BasketGridTest, WhatIsSentDuringALoadIsKnownToTheRestOfIt) {
    Load(Line("K"));
    StartDates dates;
    const RecordedOrder order(AskedForBy(basket.Rows()[Row(0)].Texts(), dates));
    const auto send = [&] { session.record.Sending({&order, 1}); };
    send();
    std::string lines;
    for (int i = 0; i < 1000; ++i)
        lines += Line("K");
    view.clockStep = 200;
    Load(lines);
    ASSERT_TRUE(basket.Runs().IsUnderWay());
    EXPECT_EQ(basket.Rows().SentCount(), 1u);
    send();
    Run();
    EXPECT_EQ(basket.Rows().SentCount(), 2u);

    // The likelier one is another when an answer comes.
    send();
    Load(Line("K") + Lines(1000) + Line("K"));
    ASSERT_TRUE(basket.Runs().IsUnderWay());
    session.record.Tell(1, OrderEvent::refused, {});
    Run();
    EXPECT_EQ(basket.Rows().SentCount(), 2u);
    EXPECT_EQ(basket.Rows().Count(RowState::refused), 0u);
}

TEST_F(BasketGridTest, TablesAreReadBySpreadsheetsAndNeverCalculated) {
    Load("=cmd,\"x\"\n" + Line("+91"));
    basket.Saving().SaveReasons();
    EXPECT_NE(view.files["basket.csv"].find("Invest Type,Reason\n'=cmd,\"\"\"x\"\"\",,,"), std::string::npos)
        << view.files["basket.csv"];
    EXPECT_TRUE(view.files["basket.csv"].ends_with(",Invalid Format\n"));
    basket.Saving().SaveTable(false);
    EXPECT_EQ(
        view.files["basket.csv"],
        "Client ID,Exchange,Series,Symbol,Product,Amount,Quantity,Frequency,Start Date,Total Period,Order Type,"
        "Action,Remarks,State\n'+91,nse_cm,EQ,ARBORTEX,CNC,1500.00,7,monthly,05/Mar/2027,12,MKT,SIP,NA,Not "
        "sent\n");
}

TEST_F(BasketGridTest, ACheckListsFaultsWarningsAndTotals) {
    Load(Line("NOBODY") + Line("C1", "1013", "qty") + "bad\n");
    std::string text;
    const auto lines = basket.Check().value();
    for (const ReviewLine& line : lines) {
        for (const ReviewField field : {ReviewField::kind, ReviewField::what, ReviewField::of,
                                        ReviewField::rows, ReviewField::amount, ReviewField::quantity})
            text += ReviewText(line, field) + "|";
        text += "\n";
    }
    EXPECT_EQ(text, "Fault|Line 3 was rejected: Invalid Format|bad||||\n"
                    "Warning|The terminal does not know the client|NOBODY|1|Rs 1,500.00||\n"
                    "Total|Client|C1|1||7|\n"
                    "Total|Client|NOBODY|1|Rs 1,500.00||\n"
                    "Total|Side|BUY|2|Rs 1,500.00|7|\n"
                    "Total|Scrip|ARBORTEX-EQ|2|Rs 1,500.00|7|\n"
                    "Total|Start date|05/Mar/2027|2|Rs 1,500.00|7|\n"
                    "Total|Largest ticket|NOBODY ARBORTEX-EQ monthly|1|Rs 1,500.00||\n"
                    "Total|Smallest ticket|NOBODY ARBORTEX-EQ monthly|1|Rs 1,500.00||\n");
}

TEST_F(BasketGridTest, LimitsOfTheDeskWarnOnceOrForbid) {
    const struct {
        const char* key;
        const char* value;
        const char* found; // the first finding
        std::size_t sent;
    } limits[] = {
        {"Amount", "1,499.99", "Amount above Rs 1,499.99", 3},
        {"Amount", "1,500", "", 3},
        {"Amount", "1499.99 hard", "Amount above Rs 1,499.99", 0},
        {"Quantity", "6", "Quantity above 6", 3},
        {"Periods", "11 HARD", "Periods above 11", 0},
        {"Periods", "12 hard", "", 3},
        {"FirstDate", "32 hard", "Days to the first date above 32", 0},
        {"FirstDate", "33 hard", "", 3},
        {"RowsPerClient", "2 hard", "", 3},
        {"RowsPerClient", "1 hard", "Orders of a client above 1", 0},
        {"Total", "2,999.99 hard", "Total above Rs 2,999.99", 0},
        {"Total", "3000 hard", "", 3},
        {"Total", "lots hard", "The limit Total cannot be read: lots", 0},
        {"Total", "9999999999999999 hard", "The limit Total cannot be read: 9999999999999999", 0},
    };
    int round = 0;
    for (const auto& limit : limits) {
        // Another client each time: what was sent before is known again.
        const std::string client = "C" + std::to_string(++round);
        view.limits = {{limit.key, limit.value}};
        Load(Line(client) + Line(client, "1013", "qty") + Line(client + "B"));
        const auto lines = basket.Check().value();
        const bool isFound = !lines.empty() && lines[0].what == limit.found;
        EXPECT_EQ(isFound, *limit.found != 0) << limit.key << " " << limit.value << ": " << lines.at(0).what;
        view.questions.clear();
        basket.Runs().Place();
        Run();
        EXPECT_EQ(basket.Rows().SentCount(), limit.sent) << limit.key << " " << limit.value;
        const bool asks = *limit.found && limit.sent > 0;
        EXPECT_EQ(
            std::ranges::count_if(view.questions, [](auto& text) { return text.starts_with("Warnings: "); }),
            asks ? 1 : 0)
            << limit.key;
    }
}

TEST_F(BasketGridTest, WhatHasStayedTillItsStartDatePassedIsNotPlaced) {
    std::string later = Line("C3");
    later.replace(later.find("05/Mar"), 6, "06/Mar");
    Load(Line("C1") + Line("C2") + later);
    view.now = {2027, 3, 5, 23, 59, 59};
    EXPECT_NE(basket.Check().value()[0].kind, ReviewKind::fault) << "it may start today";
    view.now = {2027, 3, 6};
    const ReviewLine fault = basket.Check().value()[0];
    EXPECT_EQ(fault.what + ", " + fault.of + Format(": %zu", fault.rows),
              "The start date has passed, 05/Mar/2027: 2");
    view.yes = false;
    basket.Runs().Place();
    Run();
    EXPECT_EQ(Taken(view.questions),
              Texts{"The start date of 2 of the 3 orders has passed: enter another first.\n"
                    "Place only the other 1?"});
    EXPECT_EQ(basket.Rows().SentCount(), 0u);
    view.yes = true;
    basket.Runs().Place();
    Run();
    EXPECT_EQ(basket.Rows().SentCount(), 1u);
    view.boxes.clear();
    basket.Runs().Place(BasketChoice::Placed::unsent);
    Run();
    EXPECT_EQ(view.boxes, Texts{"The start date of 2 of the 2 orders has passed: enter another first."});
    EXPECT_EQ(basket.Rows().SentCount(), 1u);
}

} // namespace
} // namespace planfold::test
