// What the one who runs the server tells it, line by line at one server.

#include "host/server/ServerCommands.h"
#include "tests/server/ServerFixture.h"

#include <algorithm>

namespace vesk {
namespace {

TEST(Commands, LineByLine) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    const SampleMarket market{{"CL1"}, {{"nse_cm", "1013", "ARBORTOOLS-EQ"}}};
    ServerCommands commands(*running.server, market, true), embedded(*running.server, {});
    const struct {
        ServerCommands& commands;
        const char* line;
        const char* text; // what it is told; of a refusal behind "-"
    } rows[] = {
        {commands, "clock next", "-There is no instalment to come"},
        {commands, "execute 1", "-There is no registration "},
        {commands, "other 2", "Another session placed 2 orders"},
        {commands, " clock\tnext \r", "Server clock at the next instalment: 03-Mar-2026"},
        {commands, "clock 365", "Server clock advanced by 365 days"},
        {commands, "clock 2028-02-29", "Server clock advanced to 29-Feb-2028"},
        {commands, "clock 2028-02-29", "Server clock advanced to 29-Feb-2028"},
        {commands, "clock 2028-02-28", "-The server's clock does not go back from 29-Feb-2028"},
        {commands, "clock 2027-02-29",
         "-\"2027-02-29\" is neither next, nor a whole number of days up to 50000"},
        {commands, "clock 2100-01-01", "-The clock goes no further than 31-Dec-2099"},
        {commands, "fill 2", "Server filled with 2 registrations"},
        {embedded, "fill 2", "-There are no clients or no scrips to make orders of"},
        {commands, "execute 2 SIP2603020000001", "Executed 2 instalments of SIP2603020000001"},
        {commands, "execute 9999 SIP2603020000001", "-There are no more than "},
        {commands, "fault add_sip_orders delay 50", "On add_sip_orders the server plays: delay 50"},
        {embedded, "fault * error 77", "On * the server plays: error 77"},
        {commands, "fault any disconnect", "On any the server plays: disconnect"},
        {commands, "fault before disconnect-before 2", "On before the server plays: disconnect-before 2"},
        {embedded, "fault any disconnect-before",
         "-The terminal's own server has no connection that could be cut"},
        {embedded, "fault any disconnect 3", "-The terminal's own server has no connection that could be cut"},
        {commands, "fault any disconnect -1", "-\"-1\" is no value of \"disconnect\", which takes a number of"},
        {commands, "fault any silent 1", "-\"1\" is no value of \"silent\", which takes none"},
        {commands, "fault any", "-\"fault\" takes REQUEST KIND [VALUE]"},
        {commands, "", "-A command is expected"},
    };
    for (const auto& row : rows) {
        const Told told = row.commands.Run(row.line, running.user, 1);
        const std::string text = (told.isDone ? "" : "-") + told.text;
        EXPECT_TRUE(text.starts_with(row.text)) << row.line << ": " << text;
    }
    EXPECT_EQ(running.server->Held().All().size(), 4u);
    EXPECT_EQ(running.server->Held().All()[0].Text(tag::loginId), "DEALER02");
    EXPECT_EQ(running.server->Held().All()[0].Text(tag::peerIdA), "BROKER");
    const ServerConfig& config = running.server->Config();
    EXPECT_EQ(config.FaultFor("add_sip_orders").delayMs, 50);
    EXPECT_EQ(config.FaultFor("any").disconnects, 1);
    EXPECT_EQ(config.FaultFor("before").disconnectsBefore, 2);
    EXPECT_EQ(config.FaultFor("another").errorCode, "77");
}

TEST(Commands, FaultsOfAnswersOneByOne) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    ServerCommands commands(*running.server, {}, true);
    const struct {
        const char *kind, *told; // registered, answers, their serial numbers, cut, lost
    } rows[] = {
        {"none", "1 1 1 0 0"},       {"silent", "1 0 0 0 0"},
        {"ignored", "0 0 0 0 0"},    {"twice", "1 2 2 0 0"},
        {"error 7", "0 1 1 0 0"},    {"noserial", "1 1 0 0 0"},
        {"disconnect", "1 0 0 1 0"}, {"disconnect-before", "0 0 0 1 1"},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(commands.Run("fault * " + std::string(row.kind), running.user, 0).isDone);
        const std::size_t before = running.server->Held().All().size();
        const Reply reply = running.Begin(Order({{tag::orderId, ""}, {tag::echoedNumber, "4"}}));
        const auto serials = std::ranges::count_if(reply.answers, [](const std::string& answer) {
            return qmx::Has(qmx::MessageReader(answer).Handle(), tag::echoedNumber);
        });
        std::ostringstream told;
        told << running.server->Held().All().size() - before << ' ' << reply.answers.size() << ' ' << serials
             << ' ' << reply.isCut << ' ' << reply.isLost;
        EXPECT_EQ(told.str(), row.told) << row.kind;
    }
}

} // namespace
} // namespace vesk
