// The two queries, and a server with many registrations and another trader.

#include "host/server/sample/SampleOrders.h"
#include "tests/server/ServerFixture.h"

#include <set>

namespace vesk {
namespace {

using Answers = std::vector<std::string>;

// By their last field's text.
const std::string kHeld[] = {
    "loginId=USER1 registrationDate=28-Feb-2026 peerIdB=BR1 peerIdA=BROKER registrationNumber=A",
    "loginId=USER2 registrationDate=01-Mar-2026 peerIdB=BR1 peerIdA=BROKER registrationNumber=B",
    "loginId=USER3 registrationDate=01-Mar-2026 peerIdB=BR1 peerIdA=OTHER registrationNumber=C",
    "loginId=USER1 registrationDate=10-Mar-2026 peerIdB= peerIdA=BROKER registrationNumber=D",
};

void WriteHeld(const std::filesystem::path& journal) {
    std::vector<std::string> contents;
    for (const std::string& held : kHeld) {
        Registration registration;
        for (const auto& [tag, field] : Fields(held))
            registration.Set(tag, field);
        contents.push_back(registration.Json());
    }
    WriteJournal(journal, JournalOf(contents));
}

TEST(Query, GivesTheRowsOfWhoAsksOrOneBareAnswerOrARefusal) {
    const UserIdentity one{"USER1", "BROKER", "BR1"};
    const UserIdentity branchOnly{"USER1", "", "BR1"};
    const UserIdentity alone{"USER1", "", ""};
    const UserIdentity stranger{"USER9", "NOBODY", ""};
    const std::string missing = "errorCode=101 userText=The ";
    const std::string wrong = "errorCode=102 userText=The ";
    const struct {
        UserIdentity user;
        std::string request; // the login, or the two dates
        std::string answer;  // the numbers of the rows, or what stands behind the name
    } rows[] = {
        {one, "loginId=USER1", "AD"},
        {stranger, "loginId=USER9", ""},
        {one, "loginId=USER2", "errorCode=105 userText=The user is not the one who is logged in"},
        {one, "", missing + "user is missing"},
        {one, "startDate=2/28/2026 toDate=3/10/2026", "ABD"},
        {one, "startDate=03/01/2026 toDate=3/9/2026", "B"},
        {one, "startDate=3/11/2026 toDate=3/1/2026", ""},
        {branchOnly, "startDate=1/1/2026 toDate=12/31/2026", "ABC"},
        {alone, "startDate=1/1/2026 toDate=12/31/2026", "AD"},
        {stranger, "startDate=1/1/2026 toDate=12/31/2026", ""},
        {one, "startDate=3/1/2026", missing + "to-date is missing"},
        {one, "startDate= toDate=3/1/2026", missing + "from-date is missing"},
        {one, "startDate=2/29/2026 toDate=3/1/2026", wrong + "from-date cannot be \"2/29/2026\""},
        {one, "startDate=3/1/2026 toDate=13/1/2026", wrong + "to-date cannot be \"13/1/2026\""},
        {one, "startDate=3/1/2026 toDate=3/1/2026/", wrong + "to-date cannot be \"3/1/2026/\""},
        {one, "startDate=" + std::string(300, '1') + " toDate=3/1/2026", wrong + "from-date is too long"},
    };
    const TemporaryFolder folder;
    WriteHeld(folder.File("journal"));
    RunningServer running(folder.File("journal"));
    for (const auto& row : rows) {
        const bool isList = !row.request.starts_with("startDate");
        Fields request = row.request;
        request[tag::requestName] = isList ? "om_get_sip_orders" : "qry_eq_sip";
        const std::string head = "echoedRequest=" + request[tag::requestName];
        const bool isRefused = row.answer.starts_with("errorCode");
        Answers expected;
        for (const std::string& held : kHeld)
            if (!isRefused && row.answer.find(held.back()) != std::string::npos) {
                expected.push_back(head + (isList ? " queriedRow=1 " : " ") + held);
            }
        // What is no row ends a list.
        if (isList || expected.empty()) expected.push_back(head + (isRefused ? " " + row.answer : ""));
        running.user = row.user;
        EXPECT_EQ(running.Ask(request), expected) << "expected: " << row.answer;
    }
}

const SampleMarket kMarket{{"CL1", "CL2"},
                           {{"nse_cm", "1008", "ARBORTOOLS-EQ"}, {"bse_cm", "1009", "BYTEFIN-A"}}};

std::string AllRecords(const Server& server) {
    std::string text;
    for (const Registration& registration : server.Held().All())
        text += registration.Json() + "\n";
    return text;
}

TEST(Fill, IsThereAfterARestartAndVaried) {
    const TemporaryFolder folder;
    constexpr std::size_t count = 20'000; // more than are journaled at once
    std::string records;
    {
        RunningServer running(folder.File("journal"));
        running.Ask(Order());
        EXPECT_EQ(Fill(*running.server, {count, {running.user, {"USER2", "BROKER", ""}}, kMarket}), "");
        EXPECT_FALSE(running.server->Clock().HasDue()); // nobody waits for years of arrears
        records = AllRecords(*running.server);
        EXPECT_NE(Fill(*running.server, {1, {}, kMarket}), "");
    }
    RunningServer again(folder.File("journal"));
    EXPECT_EQ(AllRecords(*again.server), records);
    std::set<std::string> seen;
    for (const Registration& registration : again.server->Held().All()) {
        EXPECT_EQ(again.server->Held().Find(registration.Number()), &registration);
        const bool isCancelled = registration.Text(tag::sipStatus) == kStatusCancelled;
        EXPECT_EQ(registration.Text(tag::cancelledDate).empty(), !isCancelled);
        EXPECT_TRUE(registration.Text(tag::sipStatus) != kStatusActive
                    || !registration.Text(tag::nextExecutionDate).empty());
        for (const tag::Tag tag : {tag::sipStatus, tag::side, tag::investType, tag::frequency, tag::account,
                                   tag::loginId, tag::token})
            seen.emplace(registration.Text(tag));
    }
    EXPECT_EQ(seen.size(), 4u + 2 + 2 + 4 + 2 + 2 + 3);
}

TEST(SampleOrders, PlacesTheSameOrdersForTheSameSeedAndNewOnesAfterARestart) {
    const TemporaryFolder folder;
    const auto trade = [&](const char* file, std::uint64_t seed) {
        RunningServer running(folder.File(file));
        const UserIdentity user{"USER2", "BROKER", "BR2"};
        EXPECT_EQ(PlaceSampleOrders(*running.server, user, kMarket, seed, 40), 40u);
        running.server->Config().faults["*"].errorCode = "99";
        EXPECT_EQ(PlaceSampleOrders(*running.server, user, kMarket, seed, 1), 0u);
        return AllRecords(*running.server);
    };
    const std::string first = trade("a", 1);
    EXPECT_EQ(trade("b", 1), first);
    const std::string both = trade("a", 1);
    EXPECT_EQ(std::count(both.begin(), both.end(), '\n'), 80);
}

} // namespace
} // namespace vesk
