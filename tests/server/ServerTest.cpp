// What the server takes for its configuration, what it answers, what it journals, and what is left of it after
// a restart.

#include "host/server/MarketServer.h"
#include "tests/server/ServerFixture.h"

#include <optional>

namespace vesk {
namespace {

const Fields kAskMode = "get_sip_operation_mode";
using Answers = std::vector<std::string>;
const char* const kRegistered =
    "echoedRequest=add_sip_orders userText=SIP registered. Registration No : SIP2603020000001 account=CL1"
    " registrationNumber=SIP2603020000001 orderId=id-1";

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
        EXPECT_EQ(running.server->Held().All()[0].Text(tag::cautionaryFlag), "Y");
        record = running.server->Held().Find("SIP2603020000001")->Json();
        EXPECT_EQ(FileText(path), JournalOf({record}));
    }
    RunningServer again(path);
    ASSERT_EQ(again.server->Held().All().size(), 1u);
    EXPECT_EQ(again.server->Held().All()[0].Json(), record);
    // Sent again after the restart it is the same order; another one goes on counting.
    EXPECT_EQ(again.Ask(Order()), Answers{kRegistered});
    EXPECT_EQ(again.server->Held().All().size(), 1u);
    again.Ask(Order("orderId=id-2"));
    EXPECT_TRUE(again.server->Held().Find("SIP2603020000002"));
    // Without an order id each is an order of its own.
    again.Ask(Order("orderId="));
    again.Ask(Order("orderId="));
    EXPECT_EQ(again.server->Held().All().size(), 4u);
    // Another user's request is another one, whatever order id it has.
    again.user.loginId = "USER2";
    for (int i = 0; i < 2; ++i)
        again.Ask(Order("loginId=USER2"));
    EXPECT_EQ(again.server->Held().All().size(), 5u);
}

TEST(Server, RefusalLeavesNoTraceAndMayBeRepairedUnderTheSameOrderId) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    EXPECT_EQ(
        running.Ask(Order("side=X")),
        Answers{"echoedRequest=add_sip_orders errorCode=102 userText=The side cannot be \"X\" orderId=id-1"});
    running.server->SetClients([](std::string_view account) { return account == "CL1"; });
    EXPECT_EQ(running.Ask(Order("account=CL2 echoedNumber=7")),
              Answers{"echoedRequest=add_sip_orders errorCode=109 userText=There is no client CL2 "
                      "echoedNumber=7 orderId=id-1"});
    EXPECT_EQ(running.Ask("who_knows echoedNumber=7 orderId=id"),
              Answers{"echoedRequest=who_knows errorCode=100 userText=The server does not know this request"});
    EXPECT_EQ(running.Ask({{1, "no name"}}),
              Answers{"echoedRequest= errorCode=100 userText=The server does not know this request"});
    EXPECT_EQ(FileText(folder.File("journal")), "");
    EXPECT_EQ(running.Ask(Order()), Answers{kRegistered});
}

TEST(MarketServer, TakesOrdersForItsListsClientsAndForAnybodyWithoutAList) {
    const struct {
        const char *list, *account;
        bool isTaken;
    } cases[] = {
        {"client,name,mapped\n", "CL2", true},
        {"client,name,mapped\nCL1,Arbor,Y\n", "CL1", true},
        {"client,name,mapped\nCL1,Arbor,Y\n", "CL2", false},
    };
    const TemporaryFolder folder;
    const ScripMaster master;
    for (const auto& each : cases) {
        auto clients = ClientList::Parse(each.list, "clients.csv");
        ASSERT_TRUE(clients);
        MarketServer market(Journal::Open(folder.File("journal")), {}, master, clients.Value(), {}, false);
        const std::string bytes = Message(Order({{tag::account, each.account},
                                                 {tag::orderId, each.isTaken ? each.account : "id"},
                                                 {tag::startDate, "4070908800"}}));
        const qmx::MessageReader order(bytes);
        const Reply reply = market.Serving().Handle(order.Handle(), {"USER1", "BROKER", ""}, {});
        ASSERT_EQ(reply.answers.size(), 1u);
        const qmx::MessageReader answer(reply.answers.front());
        const std::string told = planfold::test::Named(qmx::Dump(answer.Handle()));
        EXPECT_EQ(told.find("errorCode=109") == told.npos, each.isTaken) << told;
        EXPECT_EQ(told.find("SIP registered") != told.npos, each.isTaken) << told;
    }
}

