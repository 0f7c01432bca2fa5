// Answers, subscriptions and controls.

#include "plugin/messaging/Answer.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/messaging/Subscriptions.h"
#include "plugin/orderentry/OperationMode.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class AnswerTest : public ::testing::Test {
protected:
    void SetUp() override {
        session.host = ResolveHostCallbacks(session.lookup);
        host.peerA = "A";
        host.peerB = "B";
    }

    HostDouble host;
    RecordedNotices notices;
    RecordingControl control;
    Session session{host.Lookup(), host.IdentityStrings(), host.strings};
};

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
    EXPECT_EQ(number, 0);
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
    const auto line = [](std::string name) { return "Error in response : " + name + " . Error Code : 17"; };
    struct Row {
        const char* name; // null: not echoed
        bool error;
        std::string handled;
        std::vector<std::string> log;
    };
    const Row rows[] = {
        {"plain", false, "plain ", {}},
        {"plain", true, "", {line("plain")}},
        {"either", true, "either ", {line("either")}},
        {"own", true, "own ", {}},
        {"Plain", false, "", {}},
        {"unknown", true, "", {line("unknown")}},
        {nullptr, false, "", {}},
        {nullptr, true, "", {line("")}},
    };
    for (const Row& row : rows) {
        std::vector<Received::Field> fields{{5, {"x"}}};
        if (row.name) fields.push_back({32767, {row.name}});
        if (row.error) fields.push_back({32766, {"17"}});
        const Received answer(fields);
        Window window;
        host.log.clear();
        Dispatch<Window>(window, session, kHandlers, Answer(answer.Message()));
        EXPECT_EQ(window.handled, row.handled);
        EXPECT_EQ(host.log, row.log);
    }
}

TEST_F(AnswerTest, OperationModeAnswersOfEveryShape) {
    struct Row {
        std::vector<Received::Field> fields;
        bool understood;
        std::vector<std::string> frequencies;
        int mode;
        double monthly;
    };
    const std::vector<std::string> defaults{"daily", "weekly", "monthly"};
    const Row rows[] = {
        {{{10012, {"monthly", "yearly"}}, {54101, {"6", "2"}}}, true, {"monthly", "yearly"}, 1, 6},
        {{{10012, {"daily", "monthly"}}}, true, {"daily", "monthly"}, 1, 99}, // no minimum: the old one stays
        {{{10012, {"hourly", "monthly"}}, {54101, {"3", "4.5"}}}, true, {"hourly", "monthly"}, 1, 4.5},
        {{{10012, {"0"}}}, true, defaults, 0, 99},
        {{{10012, {"monthly", "0", "yearly"}}, {54101, {"6", "1", "2"}}},
         true,
         {"monthly", "daily", "weekly", "monthly"},
         0,
         6},
        {{{32766, {"5"}}}, true, defaults, 0, 99},
        {{{32766, {"5"}}, {10012, {"monthly"}}}, true, {"monthly"}, 1, 99},
        {{{20008, {"text"}}}, false, {}, 7, 99},
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

TEST_F(AnswerTest, LoginIdentityGoesByMode) {
    const auto identity = [&](int mode) {
        session.m_nLoginMode = mode;
        const LoginIdentity found = session.GetLoginIdentity();
        return std::to_string(found.tag) + "=" + std::string(found.value);
    };
    EXPECT_EQ(identity(0), "64056=");
    EXPECT_EQ(identity(1), "64056=A");
    EXPECT_EQ(identity(2), "64053=B");
    for (const int mode : {3, 4, -1, 99})
        EXPECT_EQ(identity(mode), "31003=DEALER1") << mode;
}

TEST_F(AnswerTest, SubscriptionsGoByModeAndClientOverview) {
    enum Lacks { nothing, overviewExport, accountsExport };
    struct Row {
        int mode;
        int overview;
        Lacks lacks;
        std::vector<std::string> lines;
    };
    const std::string s = "54211=PLANFOLD 64804=-";
    const Row rows[] = {
        {4, 1, nothing, {s + " 54001=C1", s + " 54001=C2"}},
        {4, 0, nothing, {s + " 31003=DEALER1"}},
        {4, 1, accountsExport, {s + " 31003=DEALER1"}},
        {4, 1, overviewExport, {s + " 31003=DEALER1"}},
        {0, 1, nothing, {s + " 64056=-"}},
        {1, 1, nothing, {s + " 64056=A"}},
        {2, 0, nothing, {s + " 64053=B"}},
        {3, 1, nothing, {s + " 54001=C1", s + " 54001=C2"}},
        {3, 0, nothing, {s + " 31003=DEALER1 54001=C1", s + " 31003=DEALER1 54001=C2"}},
        {3, 0, accountsExport, {s + " 31003=DEALER1"}},
    };
    host.accounts = {"C1", "C2"};
    for (const Row& row : rows) {
        host.missing.clear();
        if (row.lacks == overviewExport) host.missing.insert("pu_get_client_overview_status");
        if (row.lacks == accountsExport) host.missing.insert("pu_get_all_mappedAccount_ids");
        session.host = ResolveHostCallbacks(session.lookup);
        session.m_nLoginMode = row.mode;
        host.clientOverview = row.overview;
        control.subscribed.clear();
        SubscribeBroadcasts(session, &control, notices);
        EXPECT_EQ(control.subscribed, row.lines) << row.mode << " " << row.overview << " " << row.lacks;
    }
    EXPECT_TRUE(notices.shown.empty());

    control.subscribed.clear();
    SubscribeIdentity(session, &control, notices);
    EXPECT_EQ(control.subscribed, std::vector<std::string>{"31003=DEALER1 64804=-"});
}

TEST_F(AnswerTest, FailedSubscriptionsAreToldAndTheNextAccountGoesOn) {
    host.accounts = {"C1", "C2"};
    session.m_nLoginMode = 3;
    control.refuses = true;
    SubscribeBroadcasts(session, &control, notices);
    SubscribeIdentity(session, &control, notices);
    EXPECT_EQ(control.subscribed.size(), 3u);
    EXPECT_EQ(notices.shown, std::vector<std::string>(3, "Subscription  is failed ,error code : 42"));

    notices.shown.clear();
    host.accounts.clear();
    SubscribeBroadcasts(session, &control, notices);
    EXPECT_TRUE(notices.shown.empty());
}

class Notifier final : public CKeloRxNotifierBase {
public:
    void OnBroadcast(void*, std::uint32_t, void*) override {}
    void OnResponse(void*, void*, void*) override {}
};

TEST_F(AnswerTest, ControlsAreTakenAndGivenBackOrTold) {
    struct Row {
        std::set<std::string> missing;
        std::size_t told;
        bool control;
        int returned;
    };
    const Row rows[] = {
        {{}, 0, true, 1},
        {{"GetKeloRxControl"}, 1, false, 0},
        {{"DestoryKeloRxCOntrol"}, 1, false, 0},
        {{"GetKeloRxControl", "DestoryKeloRxCOntrol"}, 2, false, 0},
    };
    host.control = &control;
    for (const Row& row : rows) {
        host.missing = row.missing;
        host.controlsReturned = 0;
        notices.shown.clear();
        Notifier notifier;
        {
            const RxLink link(session.lookup, kRxRequests, &notifier, notices);
            EXPECT_EQ(link.Control() != nullptr, row.control);
        }
        EXPECT_EQ(notices.shown, std::vector<std::string>(row.told, "Exe is not compatible with the plugin"));
        EXPECT_EQ(host.controlsReturned, row.returned);
    }
}

} // namespace
} // namespace planfold::test
