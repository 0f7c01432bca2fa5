// What the one who runs the server tells it, line by line at one server.

#include "host/server/ServerCommands.h"
#include "tests/server/ServerFixture.h"

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
    EXPECT_EQ(running.server->Registrations().size(), 4u);
    EXPECT_EQ(running.server->Registrations()[0].Text(tag::loginId), "DEALER02");
    EXPECT_EQ(running.server->Registrations()[0].Text(tag::peerIdA), "BROKER");
    const ServerConfig& config = running.server->Config();
    EXPECT_EQ(config.FaultFor("add_sip_orders").delayMs, 50);
    EXPECT_EQ(config.FaultFor("any").disconnects, 1);
    EXPECT_EQ(config.FaultFor("another").errorCode, "77");
}

} // namespace
} // namespace vesk