// What a terminal sends again when it does not know whether the first has come, in a row at one server.
TEST(Server, OrderSentAgainIsOneOrderAndAnotherUnderItsIdentifierIsRefused) {
    const Fields first = Order({{tag::totalPeriod, "24"}}), bare = Order({{tag::orderId, ""}});
    const auto with = [](const Fields& order, std::uint32_t tag, const char* text) {
        Fields changed = order;
        changed[tag] = text;
        return changed;
    };
    struct Row {
        Fields order;
        const char* sentAs;
        const char* number; // empty: it is refused as another one
    };
    std::vector<Row> rows{{first, "1-1", "1"},
                          {bare, "1-2", "2"},
                          {with(first, tag::orderId, "id-3"), "1-1", ""},
                          {with(bare, tag::orderId, "id-3"), "1-2", ""},
                          {with(bare, tag::amountOrQuantity, "5"), "1-2", ""},
                          {with(first, tag::cautionaryFlag, "Y"), "9-1", "1"},
                          {with(first, tag::startDate, "1772755201"), "9-1", "1"}, // of the same day
                          {bare, "1-2", "2"}};
    const std::pair<std::uint32_t, const char*> others[] = {
        {tag::account, "CL2"},          {tag::exchange, "bse_cm"}, {tag::token, "2"},
        {tag::tradingSymbol, "X"},      {tag::side, "S"},          {tag::product, "MIS"},
        {tag::investType, "qty"},       {tag::frequency, "daily"}, {tag::amountOrQuantity, "500"},
        {tag::startDate, "1772841600"}, {tag::totalPeriod, "6"},
    };
    for (const auto& [tag, text] : others)
        rows.push_back({with(first, tag, text), "9-1", ""});
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    std::optional<RunningServer> running(path);
    const auto check = [&](const char* when) {
        for (const Row& row : rows) {
            const std::string number = "SIP260302000000" + std::string(row.number);
            const std::string answer = running->Ask(row.order, row.sentAs)[0];
            const std::string expected =
                *row.number ? "Registration No : " + number + " account=" : "errorCode=110";
            EXPECT_NE(answer.find(expected), answer.npos) << when << ": " << answer;
        }
        EXPECT_EQ(running->server->Held().All().size(), 2u) << when;
        EXPECT_EQ(running->server->Held().All()[0].Text(tag::orderId), "id-1") << when;
    };
    check("at once");
    const std::string journal = FileText(path);
    for (const char* change :
         {"modify_sip_order amountOrQuantity=500 totalPeriod=6",
          "modify_sip_order amountOrQuantity=9 totalPeriod=7", "cancel_sip_order orderId=cancel"})
        running->Ask(change + std::string(" registrationNumber=SIP2603020000001"));
    check("when it is changed and cancelled");
    EXPECT_EQ(running->server->Upkeep().Renew(), "");
    running.reset();
    running.emplace(path);
    check("from a journal that was written anew");
    // As older servers wrote it: a line with the cancellation's identifier behind the order's.
    running.reset();
    const std::string record = journal.substr(0, journal.find('\n'));
    const std::string placed = record.substr(record.find('{'));
    std::string cancelled = placed;
    cancelled.replace(cancelled.find("id-1"), 4, "cancel");
    WriteJournal(path, JournalOf({placed, cancelled}));
    running.emplace(path);
    EXPECT_EQ(running->Ask(first), Answers{kRegistered});
    EXPECT_EQ(running->server->Held().All()[0].Text(tag::orderId), "id-1");
}

TEST(Server, RecordOfAnotherKindStopsItFromServing) {
    for (const char* content :
         {"", "[]", "{\"registration\":1}", "{\"registration\":{}}", "{\"registration\":{\"64804\":1}}",
          "{\"registration\":{\"64804\":\"A\",\"x\":\"B\"}}", "{\"registration\":{\"64804\":\"\\u0100\"}}",
          "{\"registration\":{\"99999999999\":\"B\",\"64804\":\"A\"}}",
          "{\"restricted\":{\"46000\":\"2026\",\"49165\":\"6\",\"63025\":\"5\"}}",
          "{\"order\":{\"64804\":\"A\"},\"trades\":[]}"}) {
        const TemporaryFolder folder;
        WriteJournal(folder.File("journal"), JournalOf({content}));
        RunningServer running(folder.File("journal"));
        EXPECT_EQ(running.server->Journal().ReplayError(), "journal record 1 is not one this server knows")
            << content;
        EXPECT_EQ(running.Ask(kAskMode), Answers{"echoedRequest=get_sip_operation_mode errorCode=106 userText="
                                                 + running.server->Journal().ReplayError()});
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
        {"{\"faults\": {\"a\": {\"disconnectBefore\": -1}}}",
         "s:1: \"disconnectBefore\" must be a whole number"},
        {"{\"faults\": {\"a\": {\"twice\": 1}}}", "s:1: \"twice\" must be true or false"},
        {"{\n\"fills\": {\"rejected\": 71}}", "s:2: \"rejected\" and \"partial\" must not exceed 100 together"},
        {"{\n\"fills\": {\"rejected\": 60, \"partial\": 41}}",
         "s:2: \"rejected\" and \"partial\" must not exceed 100 together"},
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
    const ConfigResult good =
        ParseServerConfig("{\"fills\": {\"rejected\": 60, \"partial\": 40, \"seed\": 9}}", "s");
    ASSERT_TRUE(good.config) << good.error;
    EXPECT_EQ(good.config->fills.rejected, 60);
    EXPECT_EQ(good.config->fills.partial, 40);
    EXPECT_EQ(good.config->fills.seed, 9u);
}

} // namespace
} // namespace vesk
