// Editing in the basket's list, and taking back what was changed.
#include "tests/plugin/BasketStage.h"

#include <random>

namespace planfold::test {
namespace {

using Field = BasketField;

class BasketGridTest : public BasketStage {
protected:
    BasketGridTest() { Open(); }
    RecordId Row(std::size_t row) const { return view.list.rows.at(row); }
    // "" when it was taken.
    std::string Edit(std::size_t row, Field field, std::string_view typed) {
        return basket.Grid().Edit(basket.Rows()[Row(row)].SerialNumber(), field, typed).value_or("");
    }
    void Select(std::initializer_list<std::size_t> rows) {
        view.list.selected.clear();
        for (const std::size_t row : rows)
            view.list.selected.push_back(Row(row));
    }
    // All that an undo has to bring back.
    std::string State() const {
        std::string text;
        for (const RecordId row : view.list.rows) {
            text += basket.Outcome().StateText(row) + Format("|%d|", basket.Rows().LineOf(row));
            AppendBasketLine(basket.Rows()[row], text);
        }
        text += Format("totals %lld, twice %zu, sent %zu\n",
                       static_cast<long long>(basket.Rows().Buy().amountPaise), basket.Rows().StandingTwice(),
                       basket.Rows().SentCount());
        for (const RejectedLine& line : basket.Rejected())
            text += Format("rejected %d ", line.number) + line.text + " " + line.reason + "\n";
        return text;
    }
    void ChangeSomething(std::mt19937& random);
};

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

void BasketGridTest::ChangeSomething(std::mt19937& random) {
    const auto below = [&](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    const std::string client = "R" + std::to_string(below(9)), file = "L" + std::to_string(random());
    const std::size_t rows = view.list.rows.size();
    view.list.selected.clear();
    for (std::size_t row = 0; row < rows; ++row)
        if (below(3) == 0) view.list.selected.push_back(Row(row));
    switch (below(rows == 0 ? 3 : 8)) {
    case 0:
        return Add(client);
    case 1:
        return Load(Line(file) + "bad " + client + "\n" + Lines(static_cast<int>(below(5))));
    case 2:
        return basket.Grid().Paste("bad " + client + "\n" + "Client ID\tbad\n");
    case 3:
        return basket.Delete();
    case 4:
        Edit(below(rows), Field::amount, std::to_string(1 + below(5)));
        return;
    case 5:
        return basket.Grid().FillDown(Field::account);
    case 6:
        return basket.Grid().Replace({Field::account, "R", "C"});
    default:
        if (!basket.Rejected().empty())
            basket.Grid().EditRejected(basket.Rejected().back().number, Line(client));
    }
}

TEST_F(BasketGridTest, UndoAfterAnySequenceOfChangesGivesTheRowsBefore) {
    std::mt19937 random(1);
    for (int round = 0; round < 60; ++round) {
        Load("");
        Texts states{State()};
        std::size_t at = 0;
        for (int step = 0; step < 30; ++step) {
            const bool goes = random() % 3 == 0;
            if (goes && random() % 2 && at > 0) {
                basket.Undo();
                --at;
            } else if (goes && at + 1 < states.size()) {
                basket.Redo();
                ++at;
            } else {
                ChangeSomething(random);
                if (State() == states[at]) continue;
                states.resize(++at);
                states.push_back(State());
            }
            ASSERT_EQ(State(), states[at]) << "round " << round << ", step " << step;
        }
        for (; at > 0; --at) {
            ASSERT_EQ(State(), states[at]);
            basket.Undo();
        }
        ASSERT_EQ(State(), states[0]);
    }
}

TEST_F(BasketGridTest, WhatWasSentStaysSent) {
    Load(Line("C1"));
    Add("C2");
    Edit(1, Field::amount, "7");
    basket.Runs().Place();
    Run();
    ASSERT_EQ(basket.Rows().SentCount(), 2u);
    const std::string sent = State();
    view.boxes.clear();
    basket.Undo();
    EXPECT_EQ(State(), sent);
    EXPECT_EQ(Taken(view.boxes), Texts{"Orders of that change were sent since, the first of them for C1.\n"
                                       "What was sent stays; nothing before it can be undone."});
    EXPECT_EQ(Edit(0, Field::amount, "9"), "The order was sent: its row cannot be edited.");

    // Deleted and taken back it is the same order still, with what was answered meanwhile.
    Select({0, 1});
    basket.Delete();
    const OrderPlace place = 0;
    session.record.Tell(place, OrderEvent::refused, "no funds (code 9).");
    basket.Undo();
    EXPECT_EQ(basket.Rows().SentCount(), 2u);
    EXPECT_EQ(basket.Rows().Count(RowState::refused), 1u);
    basket.Redo();
    EXPECT_TRUE(view.list.rows.empty());
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

// What a dealer can have done with three orders by the time that some of them are sent.
struct SentWay {
    const char* what;
    void (*go)(class UndoOfSent& stage);
};

class UndoOfSent : public BasketGridTest, public ::testing::WithParamInterface<SentWay> {
public:
    using BasketGridTest::Add, BasketGridTest::basket, BasketGridTest::control, BasketGridTest::Edit,
        BasketGridTest::host, BasketGridTest::Load, BasketGridTest::Run, BasketGridTest::session,
        BasketGridTest::view;
    void Place(BasketRuns::Placed which = BasketRuns::Placed::all) {
        basket.Runs().Place(which);
        Run();
    }
    // The second order of the placing is the last that goes out.
    void PlaceTwo(bool remove) {
        host.onRequest = [this, remove] {
            if (host.requests.size() != 2) return;
            view.yes = remove;
            basket.Runs().Stop();
        };
        Place();
        host.onRequest = nullptr;
        view.yes = true;
    }
    std::vector<sSipOrderData> Orders() {
        std::vector<sSipOrderData> orders;
        for (const RecordId row : view.list.rows) {
            sSipOrderData& order = orders.emplace_back();
            for (const auto& [field, member] : kSipOrderFields)
                order.*member = basket.Rows()[row].Text(field);
            order.amountOrQuantity = basket.Rows()[row].Text(Field::amount);
        }
        return orders;
    }
};

const SentWay kSentWays[] = {
    {"Loaded", [](UndoOfSent& on) { on.Load(Lines(3)), on.Place(); }},
    {"Edited", [](UndoOfSent& on) { on.Load(Lines(3)), on.Edit(1, Field::amount, "7"), on.Place(); }},
    {"Imported",
     [](UndoOfSent& on) {
         on.view.import = ReadingOf(Lines(3));
         on.basket.Runs().Import();
         on.Run();
         on.Place();
     }},
    {"Copied",
     [](UndoOfSent& on) {
         on.Load(Lines(3));
         const std::vector<sSipOrderData> orders = on.Orders();
         on.Load("");
         on.basket.Coming().Add(kPass, orders);
         on.Place();
     }},
    {"StoppedAndRemoved", [](UndoOfSent& on) { on.Load(Lines(3)), on.PlaceTwo(true); }},
    {"StoppedAndKept", [](UndoOfSent& on) { on.Load(Lines(3)), on.PlaceTwo(false); }},
    {"WithoutARecord",
     [](UndoOfSent& on) {
         on.host.recordFiles.hasFolder = false;
         on.Load(Lines(3));
         on.Place();
     }},
    {"WindowClosed",
     [](UndoOfSent& on) {
         on.Load(Lines(3));
         on.host.onRequest = [&on] { on.basket.OnClosed(); };
         on.Place();
         on.host.onRequest = nullptr;
         on.basket.Initialise({});
     }},
    {"BroughtBack",
     [](UndoOfSent& on) {
         on.view.unsent.text = Lines(3);
         on.basket.Runs().OfferUnsent();
         on.Run();
         on.PlaceTwo(false);
     }},
    {"TakenBack",
     [](UndoOfSent& on) {
         on.Load(Lines(3));
         on.Place();
         for (const OrderPlace place : {0u, 1u})
             for (const OrderEvent event : {OrderEvent::inDoubt, OrderEvent::absent})
                 on.session.record.Tell(place, event, {});
         on.Load("");
         const OrderPlace absent[] = {0, 1};
         on.basket.Coming().TakeBack(kPass, absent);
         on.Place(BasketRuns::Placed::unsent);
     }},
    {"RefusedAndPlacedAgain",
     [](UndoOfSent& on) {
         on.Load(Lines(3));
         on.Place();
         on.session.record.Tell(1, OrderEvent::refused, "no");
         on.Place(BasketRuns::Placed::refused);
     }},
};

// Whatever is taken back and made again then, no order that went out stands there as one that did not.
TEST_P(UndoOfSent, ComesBackAsSent) {
    GetParam().go(*this);
    const std::string sent = Sent() + " ";
    ASSERT_NE(sent, " ");
    std::mt19937 random(3);
    for (int step = 0; step < 60; ++step) {
        switch (random() % 5) {
        case 0:
            if (!view.list.rows.empty()) Select({random() % view.list.rows.size()});
            basket.Delete();
            break;
        case 1:
            basket.Redo();
            break;
        default:
            basket.Undo();
        }
        BasketLines kept(view.unsent.text);
        while (const auto line = kept.Next())
            ASSERT_EQ(sent.find(std::string(line->text.substr(0, line->text.find(','))) + " "), sent.npos)
                << "step " << step;
        for (const RecordId row : view.list.rows)
            ASSERT_TRUE(basket.Rows().IsSent(row)
                        || sent.find(std::string(basket.Rows()[row].Text(Field::account)) + " ") == sent.npos)
                << "step " << step;
    }
}

INSTANTIATE_TEST_SUITE_P(BasketGrid, UndoOfSent, ::testing::ValuesIn(kSentWays),
                         [](const auto& way) { return std::string(way.param.what); });

TEST_F(BasketGridTest, NothingIsTakenBackDuringARun) {
    Load(Lines(3));
    host.onRequest = [&] {
        basket.Undo();
        basket.Redo();
        basket.Grid().Replace({Field::account, "C", "X"});
    };
    basket.Runs().Place();
    Run();
    EXPECT_EQ(Sent(), "C3 C2 C1");
    EXPECT_EQ(view.list.rows.size(), 3u);
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

} // namespace
} // namespace planfold::test
