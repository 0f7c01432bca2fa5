// Taking back what was changed in the basket, and never what was sent.
#include "tests/plugin/BasketGridStage.h"

#include <random>

namespace planfold::test {
namespace {

using Field = BasketField;

class BasketUndoTest : public BasketGridStage {
protected:
    void ChangeSomething(std::mt19937& random);
};

void BasketUndoTest::ChangeSomething(std::mt19937& random) {
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

TEST_F(BasketUndoTest, UndoAfterAnySequenceOfChangesGivesTheRowsBefore) {
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

TEST_F(BasketUndoTest, WhatWasSentStaysSent) {
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

// What a dealer can have done with three orders by the time that some of them are sent.
struct SentWay {
    const char* what;
    void (*go)(class UndoOfSent& stage);
};

class UndoOfSent : public BasketUndoTest, public ::testing::WithParamInterface<SentWay> {
public:
    using BasketUndoTest::Add, BasketUndoTest::basket, BasketUndoTest::control, BasketUndoTest::Edit,
        BasketUndoTest::host, BasketUndoTest::Load, BasketUndoTest::Run, BasketUndoTest::session,
        BasketUndoTest::view;
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

INSTANTIATE_TEST_SUITE_P(Basket, UndoOfSent, ::testing::ValuesIn(kSentWays),
                         [](const auto& way) { return std::string(way.param.what); });

// Also where nothing but the load went before, whole or ended by the window's closing.
TEST_F(BasketUndoTest, ALoadWhoseRowsWereSentIsNotTakenBack) {
    for (const bool closes : {false, true}) {
        SCOPED_TRACE(closes);
        view.clockStep = closes ? 100 : 0;
        Load(Lines(closes ? 3000 : 3));
        ASSERT_EQ(basket.Runs().IsUnderWay(), closes);
        if (closes) basket.OnClosed();
        view.clockStep = 0;
        basket.Runs().Place();
        Run();
        ASSERT_GT(basket.Rows().SentCount(), 0u);
        const std::string sent = State();
        view.boxes.clear();
        basket.Undo();
        EXPECT_EQ(State(), sent);
        EXPECT_EQ(view.boxes.size(), 1u);
    }
}

TEST_F(BasketUndoTest, ALoadOfWhatHadBeenSentBeforeIsTakenBack) {
    Load(Line("C1"));
    basket.Runs().Place();
    Run();
    const std::string before = State();
    Load(Line("C1") + Line("C2"));
    EXPECT_EQ(basket.Rows().SentCount(), 1u);
    view.boxes.clear();
    basket.Undo();
    EXPECT_EQ(State(), before);
    EXPECT_EQ(view.boxes, Texts{});
}

TEST_F(BasketUndoTest, WhatIsNoLongerKeptIsSaid) {
    constexpr int kept = 1000;
    Load(Lines(1));
    for (int i = 1; i <= kept; ++i)
        Edit(0, Field::amount, std::to_string(i));
    for (int i = 0; i < kept; ++i)
        basket.Undo();
    EXPECT_EQ(view.list.rows.size(), 1u) << "of the load";
    EXPECT_EQ(view.boxes, Texts{});
    basket.Undo();
    EXPECT_EQ(view.boxes, Texts{"The changes before this were too large to be kept."});
}

TEST_F(BasketUndoTest, ALoadOverRowsTooLargeToBeKeptSaysSo) {
    const std::string longLine = std::string(97u << 20, 'x') + "\n";
    Load(longLine);
    Taken(view.boxes);
    Load(Lines(1));
    basket.Undo();
    EXPECT_EQ(view.list.rows.size(), 1u);
    EXPECT_EQ(view.boxes, Texts{"The changes before this were too large to be kept."});
}

// What was undone and done anew is not counted twice.
TEST_F(BasketUndoTest, ManyLargeStepsThatWereUndoneLeaveTheOthers) {
    Load(std::string(40u << 20, 'x') + "\n");
    for (int time = 0; time < 4; ++time) {
        Load(Lines(1));
        basket.Undo();
        basket.Redo();
        basket.Undo();
    }
    Taken(view.boxes);
    EXPECT_EQ(basket.Rejected().size(), 1u);
    basket.Undo();
    EXPECT_EQ(basket.Rejected().size(), 0u);
    EXPECT_EQ(view.boxes, Texts{});
}

// Places that are no longer right would bring back other rows.
TEST_F(BasketUndoTest, WhatChangedBesideTheHistoryEndsIt) {
    Load(Lines(3));
    Edit(1, Field::amount, "7");
    view.list.rows.pop_back();
    const std::string before = State();
    basket.Undo();
    EXPECT_EQ(State(), before);
    EXPECT_EQ(Taken(view.boxes), Texts{"There is nothing to undo."});
    Edit(0, Field::amount, "8");
    view.list.rows.pop_back();
    Edit(0, Field::amount, "9");
    basket.Undo();
    EXPECT_EQ(view.boxes, Texts{});
    basket.Undo();
    EXPECT_EQ(view.boxes, Texts{"There is nothing to undo."});
}

TEST_F(BasketUndoTest, OrdersThatComeWhileTheSessionEndsAreNotTaken) {
    static Session* ended = nullptr;
    Load(Lines(1));
    basket.Runs().Place();
    Run();
    for (const OrderEvent event : {OrderEvent::inDoubt, OrderEvent::absent})
        session.record.Tell(0, event, {});
    Load(Lines(2, "X"));
    ended = &session;
    session.host.pu_get_scrip_details_from_TradSymbol = [](InString, InString, ScripDetails* details) {
        ended->End();
        return details;
    };
    EXPECT_EQ(basket.Coming().Add(kPass, std::vector<sSipOrderData>(2)), 0u);
    const OrderPlace absent[] = {0};
    EXPECT_EQ(basket.Coming().TakeBack(kPass, absent), 0u);
    EXPECT_EQ(view.list.rows.size(), 2u);
}

TEST_F(BasketUndoTest, NothingIsTakenBackDuringARun) {
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

} // namespace
} // namespace planfold::test
