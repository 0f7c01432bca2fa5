#include "host/market/ScripMaster.h"

#include "base/Text.h"
#include "host/market/CsvLines.h"

#include <algorithm>
#include <climits>
#include <functional>

namespace vesk {
namespace {

constexpr std::string_view kScripHeading =
    "exchange,series,symbol,token,trading symbol,company,decimals,multiplier,tick size,last price,cautionary";

enum Field {
    exchange,
    series,
    symbol,
    token,
    tradingSymbol,
    company,
    decimals,
    multiplier,
    tickSize,
    lastPrice,
    cautionary
};

// The boundary's record has room for this many characters and a zero.
constexpr std::size_t kLongestToken = 31;
constexpr std::size_t kLongestTradingSymbol = 63;

struct TextColumn {
    Field field;
    std::string Scrip::*member;
    std::string_view name;
    std::size_t longest;
};
constexpr TextColumn kTextColumns[] = {
    {series, &Scrip::series, "series", 15},
    {symbol, &Scrip::symbol, "symbol", kLongestTradingSymbol},
    {token, &Scrip::token, "token", kLongestToken},
    {tradingSymbol, &Scrip::tradingSymbol, "trading symbol", kLongestTradingSymbol},
    {company, &Scrip::company, "company", 120},
};

struct NumberColumn {
    Field field;
    int Scrip::*member;
    std::string_view name;
    int least, most;
};
constexpr NumberColumn kNumberColumns[] = {
    {decimals, &Scrip::decimals, "decimals", 0, 7},
    {multiplier, &Scrip::multiplier, "multiplier", 1, 10'000'000},
    {tickSize, &Scrip::tickSize, "tick size", 1, 1'000'000},
};

std::optional<std::string> ReadNumbers(std::span<const std::string_view> fields, Scrip& scrip) {
    for (const NumberColumn& column : kNumberColumns) {
        const auto value = base::ReadNumber<long long>(fields[column.field]);
        if (!value || *value < column.least || *value > column.most)
            return std::string(column.name) + " \"" + std::string(fields[column.field]) + "\" is not between "
                   + std::to_string(column.least) + " and " + std::to_string(column.most);
        scrip.*column.member = static_cast<int>(*value);
    }
    const auto price = base::ReadNumber<long long>(fields[lastPrice]);
    if (!price || *price < 0)
        return "last price \"" + std::string(fields[lastPrice]) + "\" is not a whole number";
    scrip.lastPrice = *price;
    return std::nullopt;
}

std::optional<std::string> ReadScrip(std::span<const std::string_view> fields, Scrip& scrip) {
    scrip.exchange = fields[exchange];
    if (ExchangeCode(scrip.exchange) != scrip.exchange) return "unknown exchange \"" + scrip.exchange + '"';
    for (const TextColumn& column : kTextColumns) {
        const std::string_view text = fields[column.field];
        if (text.empty()) return std::string(column.name) + " is empty";
        if (text.size() > column.longest)
            return std::string(column.name) + " is longer than " + std::to_string(column.longest)
                   + " characters";
        scrip.*column.member = text;
    }
    if (const std::string_view flag = fields[cautionary]; flag != "Y" && flag != "N")
        return "cautionary \"" + std::string(flag) + "\" is neither Y nor N";
    scrip.cautionary = fields[cautionary] == "Y";
    return ReadNumbers(fields, scrip);
}

} // namespace

std::string_view ExchangeCode(std::string_view codeOrShown) {
    for (const Exchange& known : kExchanges)
        if (codeOrShown == known.code || codeOrShown == known.shown) return known.code;
    return {};
}

std::size_t ScripMaster::KeyHash::operator()(const Key& key) const noexcept {
    constexpr std::hash<std::string_view> hash;
    constexpr std::size_t spread = 0x9e3779b97f4a7c15;
    return (hash(key.exchange) * spread + hash(key.series)) * spread + hash(key.name);
}

Loaded<ScripMaster> ScripMaster::Load(const std::string& path) {
    Loaded<std::string> text = ReadTextFile(path);
    if (!text) return text.Fault();
    return Parse(text.Value(), path);
}

Loaded<ScripMaster> ScripMaster::Parse(std::string_view text, std::string_view fileName) {
    ScripMaster master;
    // The index points into the rows, so they may not move while it grows.
    master.m_scrips.reserve(static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1);
    auto fault = ReadCsv(text, fileName, kScripHeading,
                         [&](std::span<const std::string_view> fields) -> std::optional<std::string> {
                             Scrip scrip;
                             if (auto what = ReadScrip(fields, scrip)) return what;
                             const Scrip& row = master.m_scrips.emplace_back(std::move(scrip));
                             if (!master.Index(row)) return row.tradingSymbol + " stands here a second time";
                             return std::nullopt;
                         });
    if (fault) return *std::move(fault);
    return master;
}

bool ScripMaster::Index(const Scrip& scrip) {
    return m_index.try_emplace({scrip.exchange, {}, scrip.tradingSymbol}, &scrip).second
           && m_index.try_emplace({scrip.exchange, scrip.series, scrip.symbol}, &scrip).second;
}

const Scrip* ScripMaster::Find(const Key& key) const {
    const auto found = m_index.find(key);
    return found == m_index.end() ? nullptr : found->second;
}

const Scrip* ScripMaster::ByTradingSymbol(std::string_view exchangeName, std::string_view name) const {
    return Find({ExchangeCode(exchangeName), {}, name});
}

const Scrip* ScripMaster::BySymbol(std::string_view exchangeName, std::string_view seriesName,
                                   std::string_view name) const {
    // An empty series would ask for a trading symbol.
    return seriesName.empty() ? nullptr : Find({ExchangeCode(exchangeName), seriesName, name});
}

const Scrip* ScripMaster::ByKey(std::string_view key) const {
    const std::size_t first = key.find('|');
    if (first == std::string_view::npos) return nullptr;
    const std::size_t second = key.find('|', first + 1);
    if (second == std::string_view::npos) return nullptr;
    return BySymbol(key.substr(0, first), key.substr(first + 1, second - first - 1), key.substr(second + 1));
}

std::vector<std::string_view> ScripMaster::SeriesOf(std::string_view exchangeName) const {
    const std::string_view code = ExchangeCode(exchangeName);
    std::vector<std::string_view> result;
    for (const Scrip& scrip : m_scrips)
        if (scrip.exchange == code && std::ranges::find(result, scrip.series) == result.end())
            result.emplace_back(scrip.series);
    return result;
}

std::vector<std::string_view> ScripMaster::SymbolsOf(std::string_view exchangeName,
                                                     std::string_view seriesName) const {
    const std::string_view code = ExchangeCode(exchangeName);
    std::vector<std::string_view> result;
    for (const Scrip& scrip : m_scrips)
        if (scrip.exchange == code && scrip.series == seriesName) result.emplace_back(scrip.symbol);
    std::ranges::sort(result);
    return result;
}

} // namespace vesk
