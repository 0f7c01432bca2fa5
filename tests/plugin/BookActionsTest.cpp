// Cancel, pause and resume from the book: what is asked, refused, sent and logged, and what an answer changes.

#include "tests/plugin/BookActionsStage.h"

#include <optional>

namespace planfold::test {
namespace {

std::string CancelRequest(const std::string& number, const char* reason, const char* source = " ") {
    return "cancel_sip_order registrationNumber=" + number + " echoedNumber=" + number
           + " orderId=UUID-1 userText=" + reason + " cancelledBy=DEALER1 orderSource=" + source;
}

TEST_F(BookActionsTest, CancelAsksOnceAndSendsEveryRowWithTheSameReason) {
    for (const char* number : {"SIP1", "SIP2", "SIP3"})
        Row(number);
    actions.Cancel();
    EXPECT_EQ(view.questions, Texts{}) << "nothing selected";
    view.reason = "client's wish";
    Select({"SIP3", "SIP1", "SIP2"});
    actions.Cancel();
    EXPECT_EQ(Taken(view.questions), Texts{"You have selected 3 Orders to Cancel. Proceed?"});
    EXPECT_EQ(view.reasonsAsked, 1);
    EXPECT_EQ(Taken(host.requests),
              (Texts{CancelRequest("SIP3", "client's wish"), CancelRequest("SIP1", "client's wish"),
                     CancelRequest("SIP2", "client's wish")}));
    EXPECT_EQ(Taken(host.log), (Texts{"Sending request to cancel SIP3", "Sending request to cancel SIP1",
                                      "Sending request to cancel SIP2"}));
    EXPECT_EQ(view.boxes, Texts{});

    view.yes = false;
    Select({"SIP1"});
    actions.Cancel();
    EXPECT_EQ(Taken(view.questions), Texts{"Do you want to cancel Order No: SIP1 "});
    EXPECT_EQ(view.reasonsAsked, 1) << "No ends it";
    view.yes = true;
    view.reason.clear();
    session.host = {}; // no optional callback at all
    actions.Cancel();
    EXPECT_EQ(Taken(host.requests), Texts{"cancel_sip_order registrationNumber=SIP1 echoedNumber=SIP1 "
                                          "userText=  cancelledBy=DEALER1 orderSource= "});
}

TEST_F(BookActionsTest, ACancellationKeepsTheOrdersSource) {
    Row("SIP1");
    const Received streamed("registrationNumber=SIP1 orderSource=MOBILE");
    book.OnBroadcast(streamed.Message());
    Select({"SIP1"});
    view.reason = "r";
    actions.Cancel();
    EXPECT_EQ(Taken(host.requests), Texts{CancelRequest("SIP1", "r", "MOBILE")});
}

TEST_F(BookActionsTest, WhatHappensUnderTheQuestionsIsBorne) {
    Row("SIP1");
    Row("SIP2");
    Select({"SIP1", "SIP2"});
    view.duringReason = [&] {
        Row("SIP1", "cancelled"); // a stream takes a row away
        actions.Cancel();         // and a second press is no second cancellation
    };
    actions.Cancel();
    EXPECT_EQ(Taken(host.requests).size(), 2u);
    EXPECT_EQ(view.questions.size(), 1u);
    // The window is closed and opened anew: the collected rows are no more.
    Select({"SIP2"});
    view.duringQuestion = [&] { book.Open({2027, 1, 31}); };
    actions.Cancel();
    EXPECT_EQ(host.requests.back().find("cancel_sip_order"), std::string::npos);
    Row("SIP2");
    Select({"SIP2"});
    view.duringReason = [&] { session.End(); };
    const std::size_t sent = host.requests.size();
    actions.Cancel();
    EXPECT_EQ(host.requests.size(), sent);
}

TEST_F(BookActionsTest, EachStepFailsWithItsTextAndFailuresAreToldTogether) {
    Row("SIP1", "active");
    Select({"SIP1"});
    const struct {
        int call;
        const char *cancel, *pause;
        std::size_t paused;
    } rows[] = {
        {1, "Adding request cancel_sip_order failed", "Failed to add the request pause_sip_order", 0},
        {2, "SIP number not added", "Failed to add the SIP ID", 0},
        {7, "Failed to add Order Source", nullptr, 1},
    };
    for (const auto& row : rows) {
        std::optional<FailQmxCall> failing(std::in_place, FailQmxCall::addData, row.call);
        actions.Cancel();
        EXPECT_EQ(Taken(view.boxes), Texts{row.cancel});
        EXPECT_EQ(Taken(host.requests).size(), 0u);
        failing.emplace(FailQmxCall::addData, row.call);
        actions.Pause();
        EXPECT_EQ(Taken(view.boxes), row.pause ? Texts{row.pause} : Texts{});
        EXPECT_EQ(Taken(host.requests).size(), row.paused);
    }
    host.refuses = true;
    actions.Pause();
    Row("SIP2", "Paused");
    Select({"SIP2", "SIP1"});
    actions.Resume();
    actions.Cancel();
    const char* notSent = "Sending request cancel_sip_orders failed";
    EXPECT_EQ(view.boxes,
              (Texts{"Sending Request pause_sip_order Failed", "Sending Request pause_sip_order Failed",
                     std::string(notSent) + "\n" + notSent
                         + "\n\nCancel: 0 of 2 requests were sent.\nNot sent: 2."}));
}

TEST_F(BookActionsTest, StatusRefusesPauseResumeAndModify) {
    struct Row_ {
        const char* status;
        const char* pause;
        const char* resume;
        const char* modify;
    };
    const char* notPaused = "Cannot Resume - order is not paused";
    const Row_ rows[] = {
        {"active", "", notPaused, ""},
        {"Paused", "Cannot pause - order is already paused", "", ""},
        {"paused", "", notPaused, ""},
        {"canceled", "", notPaused, ""}, // one l passes every check but that of resuming
        {"cancelled", "Cannot pause - order is cancelled", notPaused,
         "Cannot modify SIP. Order status: cancelled"},
        {"expired", "Cannot pause - order is expired", notPaused, "Cannot modify SIP. Order status: expired"},
    };
    Row("SIP1");
    for (const Row_& row : rows) {
        Row("SIP1", row.status);
        Select({"SIP1"});
        const struct {
            void (*act)(BookActions&);
            const char* refusal;
            bool opens;
        } checks[] = {
            {[](BookActions& on) { on.Pause(); }, row.pause, false},
            {[](BookActions& on) { on.Resume(); }, row.resume, false},
            {[](BookActions& on) { on.Modify(); }, row.modify, true},
        };
        for (const auto& [act, refusal, opens] : checks) {
            host.requests.clear();
            host.log.clear();
            view.modified.clear();
            act(actions);
            const bool done = !*refusal;
            EXPECT_EQ(Taken(view.boxes), done ? Texts{} : Texts{refusal}) << row.status;
            EXPECT_EQ(host.requests.size(), done && !opens) << row.status;
            EXPECT_EQ(view.modified.size(), done && opens) << row.status;
            EXPECT_EQ(host.log, done && !opens ? Texts{"Request sent Pause SIP Order: SIP1"} : Texts{});
        }
    }
    Row("SIP2", "Paused");
    Select({"SIP2"});
    actions.Resume();
    EXPECT_EQ(host.LastRequest(), "resume_sip_order registrationNumber=SIP2");
}

TEST_F(BookActionsTest, AnswersRemoveSelectedRowsAndShowTexts) {
    for (const char* number : {"SIP1", "SIP2", "SIP3"})
        Row(number);
    Select({"SIP1", "SIP3"});
    Answer("cancel_sip_order", "userText=done");
    Answer("cancel_sip_order", "echoedNumber=SIP2"); // not selected
    Answer("cancel_sip_order", "echoedNumber=SIP9");
    EXPECT_EQ(view.registered.rows.size(), 3u);
    Answer("cancel_sip_order", "echoedNumber=SIP1");
    EXPECT_EQ(Numbers(book, view.registered), "SIP3 SIP2");
    EXPECT_EQ(view.registered.selected.size(), 1u);
    EXPECT_EQ(Taken(view.boxes), Texts{"SIP1 Order Cancelled "});
    EXPECT_EQ(Taken(host.log), Texts{"SIP1 Order Cancelled "});
    EXPECT_EQ(book.Records().Size(), 3u) << "the record stays";
    // An error is logged, and the handling runs all the same.
    Answer("cancel_sip_order", "errorCode=5 echoedNumber=SIP3");
    EXPECT_EQ(Numbers(book, view.registered), "SIP2");
    EXPECT_EQ(Taken(host.log),
              (Texts{"Error in response : cancel_sip_order . Error Code : 5", "SIP3 Order Cancelled "}));
    view.boxes.clear();
    for (const char* request : {"pause_sip_order", "resume_sip_order", "add_sip_orders"}) {
        Answer(request, {});
        Answer(request, {{tag::userText, {request}}});
        Answer(request, "errorCode=5 userText=refused");
        EXPECT_EQ(Taken(view.boxes), (Texts{request, "refused"}));
    }
    EXPECT_EQ(host.log.size(), 3u);
    // Of a few rows each goes with its answer, and the summary comes with the last.
    Row("SIP4");
    Select({"SIP2", "SIP4"});
    actions.Cancel();
    Answer("cancel_sip_order", "echoedNumber=SIP4");
    EXPECT_EQ(Numbers(book, view.registered), "SIP2");
    EXPECT_EQ(host.log.back(), "SIP4 Order Cancelled ");
    EXPECT_EQ(view.boxes, Texts{});
}

} // namespace
} // namespace planfold::test
