// What the server takes for its configuration, what it answers, what it journals, and what is left of it after
// a restart.

#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

const Fields kAskMode = "get_sip_operation_mode";
using Answers = std::vector<std::string>;
const char* const kRegistered =
    "echoedRequest=add_sip_orders userText=SIP registered. Registration No : SIP2603020000001 account=CL1"
    " registrationNumber=SIP2603020000001";

TEST(Server, OperationModeIsAnsweredInEveryShape) {
    const TemporaryFolder folder;
    const struct {
        std::vector<Frequency> frequencies;
        OperationModeShape shape;
        const char* answer;
    } rows[] = {
        {{{"monthly", 6}, {"yearly", 2}},
         OperationModeShape::list,
         " frequency=monthly|yearly minimumPeriods=6|2"},
        {{{"monthly", 6}, {"yearly", {}}},
         OperationModeShape::list,
         " frequency=monthly|yearly minimumPeriods=6"},
        {{}, OperationModeShape::list, " frequency=0"},
        {{{"daily", 3}}, OperationModeShape::listThenZero, " frequency=daily|0 minimumPeriods=3"},
        {{{"daily", 3}}, OperationModeShape::bare, ""},
    };
    for (const auto& row : rows) {
        ServerConfig config;
        config.frequencies = row.frequencies;
        config.operationModeShape = row.shape;
        RunningServer running(folder.File("journal"), config);
        EXPECT_EQ(running.Ask(kAskMode),
                  Answers{"echoedRequest=get_sip_operation_mode" + std::string(row.answer)});
    }
}

TEST(Server, RegistrationIsAnsweredJournaledAndThereAfterARestart) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    std::string record;
    {
        RunningServer running(path);
        EXPECT_EQ(running.Ask(Order("cautionaryFlag=Y")), Answers{kRegistered});
        EXPECT_EQ(running.server->Registrations()[0].Text(tag::cautionaryFlag), "Y");
        record = running.server->Find("SIP2603020000001")->Json();
        EXPECT_EQ(FileText(path), JournalLine(record));
    }
    RunningServer again(path);
    ASSERT_EQ(again.server->Registrations().size(), 1u);
    EXPECT_EQ(again.server->Registrations()[0].Json(), record);
    // Sent again after the restart it is the same order; another one goes on counting.
    EXPECT_EQ(again.Ask(Order()), Answers{kRegistered});
    EXPECT_EQ(again.server->Registrations().size(), 1u);
    again.Ask(Order("orderId=id-2"));
    EXPECT_TRUE(again.server->Find("SIP2603020000002"));
    // Without an order id each is an order of its own.
    again.Ask(Order("orderId="));
    again.Ask(Order("orderId="));
    EXPECT_EQ(again.server->Registrations().size(), 4u);
    // Another user's request is another one, whatever order id it has.
    again.user.loginId = "USER2";
    for (int i = 0; i < 2; ++i)
        again.Ask(Order("loginId=USER2"));
    EXPECT_EQ(again.server->Registrations().size(), 5u);
}

TEST(Server, RefusalLeavesNoTraceAndMayBeRepairedUnderTheSameOrderId) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    EXPECT_EQ(running.Ask(Order("side=X")),
              Answers{"echoedRequest=add_sip_orders errorCode=102 userText=The side cannot be \"X\""});
    running.server->SetClients([](std::string_view account) { return account == "CL1"; });
    EXPECT_EQ(running.Ask(Order("account=CL2")),
              Answers{"echoedRequest=add_sip_orders errorCode=109 userText=There is no client CL2"});
    EXPECT_EQ(running.Ask("who_knows"),
              Answers{"echoedRequest=who_knows errorCode=100 userText=The server does not know this request"});
    EXPECT_EQ(running.Ask({{1, "no name"}}),
              Answers{"echoedRequest= errorCode=100 userText=The server does not know this request"});
    EXPECT_EQ(FileText(folder.File("journal")), "");
    EXPECT_EQ(running.Ask(Order()), Answers{kRegistered});
}

TEST(Server, RecordOfAnotherKindStopsItFromServing) {
    for (const char* content :
         {"", "[]", "{\"registration\":1}", "{\"registration\":{}}", "{\"registration\":{\"64804\":1}}",
          "{\"registration\":{\"64804\":\"A\",\"x\":\"B\"}}", "{\"registration\":{\"64804\":\"\\u0100\"}}",
          "{\"registration\":{\"99999999999\":\"B\",\"64804\":\"A\"}}",
          "{\"restricted\":{\"46000\":\"2026\",\"49165\":\"6\",\"63025\":\"5\"}}",
          "{\"order\":{\"64804\":\"A\"},\"trades\":[]}"}) {
        const TemporaryFolder folder;
        WriteFileText(folder.File("journal"), JournalLine(content));
        RunningServer running(folder.File("journal"));
        EXPECT_EQ(running.server->ReplayError(), "journal record 1 is not one this server knows") << content;
        EXPECT_EQ(running.Ask(kAskMode), Answers{"echoedRequest=get_sip_operation_mode errorCode=106 userText="
                                                 + running.server->ReplayError()});
    }
}

TEST(ServerConfig, RefusesWithFileLineAndReason) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"", "s:1: this is not JSON"},
        {"{\n\"faults\": {\n,", "s:3: this is not JSON"},
        {"{\n\"fault\": {}}", "s:2: unknown setting \"fault\""},
        {"{\n\"fills\": {\"rejected\": 1\n\n", "s:2: this is not JSON"},
        {"{\"faults\": {\n\"a\": {\"error\": \"9\"},\n\"b\": {\"error\": 9\n}}}",
         "s:3: \"error\" must be a text"},
        {"{\"operationMode\": {\"frequencies\": [{\"name\": \"minimum\"},\n{\"name\": \"b\",\n\"minimum\": "
         "-1}]}}",
         "s:3: \"minimum\" must lie between 0 and 100000"},
        {"{\"faults\": {\"a\": {\"disconnect\": 1000001}}}", "s:1: \"disconnect\" must not exceed 1000000"},
        {"{\n\"fills\": {\"rejected\": 71}}", "s:2: \"rejected\" and \"partial\" must not exceed 100 together"},
        {"{\"faults\": {\"a\": {\"error\": \"\"}}}", "s:1: \"error\" must be a code of 1 to 255 bytes"},
        {"{\"operationMode\": {\"frequencies\": [{\"minimum\": 1}]}}", "s:1: a frequency needs a \"name\""},
        {"{\"operationMode\": {\n\"frequencies\": [{\"name\": \"a\"}, {\"name\": \"b\", \"minimum\": 1}]}}",
         "s:2: only the last frequencies may lack a \"minimum\""},
    };
    for (const auto& row : rows) {
        const ConfigResult result = ParseServerConfig(row.text, "s");
        EXPECT_FALSE(result.config) << row.text;
        EXPECT_EQ(result.error, row.error);
    }
}

} // namespace
} // namespace vesk
