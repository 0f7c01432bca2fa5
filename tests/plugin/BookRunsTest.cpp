// Runs over many rows of the book: portions, their summary, what waits for another box, and sessions that end.
#include "tests/plugin/BookActionsStage.h"

#include <set>

namespace planfold::test {
namespace {

using BookRunsTest = BookActionsTest;

// What a run sent is counted to its last answer, whatever stops it.
TEST_F(BookRunsTest, ALongRunGoesInPortionsAndEndsWithOneSummary) {
    Texts numbers;
    for (int i = 0; i < 1000; ++i) {
        numbers.push_back("SIP" + std::to_string(i));
        Row(numbers.back());
    }
    Select(numbers);
    runs.Continue();                           // a late tick
    host.onRequest = [&] { runs.Continue(); }; // the host may let the next tick in
    actions.Cancel();
    const std::size_t first = host.requests.size();
    EXPECT_EQ(std::set(host.requests.begin(), host.requests.end()).size(), first) << "none twice";
    EXPECT_EQ(runs.Progress(), "Cancelling 250 of 1000");
    actions.Cancel(); // nothing else begins meanwhile, and says so
    actions.Pause();
    actions.PauseSelected();
    EXPECT_EQ(Taken(view.boxes),
              Texts(3, "Cancelling 250 of 1000.\nPlease wait until all are sent, or stop it."));
    EXPECT_EQ(host.requests.size(), first);
    runs.Continue();
    EXPECT_EQ(host.requests.size(), 350u);
    runs.Stop();
    runs.Continue();
    EXPECT_EQ(host.requests.size(), 350u) << "nothing goes out any more";
    EXPECT_FALSE(runs.CanStop());
    EXPECT_EQ(view.boxes, Texts{});
    for (int i = 0; i < 340; ++i)
        Answer("cancel_sip_order", "echoedNumber=SIP" + std::to_string(i));
    EXPECT_EQ(view.registered.removals, 0);
    std::erase(view.registered.selected, book.Records().Find("SIP0")); // by a click meanwhile
    std::erase(view.registered.selected, book.Records().Find("SIP1"));
    Row("SIP0", "cancelled");
    runs.Continue();
    EXPECT_EQ(view.registered.removals, 1) << "a burst is one step";
    EXPECT_EQ(view.registered.rows.size(), 661u);
    Row("SIP1", "cancelled");
    EXPECT_EQ(view.registered.rows.size(), 660u) << "their updates take both away";
    EXPECT_EQ(std::ranges::count(host.log, "SIP0 Order Cancelled "), 1);
    for (int i = 340; i < 345; ++i)
        Answer("cancel_sip_order", "errorCode=105 userText=Theirs registrationNumber=SIP" + std::to_string(i));
    EXPECT_EQ(runs.Progress(), "Cancelling: waiting for 5 answers");
    EXPECT_EQ(view.boxes, Texts{});
    host.recordTime.second += OrderRecord::kPatience;
    session.record.OnTime();
    runs.Continue();
    EXPECT_FALSE(runs.IsUnderWay());
    std::string expected;
    for (int i = 2; i < 27; ++i)
        expected += "SIP" + std::to_string(i) + " Order Cancelled \n";
    expected += "... and 313 more\n\nCancel: 350 of 1000 requests were sent, then it was stopped.\n"
                "The server confirmed 340 and refused 5.\nIn doubt: 5, to which no answer came.\n"
                "Not sent: 650.\n\nRefused:\nTheirs (code 105): ";
    for (int i = 340; i < 345; ++i)
        expected += (i == 340 ? "" : ", ") + numbers[static_cast<std::size_t>(i)] + " C"
                    + numbers[static_cast<std::size_t>(i)];
    EXPECT_EQ(Taken(view.boxes),
              Texts{expected + "\n\nAll of them: \"Orders of a Day...\" in the menu of the list."});
}

TEST_F(BookRunsTest, SeveralRowsAreChangedAfterAQuestionThatTellsSidesAndWhatIsLeftOut) {
    const char* rows[] = {
        "sipStatus=active side=B account=C1 investType=value amountOrQuantity=1000000000",
        "sipStatus=active side=B account=C2 investType=qty amountOrQuantity=7 loginId=DEALER1",
        "sipStatus=active side=S account=C2 investType=value amountOrQuantity=12345",
        "sipStatus=Paused account=C3",
        "sipStatus=active loginId=DEALER2",
        "sipStatus=expired loginId=DEALER2",
        "sipStatus=expired",
        "sipStatus=cancelled",
    };
    Texts numbers;
    for (const char* row : rows) {
        numbers.push_back("SIP" + std::to_string(numbers.size() + 1));
        book.OnBroadcast(Received("registrationNumber=" + numbers.back() + " " + row).Message());
    }
    view.registered.rows.push_back(book.Records().Find("SIP8")); // as an older host's stream leaves it
    Select(numbers);
    actions.PauseSelected();
    EXPECT_EQ(Taken(view.questions),
              Texts{"3 of 8 selected registrations will be paused: 2 clients.\n"
                    "Buy (SIP): Rs 1,00,00,000.00 and 7 shares per run.\nSell (SWP): Rs 123.45 per run.\n"
                    "Left out: 1 already paused, 1 cancelled, 1 expired, 2 of another user.\nProceed?"});
    EXPECT_EQ(host.requests.size(), 3u);
    Answer("pause_sip_order", "userText=paused registrationNumber=SIP3");
    Answer("pause_sip_order", "userText=paused"); // to what was sent first
    EXPECT_EQ(view.boxes, Texts{});
    Answer("pause_sip_order", "errorCode=5 registrationNumber=SIP2");
    EXPECT_EQ(Taken(view.boxes),
              Texts{"Pause: 3 of 3 requests were sent.\nThe server confirmed 2 and refused 1.\n\nRefused:\n"
                    "(code 5): SIP2 C2\n\nAll of them: \"Orders of a Day...\" in the menu of the list."});
    Select({"SIP1", "SIP7"});
    actions.ResumeSelected();
    EXPECT_EQ(Taken(view.boxes), Texts{"None of the 2 selected registrations can be resumed.\n"
                                       "Left out: 1 expired, 1 not paused."});
    // A silent server is not waited for for ever, and what it says later opens no box.
    Select({"SIP4"});
    actions.ResumeSelected();
    Answer("resume_sip_order", "userText=stray registrationNumber=SIP1");
    EXPECT_EQ(Taken(view.boxes), Texts{"stray"});
    host.recordTime.minute += 1;
    session.record.OnTime();
    runs.Continue();
    EXPECT_EQ(Taken(view.boxes), Texts{"Resume: 1 of 1 requests were sent.\nThe server confirmed 0.\n"
                                       "In doubt: 1, to which no answer came.\n\n"
                                       "All of them: \"Orders of a Day...\" in the menu of the list."});
    Answer("resume_sip_order", "userText=late registrationNumber=SIP4");
    EXPECT_EQ(view.boxes, Texts{});
    EXPECT_EQ(host.log.back(), "late");
}

TEST_F(BookRunsTest, ARefusedCancellationOfOneRowIsToldAsWell) {
    Row("SIP1");
    Select({"SIP1"});
    actions.Cancel();
    EXPECT_EQ(view.reasonFor, 1u);
    Answer("cancel_sip_order", "errorCode=105 userText=no registrationNumber=SIP1 echoedNumber=SIP1");
    ASSERT_EQ(view.boxes.size(), 1u);
    EXPECT_TRUE(view.boxes[0].starts_with("SIP1 Order Cancelled \n\nCancel: 1 of 1 requests were sent.\n"
                                          "The server confirmed 0 and refused 1."))
        << view.boxes[0];
}

TEST_F(BookRunsTest, AsManyRefusalsAreNamedAsThereIsRoomFor) {
    for (const int refused : {30, 31}) {
        Texts numbers;
        for (int i = 0; i < refused; ++i) {
            numbers.push_back("SIP" + std::to_string(i));
            Row(numbers.back());
        }
        Select(numbers);
        actions.PauseSelected();
        for (const std::string& number : numbers)
            Answer("pause_sip_order", Fields("errorCode=5 userText=no registrationNumber=" + number));
        const std::string text = Taken(view.boxes).at(0);
        EXPECT_NE(text.find(", SIP29 CSIP29"), text.npos) << text;
        EXPECT_EQ(text.find("... and 1 more") != text.npos, refused == 31) << text;
    }
}

// The host, which logs them, may end the session.
class UnrecordedRefusals : public BookRunsTest, public testing::WithParamInterface<bool> {};

TEST_P(UnrecordedRefusals, AreLoggedUntilTheSessionEnds) {
    for (const char* number : {"SIP1", "SIP2", "SIP3"})
        Row(number);
    host.recordFiles.hasFolder = false;
    Select({"SIP1", "SIP2", "SIP3"});
    actions.PauseSelected();
    host.log.clear();
    Answer("pause_sip_order", "userText=paused registrationNumber=SIP2");
    const auto refuse = [&](const char* number) {
        Answer("pause_sip_order", Fields("errorCode=5 userText=no registrationNumber=" + std::string(number)));
    };
    refuse("SIP1");
    const char* logged = "Error in response : pause_sip_order . Error Code : 5";
    Texts expected{logged, logged, "SIP1 CSIP1: no (code 5)"};
    if (GetParam())
        host.duringLog = [&] { host.duringLog = [&] { session.End(); }; };
    else
        expected.push_back("SIP3 CSIP3: no (code 5)");
    refuse("SIP3");
    EXPECT_EQ(host.log, expected);
    EXPECT_EQ(view.boxes.size(), GetParam() ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(, UnrecordedRefusals, testing::Bool());

// Under another box nothing is asked, but it is once that is gone: about the rows that were selected then.
TEST_F(BookRunsTest, QuestionsWaitForAnotherBox) {
    for (const char* number : {"SIP1", "SIP2", "SIP3", "SIP4"})
        Row(number);
    const struct {
        void (*act)(BookActions&);
        const char* question;
        const char* request;
    } rows[] = {
        {[](BookActions& on) { on.Cancel(); }, "Do you want to cancel Order No: SIP1 ", "cancel_sip_order"},
        {[](BookActions& on) { on.PauseSelected(); }, "1 of 2 selected registrations will be paused: 1 client.",
         "pause_sip_order"},
    };
    for (const auto& row : rows) {
        view.otherBox = true;
        Row("SIP2");
        Select({"SIP1", "SIP2"});
        row.act(actions);
        row.act(actions); // the same again is asked once
        Select({"SIP3"});
        EXPECT_EQ(view.questions, Texts{});
        view.registered.Remove(book.Records().Find("SIP2")); // meanwhile
        view.otherBox = false;
        EXPECT_TRUE(actions.OnBoxGone());
        ASSERT_EQ(view.questions.size(), 1u);
        EXPECT_TRUE(Taken(view.questions)[0].starts_with(row.question));
        ASSERT_EQ(host.requests.size(), 1u);
        EXPECT_EQ(Taken(host.requests)[0].find(std::string(row.request) + " registrationNumber=SIP1"), 0u);
        view.registered.rows = {0, 1, 2, 3};
        Answer(row.request, "registrationNumber=SIP1");
        view.boxes.clear();
    }
    // Two wishes are two questions; what has gone by then is told; a closed window asks no more.
    view.otherBox = true;
    Select({"SIP4"});
    actions.Cancel();
    Select({"SIP3"});
    actions.PauseSelected();
    view.registered.Remove(book.Records().Find("SIP4"));
    view.otherBox = false;
    while (!actions.OnBoxGone()) {
    }
    EXPECT_EQ(Taken(view.boxes), Texts{"None of the 1 selected registrations is in the book any more."});
    EXPECT_EQ(Taken(view.questions).size(), 1u);
    view.otherBox = true;
    actions.Cancel();
    book.Open({2027, 1, 31});
    view.otherBox = false;
    EXPECT_TRUE(actions.OnBoxGone());
    EXPECT_EQ(view.questions, Texts{});
}

// The question for what cannot be recorded waits as well, and a run with it.
TEST_F(BookRunsTest, NothingIsSentWithoutARecordUnderAnotherBox) {
    for (const char* number : {"SIP1", "SIP2"})
        Row(number);
    Select({"SIP1", "SIP2"});
    host.recordFiles.writable = false;
    view.otherBox = true;
    actions.Pause();
    view.otherBox = false;
    view.duringQuestion = [&] { view.otherBox = true; };
    actions.PauseSelected();
    runs.Continue();
    EXPECT_EQ(view.questions.size(), 1u);
    EXPECT_EQ(host.requests, Texts{});
    view.otherBox = false;
    while (!actions.OnBoxGone())
        runs.Continue();
    EXPECT_EQ(host.requests.size(), 3u);
    EXPECT_EQ(view.questions.size(), 3u);
}

} // namespace
} // namespace planfold::test
