// Answers, subscriptions and controls.

#include "plugin/messaging/Answer.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderentry/OperationMode.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class AnswerTest : public ::testing::Test, protected Stage {};

TEST_F(AnswerTest, FieldsAreReadWithTheirStatus) {
    const Received answer(
        {{1, {"one"}}, {2, {"", std::string("a\0b", 3)}}, {3, {"123456789012345678901234567890123456789"}}});
    struct Row {
        std::uint32_t tag;
        std::uint32_t index;
        const char* text;
        int status;
    };
    const Row rows[] = {
        {1, 0, "one", kFieldRead}, {1, 1, "", kFieldUnreadable}, {2, 0, "", kFieldRead},
        {2, 1, "a", kFieldRead},   {9, 0, "", kFieldNotPresent},
    };
    for (const Row& row : rows) {
        std::string text = "old";
        int status = -1;
        EXPECT_EQ(GetFieldString(answer.Message(), row.tag, row.index, text, status), row.status == kFieldRead);
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(status, row.status);
    }
    std::int64_t number = -1;
    int status = -1;
    EXPECT_FALSE(GetFieldNumber(answer.Message(), 9, 0, number, status));
    EXPECT_TRUE(GetFieldNumber(answer.Message(), 1, 0, number, status));
    EXPECT_EQ(number, 0);
    EXPECT_TRUE(GetFieldNumber(answer.Message(), 3, 0, number, status));
    EXPECT_EQ(number, INT64_MAX); // 32 digits are more than a number holds
    EXPECT_FALSE(GetFieldNumber(nullptr, 1, 0, number, status));
    EXPECT_EQ(status, kFieldUnreadable);
}

struct Window {
    void OnPlain(const Answer&) { handled += "plain "; }
    void OnEither(const Answer&) { handled += "either "; }
    void OnOwn(const Answer&) { handled += "own "; }
    std::string handled;
};
constexpr AnswerHandler<Window> kHandlers[] = {
    {"plain", &Window::OnPlain},
    {"either", &Window::OnEither, OnError::logAndHandle},
    {"own", &Window::OnOwn, OnError::handle},
};

TEST_F(AnswerTest, AnswersGoByNameAndErrorsToTheLog) {
    struct Row {
        const char* name; // null: not echoed
        bool error;
        const char* handled;
        bool logged;
    };
    const Row rows[] = {
        {"plain", false, "plain ", false}, {"plain", true, "", true},   {"either", true, "either ", true},
        {"own", true, "own ", false},      {"Plain", false, "", false}, {"unknown", true, "", true},
        {nullptr, false, "", false},       {nullptr, true, "", true},
    };
    for (const Row& row : rows) {
        Fields fields{{5, {"x"}}};
        const std::string name = row.name ? row.name : "";
        if (row.name) fields.push_back({tag::echoedRequest, {name}});
        if (row.error) fields.push_back({tag::errorCode, {"17"}});
        const Received answer(fields);
        Window window;
        host.log.clear();
        Dispatch<Window>(window, session, kHandlers, Answer(answer.Message()));
        EXPECT_EQ(window.handled, row.handled) << name;
        EXPECT_EQ(host.log, row.logged ? Texts{"Error in response : " + name + " . Error Code : 17"} : Texts{});
    }
}

TEST_F(AnswerTest, OperationModeAnswersOfEveryShape) {
    struct Row {
        Fields fields;
        bool understood;
        Texts frequencies;
        int mode;
        double monthly;
    };
    const Texts defaults{"daily", "weekly", "monthly"};
    const Row rows[] = {
        {"frequency=monthly,yearly minimumPeriods=6,2", true, {"monthly", "yearly"}, 1, 6},
        {"frequency=daily,monthly", true, {"daily", "monthly"}, 1, 99}, // no minimum: the old one stays
        {"frequency=hourly,monthly minimumPeriods=3,4.5", true, {"hourly", "monthly"}, 1, 4.5},
        {"frequency=0", true, defaults, 0, 99},
        {"frequency=monthly,0,yearly minimumPeriods=6,1,2",
         true,
         {"monthly", "daily", "weekly", "monthly"},
         0,
         6},
        {"errorCode=5", true, defaults, 0, 99},
        {"errorCode=5 frequency=monthly", true, {"monthly"}, 1, 99},
        {"userText=text", false, {}, 7, 99},
    };
    for (const Row& row : rows) {
        session.m_nSipOperationMode = 7;
        session.m_dMinSipMonthly = 99;
        const Received received(row.fields);
        const OperationModeAnswer answer = ReadOperationMode(session, Answer(received.Message()));
        EXPECT_EQ(answer.understood, row.understood);
        EXPECT_EQ(answer.frequencies, row.frequencies);
        EXPECT_EQ(session.m_nSipOperationMode, row.mode);
        EXPECT_EQ(answer.serverPeriods, row.mode == 1);
        EXPECT_EQ(session.m_dMinSipMonthly, row.monthly);
    }
}

