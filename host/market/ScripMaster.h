// The scrips that can be traded, as the master file lists them, found by every key that callers have.
#pragma once

#include "host/files/Files.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vesk {

struct Exchange {
    std::string_view code;  // "nse_cm", as the server says it
    std::string_view shown; // "NSE", as the user reads it
};
inline constexpr std::array kExchanges{
    Exchange{"nse_cm", "NSE"},
    Exchange{"bse_cm", "BSE"},
};

// The code for an exchange given as code or as shown; empty when unknown.
std::string_view ExchangeCode(std::string_view codeOrShown);

struct Scrip {
    std::string exchange; // code
    std::string series;
    std::string symbol;
    std::string token;
    std::string tradingSymbol;
    std::string company;
    int decimals = 2;
    int multiplier = 100;       // scaled price units in one rupee
    int tickSize = 5;           // scaled price units
    std::int64_t lastPrice = 0; // scaled price units
    bool cautionary = false;    // orders need the user's confirmation
};

// Looking up neither allocates nor scans: basket loads ask once a line. Pointers live as long as the master.
class ScripMaster {
public:
    static Loaded<ScripMaster> Load(const std::string& path);
    static Loaded<ScripMaster> Parse(std::string_view text, std::string_view fileName);

    ScripMaster() = default;
    ScripMaster(ScripMaster&&) = default;
    ScripMaster& operator=(ScripMaster&&) = default;
    ScripMaster(const ScripMaster&) = delete;
    ScripMaster& operator=(const ScripMaster&) = delete;

    std::span<const Scrip> Scrips() const { return m_scrips; }
    // Null for an unknown one. The exchange may be a code or as it is shown.
    const Scrip* ByTradingSymbol(std::string_view exchange, std::string_view tradingSymbol) const;
    const Scrip* BySymbol(std::string_view exchange, std::string_view series, std::string_view symbol) const;
    // "exchange|series|symbol"
    const Scrip* ByKey(std::string_view key) const;
    // They stand in the order in which the file first names them.
    std::vector<std::string_view> SeriesOf(std::string_view exchange) const;
    // They stand in alphabetical order.
    std::vector<std::string_view> SymbolsOf(std::string_view exchange, std::string_view series) const;

private:
    struct Key {
        std::string_view exchange, series, name; // series is empty for trading symbols
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const noexcept;
    };

    const Scrip* Find(const Key& key) const;
    bool Index(const Scrip& scrip);

    std::vector<Scrip> m_scrips;
    std::unordered_map<Key, const Scrip*, KeyHash> m_index; // its views point into m_scrips
};

} // namespace vesk
