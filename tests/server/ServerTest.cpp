// What the server answers, what it journals, and what is left of it after a restart.

#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

const Fields kAskMode{{kTagRequestName, "get_sip_operation_mode"}};
using Answers = std::vector<std::string>;
const char* const kRegistered =
    "32767=add_sip_orders 20008=SIP registered. Registration No : SIP2603020000001 54001=CL1";

TEST(Server, OperationModeIsAnsweredInEveryShape) {
    const TemporaryFolder folder;
    const struct {
        std::vector<Frequency> frequencies;
        OperationModeShape shape;
        const char* answer;
    } rows[] = {
        {{{"monthly", 6}, {"yearly", 2}}, OperationModeShape::list, " 10012=monthly|yearly 54101=6|2"},
        {{{"monthly", 6}, {"yearly", {}}}, OperationModeShape::list, " 10012=monthly|yearly 54101=6"},
        {{}, OperationModeShape::list, " 10012=0"},
        {{{"daily", 3}}, OperationModeShape::listThenZero, " 10012=daily|0 54101=3"},
        {{{"daily", 3}}, OperationModeShape::bare, ""},
    };
    for (const auto& row : rows) {
        ServerConfig config;
        config.frequencies = row.frequencies;
        config.operationModeShape = row.shape;
        RunningServer running(folder.File("journal"), config);
        EXPECT_EQ(running.Ask(kAskMode), Answers{"32767=get_sip_operation_mode" + std::string(row.answer)});
    }
}

TEST(Server, RegistrationIsAnsweredJournaledAndThereAfterARestart) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    std::string record;
    {
        RunningServer running(path);
        EXPECT_EQ(running.Ask(Order()), Answers{kRegistered});
        record = running.server->Find("SIP2603020000001")->Json();
        EXPECT_EQ(FileText(path), JournalLine(record));
    }
    RunningServer again(path);
    ASSERT_EQ(again.server->Registrations().size(), 1u);
    EXPECT_EQ(again.server->Registrations()[0].Json(), record);
    // Sent again after the restart it is the same order; another one goes on counting.
    EXPECT_EQ(again.Ask(Order()), Answers{kRegistered});
    EXPECT_EQ(again.server->Registrations().size(), 1u);
    again.Ask(Order({{kTagRequestIdentifier, "id-2"}}));
    EXPECT_TRUE(again.server->Find("SIP2603020000002"));
}

TEST(Server, RecordCarriesTheFieldsOfTheBook) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    running.Ask(Order());
    qmx::MessageWriter writer;
    const std::string bytes = running.server->Registrations().at(0).Message(writer);
    const qmx::MessageReader reader(bytes);
    EXPECT_EQ(qmx::Dump(reader.Handle()),
              "10012=monthly 10100=1013 10303=active 10615=06-Mar-2026 12003=B 12005=DAY 12008=MKT "
              "31003=USER1 49165=06-Mar-2026 53063=123450 54001=CL1 54152=value 54158=id-1 54211=PLANFOLD "
              "54270=02-Mar-2026 63001=nse_cm 63100=ALPHA-EQ 63415=12 64030=CNC 64053= 64056=BROKER "
              "64756=TWS 64804=SIP2603020000001 64987=06-Feb-2027");
}

TEST(Server, OrdersWithoutAnIdentifierAreEachTheirOwn) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    running.Ask(Order({{kTagRequestIdentifier, ""}}));
    running.Ask(Order({{kTagRequestIdentifier, ""}}));
    EXPECT_EQ(running.server->Registrations().size(), 2u);
}

TEST(Server, RefusalLeavesNoTraceAndMayBeRepairedUnderTheSameIdentifier) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    EXPECT_EQ(running.Ask(Order({{kTagSide, "X"}})),
              Answers{"32767=add_sip_orders 32766=102 20008=The side cannot be \"X\""});
    EXPECT_EQ(running.Ask({{kTagRequestName, "who_knows"}}),
              Answers{"32767=who_knows 32766=100 20008=The server does not know this request"});
    EXPECT_EQ(running.Ask({{1, "no name"}}),
              Answers{"32767= 32766=100 20008=The server does not know this request"});
    EXPECT_EQ(FileText(folder.File("journal")), "");
    EXPECT_EQ(running.Ask(Order()), Answers{kRegistered});
}

TEST(Server, FaultsArePlayedOnTheRequestsTheyName) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    running.server->Config().faults = {{"add_sip_orders", {.errorCode = "99"}}};
    EXPECT_EQ(running.Ask(Order()),
              Answers{"32767=add_sip_orders 32766=99 20008=Refused by the server's configuration"});
    EXPECT_TRUE(running.server->Registrations().empty());
    EXPECT_EQ(running.Ask(kAskMode).size(), 1u);

    running.server->Config().faults = {{"*", {.garbage = true}}};
    EXPECT_EQ(running.Ask(kAskMode), Answers{"1=\\xFF\\x01 2="});
    running.server->Config().faults = {{"*", {.silent = true}}};
    EXPECT_EQ(running.Ask(Order()), Answers{});
    EXPECT_EQ(running.server->Registrations().size(), 1u);
}

TEST(Server, TextsInAnyCodePageSurviveTheJournal) {
    std::string every;
    for (int byte = 1; byte < 256; ++byte)
        every += static_cast<char>(byte);
    Registration registration;
    registration.Set(kTagRegistrationNumber, "SIP1");
    registration.Set(kTagUserText, every);
    const std::string json = registration.Json();
    EXPECT_EQ(json.find('\n'), std::string::npos);
    EXPECT_EQ(Registration::FromJson(json)->Text(kTagUserText), every);
}

TEST(Server, RecordOfAnotherKindStopsItFromServing) {
    for (const char* content :
         {"", "[]", "{\"registration\":1}", "{\"registration\":{}}", "{\"registration\":{\"64804\":1}}",
          "{\"registration\":{\"64804\":\"A\",\"x\":\"B\"}}", "{\"registration\":{\"64804\":\"\\u0100\"}}",
          "{\"registration\":{\"99999999999\":\"B\",\"64804\":\"A\"}}"}) {
        const TemporaryFolder folder;
        WriteFileText(folder.File("journal"), JournalLine(content));
        RunningServer running(folder.File("journal"));
        EXPECT_EQ(running.server->ReplayError(), "journal record 1 is not one this server knows") << content;
        EXPECT_EQ(running.Ask(kAskMode),
                  Answers{"32767=get_sip_operation_mode 32766=106 20008=" + running.server->ReplayError()});
    }
}

} // namespace
} // namespace vesk
