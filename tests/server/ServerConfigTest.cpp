// Configurations that are taken, and those that are refused with the line to look at.

#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

TEST(ServerConfig, TakesWhatIsWritten) {
    const ConfigResult result = ParseServerConfig(R"({
        "operationMode": {"shape": "listThenZero",
                          "frequencies": [{"name": "monthly", "minimum": 6}, {"name": "yearly"}]},
        "faults": {"add_sip_orders": {"error": "99", "delayMs": 50},
                   "*": {"silent": true, "garbage": true, "delayMs": 7}}
    })",
                                                  "server.json");
    ASSERT_TRUE(result.config) << result.error;
    EXPECT_EQ(result.config->operationModeShape, OperationModeShape::listThenZero);
    ASSERT_EQ(result.config->frequencies.size(), 2u);
    EXPECT_EQ(result.config->frequencies[0].minimumPeriods, 6);
    EXPECT_FALSE(result.config->frequencies[1].minimumPeriods);
    const RequestFault& own = result.config->FaultFor("add_sip_orders");
    EXPECT_EQ(own.errorCode, "99");
    EXPECT_EQ(own.delayMs, 50);
    EXPECT_FALSE(own.silent);
    const RequestFault& rest = result.config->FaultFor("qry_eq_sip");
    EXPECT_FALSE(rest.errorCode);
    EXPECT_TRUE(rest.silent && rest.garbage);
    EXPECT_EQ(rest.delayMs, 7);
}

TEST(ServerConfig, LeavesDefaultsWhereNothingIsWritten) {
    const ConfigResult result = ParseServerConfig("{}", "server.json");
    ASSERT_TRUE(result.config) << result.error;
    EXPECT_EQ(result.config->frequencies.size(), 4u);
    EXPECT_FALSE(result.config->FaultFor("add_sip_orders").errorCode);
    EXPECT_TRUE(
        ParseServerConfig(R"({"operationMode": {"frequencies": []}})", "s").config->frequencies.empty());
}

TEST(ServerConfig, RefusesWithFileLineAndReason) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"", "s:1: not valid JSON"},
        {"{\n\"faults\": {\n,", "s:3: not valid JSON"},
        {"[]", "s:1: \"configuration\" must be an object"},
        {"{\n\"fault\": {}}", "s:2: unknown setting \"fault\""},
        {"{\"faults\": []}", "s:1: \"faults\" must be an object"},
        {"{\"faults\":\n{\"a\": {\n\"error\": 5}}}", "s:3: \"error\" must be a text"},
        {"{\"faults\": {\"a\": {\"delayMs\": -1}}}", "s:1: \"delayMs\" must be a whole number of milliseconds"},
        {"{\"faults\": {\"a\": {\"delayMs\": 18446744073709551615}}}",
         "s:1: \"delayMs\" must not exceed a day"},
        {"{\"faults\": {\"a\": {\"silent\": 1}}}", "s:1: \"silent\" must be true or false"},
        {"{\"faults\": {\n\"a\": 1}}", "s:2: \"a\" must be an object"},
        {"{\"operationMode\": {\"shape\": \"x\"}}",
         "s:1: \"shape\" must be \"list\", \"listThenZero\" or \"bare\""},
        {"{\"operationMode\": {\"frequencies\": 1}}", "s:1: \"frequencies\" must be a list"},
        {"{\"operationMode\": {\"frequencies\": [{\"minimum\": 1}]}}", "s:1: a frequency needs a \"name\""},
        {"{\"operationMode\": {\"frequencies\": [{\"name\": \"daily\", \"minimum\": 1e9}]}}",
         "s:1: \"minimum\" must be a whole number"},
        {"{\"operationMode\": {\"frequencies\": [{\"name\": \"daily\", \"minimum\": 1000000}]}}",
         "s:1: \"minimum\" must lie between 0 and 100000"},
        {"{\"operationMode\": {\n\"frequencies\": [{\"name\": \"a\"}, {\"name\": \"b\", \"minimum\": 1}]}}",
         "s:2: only the last frequencies may lack a \"minimum\""},
    };
    for (const auto& row : rows) {
        const ConfigResult result = ParseServerConfig(row.text, "s");
        EXPECT_FALSE(result.config) << row.text;
        EXPECT_EQ(result.error, row.error);
    }
}

TEST(ServerConfig, FileIsReadOrNamed) {
    const TemporaryFolder folder;
    const auto path = folder.File("server.json");
    EXPECT_EQ(LoadServerConfig(path).error, path.string() + ": cannot be opened");
    WriteFileText(path, "{\n}}");
    EXPECT_EQ(LoadServerConfig(path).error, path.string() + ":2: not valid JSON");
    WriteFileText(path, "{}");
    EXPECT_TRUE(LoadServerConfig(path).config);
}

} // namespace
} // namespace vesk
