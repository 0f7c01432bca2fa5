#include "host/market/ClientList.h"
#include "host/market/ScripMaster.h"
#include "host/market/TradingCalendar.h"

#include <gtest/gtest.h>

#include <functional>

namespace vesk {
namespace {

const std::string kScripHeading =
    "exchange,series,symbol,token,trading symbol,company,decimals,multiplier,tick size,last price,cautionary\n";
const std::string kScrips = kScripHeading
                            + "nse_cm,EQ,ZULU,11,ZULU-EQ,Zulu Ltd,2,100,5,10000,N\r\n"
                              "\n"
                              "# a comment\n"
                              "nse_cm,EQ,ALPHA,12,ALPHA-EQ,Alpha Ltd,4,10000,25,2500,Y\n"
                              "nse_cm,BE,ALPHA,13,ALPHA-BE,Alpha Ltd,2,100,5,10000,N\n"
                              "bse_cm,EQ,ALPHA,50,ALPHA-EQ,Alpha Ltd,2,100,1,9900,N";

std::string TokenOf(const Scrip* scrip) {
    return scrip ? scrip->token : "none";
}

TEST(ScripMaster, IsFoundByEveryKey) {
    const auto loaded = ScripMaster::Parse(kScrips, "scrips.csv");
    ASSERT_TRUE(loaded) << loaded.Fault().Text();
    const ScripMaster& master = loaded.Value();
    const struct {
        const char* what;
        const Scrip* found;
        const char* token;
    } rows[] = {
        {"shown", master.ByTradingSymbol("BSE", "ALPHA-EQ"), "50"},
        {"case matters", master.ByTradingSymbol("NSE", "zulu-eq"), "none"},
        {"unknown exchange", master.ByTradingSymbol("mcx", "ZULU-EQ"), "none"},
        {"symbol is no trading symbol", master.ByTradingSymbol("NSE", "ZULU"), "none"},
        {"key", master.ByKey("NSE|BE|ALPHA"), "13"},
        {"key with a part missing", master.ByKey("nse_cm|BE"), "none"},
        {"key with a part too many", master.ByKey("nse_cm|BE|ALPHA|"), "none"},
        {"no key", master.ByKey(""), "none"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TokenOf(row.found), row.token) << row.what;
    EXPECT_EQ(master.SymbolsOf("NSE", "EQ"), (std::vector<std::string_view>{"ALPHA", "ZULU"}));
    EXPECT_EQ(master.SymbolsOf("BSE", "EQ"), std::vector<std::string_view>{"ALPHA"});
}

struct BadFile {
    const char* text;
    const char* fault;
};

template <class T>
void ExpectFaults(std::span<const BadFile> rows, const std::string& heading,
                  const std::function<Loaded<T>(std::string_view)>& parse) {
    for (const BadFile& row : rows) {
        const auto loaded = parse(heading + row.text);
        ASSERT_FALSE(loaded) << row.text;
        EXPECT_EQ(loaded.Fault().Text(), row.fault) << row.text;
    }
}

TEST(ScripMaster, FaultsNameFileAndLine) {
    const BadFile rows[] = {
        {"nse_cm,EQ,A,1,A-EQ,A Ltd,2,100,5,1\n", "scrips.csv:2: 11 fields expected, 10 found"},
        {"\n\nnse_cm,EQ,A,1,A-EQ,A Ltd,2,100,5,1,N,\n", "scrips.csv:4: 11 fields expected, 12 found"},
        {"mcx,EQ,A,1,A-EQ,A Ltd,2,100,5,1,N", "scrips.csv:2: unknown exchange \"mcx\""},
        {"nse_cm,EQ,,1,A-EQ,A Ltd,2,100,5,1,N", "scrips.csv:2: symbol is empty"},
        {"nse_cm,EQ,A,12345678901234567890123456789012,A-EQ,A Ltd,2,100,5,1,N",
         "scrips.csv:2: token is longer than 31 characters"},
        {"nse_cm,EQ,A,1,A-EQ,A Ltd,8,100,5,1,N", "scrips.csv:2: decimals \"8\" is not between 0 and 7"},
        {"nse_cm,EQ,A,1,A-EQ,A Ltd,2,0,5,1,N", "scrips.csv:2: multiplier \"0\" is not between 1 and 10000000"},
        {"nse_cm,EQ,A,1,A-EQ,A Ltd,2,100,5x,1,N",
         "scrips.csv:2: tick size \"5x\" is not between 1 and 1000000"},
        {"nse_cm,EQ,A,1,A-EQ,A Ltd,2,100,5,1,y", "scrips.csv:2: cautionary \"y\" is neither Y nor N"},
        {"nse_cm,EQ,A,1,A-EQ,A Ltd,2,100,5,1,N\nnse_cm,EQ,B,2,A-EQ,B Ltd,2,100,5,1,N",
         "scrips.csv:3: A-EQ stands here a second time"},
    };
    ExpectFaults<ScripMaster>(
        rows, kScripHeading, [](std::string_view text) { return ScripMaster::Parse(text, "data/scrips.csv"); });
    const BadFile headings[] = {
        {"", "scrips.csv: the heading \"exchange,series,symbol,token,trading symbol,company,decimals,"
             "multiplier,tick size,last price,cautionary\" is missing"},
        {"token\n", "scrips.csv:1: the heading \"exchange,series,symbol,token,trading symbol,company,decimals,"
                    "multiplier,tick size,last price,cautionary\" is expected"},
    };
    ExpectFaults<ScripMaster>(headings, "",
                              [](std::string_view text) { return ScripMaster::Parse(text, "scrips.csv"); });
    EXPECT_EQ(ScripMaster::Load("nowhere/scrips.csv").Fault().Text(), "scrips.csv: file not found");
    EXPECT_EQ(ScripMaster::Load(".").Fault().Text(), ".: file not found");
}

const char* const kClients = "client,name,mapped\n"
                             "CL10,Asha Roy,Y\n"
                             "CL101,Cl Verma,N\n"
                             "XY1,Ravi Cloud,N\n";

std::string Found(const ClientList& list, int mode, std::string_view text) {
    std::string result;
    for (const Client* client : list.Search(mode, text))
        result += (result.empty() ? "" : " ") + client->id;
    return result;
}

TEST(ClientList, SearchesByMode) {
    const auto loaded = ClientList::Parse(kClients, "clients.csv");
    ASSERT_TRUE(loaded);
    const struct {
        int mode;
        const char* text;
        const char* found;
    } rows[] = {
        {1, "CL", "CL10 CL101 XY1"}, {2, "CL", "CL10 CL101"}, {3, "CL", "CL101 XY1"}, {1, "cl10", "CL10 CL101"},
        {1, "CL10(", "CL10"},        {3, "cl10 (", "CL10"},   {1, "CL1(", ""},        {2, "", "CL10 CL101 XY1"},
        {3, "  ", "CL10 CL101 XY1"}, {1, " roy ", "CL10"},    {1, "nobody", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Found(loaded.Value(), row.mode, row.text), row.found) << row.mode << ' ' << row.text;
    for (const Client* client : loaded.Value().Search(1, "CL"))
        EXPECT_EQ(client->mapped, client->id == "CL10");
}

TEST(ClientList, FaultsNameFileAndLine) {
    const BadFile rows[] = {
        {",Nobody,N", "clients.csv:2: client is empty"},
        {"A,B,yes", "clients.csv:2: mapped \"yes\" is neither Y nor N"},
        {"A,B,Y\na,C,N", "clients.csv:3: a stands here a second time"},
    };
    ExpectFaults<ClientList>(rows, "client,name,mapped\n",
                             [](std::string_view text) { return ClientList::Parse(text, "clients.csv"); });
}

TEST(TradingCalendar, FaultsNameFileAndLine) {
    const BadFile rows[] = {
        {"2027-02-29,x", "nontrading.csv:2: \"2027-02-29\" is not a date yyyy-mm-dd"},
        {"2027-1-26,x", "nontrading.csv:2: \"2027-1-26\" is not a date yyyy-mm-dd"},
        {"2027-01-26,x\n2027-01-26,y", "nontrading.csv:3: 2027-01-26 stands here a second time"},
    };
    ExpectFaults<TradingCalendar>(rows, "date,occasion\n", [](std::string_view text) {
        return TradingCalendar::Parse(text, "nontrading.csv");
    });
}

// The files that are delivered.
TEST(DeliveredData, Loads) {
    const std::string folder = DATA_FOLDER;
    const auto scrips = ScripMaster::Load(folder + "/scrips.csv");
    ASSERT_TRUE(scrips) << scrips.Fault().Text();
    EXPECT_GT(scrips.Value().Scrips().size(), 1000u);
    for (const Exchange& exchange : kExchanges)
        EXPECT_FALSE(scrips.Value().SymbolsOf(exchange.code, "EQ").empty()) << exchange.code;
    const auto clients = ClientList::Load(folder + "/clients.csv");
    ASSERT_TRUE(clients) << clients.Fault().Text();
    EXPECT_EQ(Found(clients.Value(), 1, "CL100("), "CL100");
    const auto orders = ReadTextFile(folder + "/baskets/good.csv");
    for (std::string_view basket = orders.Value(); !basket.empty(); basket.remove_prefix(basket.find('\n') + 1))
        EXPECT_TRUE(clients.Value().Find(basket.substr(0, basket.find(',')))) << "the server takes its orders";
    const auto calendar = TradingCalendar::Load(folder + "/nontrading.csv");
    ASSERT_TRUE(calendar) << calendar.Fault().Text();
}

} // namespace
} // namespace vesk
