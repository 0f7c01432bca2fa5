// What becomes of the orders that were not sent when the session ends.
#include "tests/plugin/BasketStage.h"

#include "plugin/basket/BasketFile.h"

namespace planfold::test {
namespace {

class BasketUnsentTest : public BasketStage {
protected:
    // As the list has it, the last row first.
    std::string Kept() const {
        std::string text;
        BasketLines lines(view.unsent.text);
        while (const auto line = lines.Next())
            text.append(text.empty() ? "" : " ").append(line->text.substr(0, line->text.find(',')));
        return text;
    }
    // In a file of the session before.
    void Found(const std::string& lines) {
        view.unsent.text = lines;
        Open();
    }
    StartDates dates;
};

TEST_F(BasketUnsentTest, AreKeptWithEveryChange) {
    Open();
    basket.Runs().OfferUnsent();
    Add("C1");
    Add("C2");
    EXPECT_EQ(Kept(), "C1 C2");
    view.list.selected = {view.list.rows[1]};
    basket.Entry().Activate(view.list.rows[1]);
    view.SetText(IDC_CLIENT_SEARCH, "C3");
    basket.Entry().AddOrModify();
    EXPECT_EQ(Kept(), "C3 C2");
    basket.Delete();
    EXPECT_EQ(Kept(), "C2");
    view.list.selected = {view.list.rows[0]};
    basket.Delete();
    EXPECT_EQ(view.unsent.text, "");
    Load(Lines(3));
    EXPECT_EQ(Kept(), "C1 C2 C3");

    // While they are placed all stand there: the order record tells which were sent.
    view.unsent.written.clear();
    host.cautionOfRow = {{1, 0}};
    host.duringRowState = [&] { EXPECT_EQ(Kept(), "C1 C2 C3"); };
    basket.Runs().Place();
    EXPECT_EQ(Kept(), "C2");
    EXPECT_EQ(view.unsent.written.size(), 2u);
    EXPECT_EQ(view.unsent.aside, Texts{});

    // The exit comes while the second goes out.
    Load(Lines(3, "D"));
    host.duringLog = [&] {
        host.duringLog = [&] {
            session.End();
            basket.OnClosed();
            EXPECT_EQ(Kept(), "D1 D2");
        };
    };
    host.cautionOfRow.clear();
    basket.Runs().Place();
}

TEST_F(BasketUnsentTest, ComeBackOrAreSavedAsTheUserWishes) {
    const std::string lines = Line("C1") + Line("C2");
    Found(lines);
    view.choice = Choice::cancel;
    basket.Runs().OfferUnsent();
    const Texts offer{
        "Orders of the basket that were not sent when the terminal ended: 2.\n\nYes: take them into "
        "the basket again.\nNo: save them to a file of their own.\nCancel: ask again next time."};
    EXPECT_EQ(Taken(view.questions), offer);
    EXPECT_EQ(view.unsent.text + Rows(BasketField::account), lines);
    basket.OnClosed();
    Open();
    view.choice = Choice::yes;
    basket.Runs().OfferUnsent();
    EXPECT_EQ(Taken(view.questions), offer);
    EXPECT_EQ(Rows(BasketField::account), "C2 C1");
    EXPECT_EQ(Kept(), "C1 C2");
    EXPECT_EQ(basket.Outcome().Status()[3], "");
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);
    basket.Runs().OfferUnsent();
    EXPECT_EQ(view.questions.size() + view.boxes.size() + view.unsent.aside.size(), 0u) << "once";
    basket.Undo();
    EXPECT_EQ(Taken(view.boxes), Texts{"There is nothing to undo."});
    EXPECT_EQ(Kept(), "C1 C2");
}

TEST_F(BasketUnsentTest, AreNeverLostForWantOfAnAnswer) {
    const std::string lines = Line("C1") + Line("C2");
    const Texts told{"The orders that were not sent before are in\naside.csv\nLoad reads them from there."};
    const Texts notKept{
        "The orders of the basket are not kept for the next start: Export saves them.\nThose kept "
        "before cannot be saved to a file of their own."};
    struct Row {
        Choice choice;
        bool writable;
        std::string kept;
        std::size_t saved;
    };
    for (const Row& row :
         {Row{Choice::no, true, "C9", 1}, {Choice::cancel, true, "C9", 1}, {Choice::no, false, "C1 C2", 0}}) {
        Basket another(session, view, &control);
        view.unsent = {};
        view.list.rows.clear();
        view.unsent.text = lines;
        view.unsent.writable = row.writable;
        view.choice = row.choice;
        another.Initialise({});
        Answer("echoedRequest=get_sip_operation_mode errorCode=5");
        another.Runs().OfferUnsent();
        Fill("C9");
        view.SelectText(IDC_FREQUENCY, "monthly");
        another.Entry().AddOrModify();
        EXPECT_EQ(Kept(), row.kept);
        EXPECT_EQ(view.unsent.aside, Texts(row.saved, lines));
        EXPECT_EQ(Taken(view.boxes), row.saved ? told : notKept);
    }
}

TEST_F(BasketUnsentTest, ThatCannotBeKeptAreToldOnceUntilTheyCan) {
    Open();
    const Texts told{"The orders of the basket are not kept for the next start: Export saves them.\ndisk full"};
    view.unsent.writable = false;
    Add("C1");
    Add("C2");
    EXPECT_EQ(Taken(view.boxes), told);
    view.unsent.writable = true;
    Add("C3");
    EXPECT_EQ(Kept(), "C1 C2 C3");
    view.unsent.writable = false;
    Add("C4");
    EXPECT_EQ(Taken(view.boxes), told) << "it is another failure";
}

TEST_F(BasketUnsentTest, AreCheckedAnewAndMarkedWhenTheRecordHasThem) {
    Open();
    Load(Line("C1") + Line("C2") + Line("C3"));
    std::string found = view.unsent.text;
    const RecordedOrder sent(AskedForBy(basket.Rows()[view.list.rows[2]].Texts(), dates));
    session.record.Sending({&sent, 1});
    found.replace(found.find("05/Mar/2027", found.rfind("C2")), 11, "31/Jan/2027");
    found.replace(found.find("05/Mar/2027", found.rfind("C3")), 11, "30/Jan/2027");
    const std::string late = found.substr(found.rfind("C3"));

    Basket another(session, view, &control);
    view.unsent.text = found.substr(0, found.find('\n') + 1) + found; // of two alike one was sent
    view.list.rows.clear();
    another.Initialise({});
    Taken(view.questions);
    Taken(view.boxes);
    another.Runs().OfferUnsent();
    EXPECT_TRUE(view.questions[0].starts_with(
        "Orders of the basket that were not sent when the terminal ended: 3.\nBesides these, 1 were sent"));
    ASSERT_EQ(view.list.rows.size(), 3u);
    EXPECT_TRUE(another.Rows().IsSent(view.list.rows[2]));
    EXPECT_EQ(another.Rows().SentCount(), 1u);
    EXPECT_EQ(Kept(), "C1 C2");
    EXPECT_EQ(view.unsent.aside, Texts{late});
    EXPECT_EQ(view.boxes, (Texts{"Invalid Date", "The orders that cannot be taken back are in\naside.csv"}));
}

// Their periods may be a server's, which may not have told its rules yet.
TEST_F(BasketUnsentTest, ComeBackWithMorePeriodsThanWithoutAServersRules) {
    std::string line = Line("C1");
    line.replace(line.find(",12,"), 4, ",120,");
    Found(line);
    basket.Runs().OfferUnsent();
    EXPECT_EQ(view.list.rows.size(), 1u);
}

TEST_F(BasketUnsentTest, StayInTheFileWhenTheyComeBackOnlyInPart) {
    const std::string lines = Lines(500) + "x\n" + Lines(500, "D");
    for (const bool closed : {false, true}) {
        Found(lines);
        view.clockStep = 200;
        basket.Runs().OfferUnsent();
        ASSERT_TRUE(basket.Runs().IsUnderWay() && !view.list.rows.empty());
        if (closed)
            basket.OnClosed();
        else
            basket.Runs().Stop();
        EXPECT_TRUE(view.unsent.text == lines);
        EXPECT_TRUE(view.list.rows.empty());
    }
    // In the host's hands, and opened again there.
    view.clockStep = 0;
    Found(lines);
    host.duringLog = [&] {
        basket.OnClosed();
        Open();
        basket.Runs().OfferUnsent();
    };
    basket.Runs().OfferUnsent();
    EXPECT_TRUE(view.unsent.text == lines);
    EXPECT_TRUE(view.list.rows.empty());
    basket.Runs().OfferUnsent();
    EXPECT_EQ(view.list.rows.size(), 1000u);
    EXPECT_EQ(view.unsent.aside, Texts{"x\n"});
}

} // namespace
} // namespace planfold::test