TEST_F(AnswerTest, SubscriptionsGoByModeAndClientOverview) {
    struct Row {
        int mode;
        int overview;
        const char* lacks;
        Texts lines;
    };
    const std::string s = "streamName=PLANFOLD registrationNumber=-";
    const char *overview = "pu_get_client_overview_status", *accounts = "pu_get_all_mappedAccount_ids";
    const Row rows[] = {
        {4, 1, "", {s + " account=C1", s + " account=C2"}},
        {4, 1, accounts, {s + " loginId=DEALER1"}},
        {4, 1, overview, {s + " loginId=DEALER1"}},
        {0, 1, "", {s + " peerIdA=-"}},
        {1, 1, "", {s + " peerIdA=BROKER"}},
        {2, 0, "", {s + " peerIdB=BRANCH"}},
        {3, 2, "", {s + " account=C1", s + " account=C2"}},
        {3, 0, "", {s + " loginId=DEALER1 account=C1", s + " loginId=DEALER1 account=C2"}},
        {3, 0, accounts, {s + " loginId=DEALER1"}},
    };
    host.accounts = {"C1", "C2"};
    for (const Row& row : rows) {
        host.missing = {row.lacks};
        session.host = ResolveHostCallbacks(session.lookup);
        session.m_nLoginMode = row.mode;
        host.clientOverview = row.overview;
        host.subscriptions.clear();
        SubscribeBroadcasts(kPass, session, &control, notices);
        EXPECT_EQ(host.subscriptions, row.lines) << row.mode << " " << row.overview << " " << row.lacks;
    }
    EXPECT_EQ(notices.shown, Texts{});
    SubscribeIdentity(kPass, session, &control, notices);
    EXPECT_EQ(host.subscriptions.back(), "loginId=DEALER1 registrationNumber=-");
    EXPECT_EQ(host.misuses, Texts{});
}

TEST_F(AnswerTest, AControlIsTakenOnlyWhenItCanBeGivenBack) {
    const struct {
        const char* lacks;
        RxControlKind kind;
        bool taken;
    } rows[] = {
        {"", kRxRequests, true},
        {"", kRxAccountStream, true},
        {"GetKeloRxControl", kRxRequests, false},
        {"DestoryKeloRxCOntrol", kRxRequests, false},
    };
    for (const auto& [lacks, kind, taken] : rows) {
        host.missing = {lacks};
        host.calls.clear();
        {
            RxLink link(host.Lookup(), kind, nullptr, &notices);
            EXPECT_EQ(link.Control() != nullptr, taken) << lacks;
            link.Release();
        }
        EXPECT_EQ(host.CallsOf("DestoryKeloRxCOntrol"), taken ? 1 : 0) << lacks;
    }
    EXPECT_EQ(host.misuses, Texts{});
    EXPECT_EQ(notices.shown, Texts(2, "Exe is not compatible with the plugin"));
}

TEST_F(AnswerTest, FailedSubscriptionsAreToldAndTheNextAccountGoesOn) {
    host.accounts = {"C1", "C2"};
    session.m_nLoginMode = 3;
    host.refuses = true;
    SubscribeBroadcasts(kPass, session, &control, notices);
    EXPECT_EQ(host.subscriptions.size(), 2u);
    EXPECT_EQ(notices.shown, Texts(2, "Subscription  is failed ,error code : 42"));
    // The host exits while it is asked: the control is no more.
    host.accounts = {"C1"};
    host.duringAccounts = [&] { session.End(); };
    SubscribeBroadcasts(kPass, session, &control, notices);
    EXPECT_EQ(host.subscriptions.size(), 2u);
}

} // namespace
} // namespace planfold::test
