#include "bench/SampleBasket.h"

#include "plugin/base/Dates.h"
#include "plugin/base/Text.h"

namespace bench {
namespace {

using namespace planfold;

constexpr std::uint32_t kScrips = 2'000;
constexpr std::uint32_t kStartDays = 28;
constexpr std::uint32_t kBadEvery = 20;

std::string SymbolOf(std::uint32_t scrip) {
    return Format("%s%04u", scrip % 2 ? "BYTEFIN" : "ARBORTOOL", scrip);
}

// As a basket is exported; the bad ones by each rule in turn.
std::string Lines(std::uint32_t count, bool withBad) {
    struct Fault {
        const char *token, *period, *action, *product, *amount;
    };
    constexpr Fault good{"", "12", "B", "CNC", ""};
    constexpr Fault faults[] = {{"9", "12", "B", "CNC", ""},
                                {"", "99", "B", "CNC", ""},
                                {"", "12", "X", "CNC", ""},
                                {"", "12", "B", "XYZ", ""},
                                {"", "12", "B", "CNC", "x"}};
    std::string text;
    for (std::uint32_t i = 0; i < count; ++i) {
        const bool isBad = withBad && i % kBadEvery == 7;
        const Fault& fault = isBad ? faults[i / kBadEvery % std::size(faults)] : good;
        const std::uint32_t scrip = i * 7919u % kScrips;
        const std::string symbol = SymbolOf(scrip);
        // Every 70,000 lines client, scrip and day would come together again; no row shall stand twice.
        const std::uint32_t client = (i + i / 70'000) % 5'000;
        text +=
            Format("CL%04u,nse_cm,EQ,%s,%s%u,%s-EQ,%s,%s%u,,monthly,1804204800,%02u/Mar/2027,%s,MKT,%s,BUY,C,"
                   "DAY,value, ,\n",
                   client, symbol.c_str(), fault.token, 1000 + scrip, symbol.c_str(), fault.product,
                   fault.amount, 50'000 + i % 97 * 2'500, 1 + i % kStartDays, fault.period, fault.action);
    }
    return text;
}

} // namespace

SampleScrips::SampleScrips() {
    for (std::uint32_t i = 0; i < kScrips; ++i) {
        const std::string name = SymbolOf(i) + "-EQ", token = std::to_string(1000 + i);
        ScripDetails details{2, 0, 100.0, 5, {}, {}};
        name.copy(details.tradingSymbol, sizeof details.tradingSymbol - 1);
        token.copy(details.token, sizeof details.token - 1);
        m_details.emplace(name, details);
        tokens.emplace(name, token);
    }
}

std::optional<ScripDetails> SampleScrips::Details(std::string_view, std::string_view tradingSymbol) {
    const auto found = m_details.find(std::string(tradingSymbol));
    return found == m_details.end() ? std::nullopt : std::optional(found->second);
}

ScripNames SampleScrips::Names(std::string_view, std::string_view series, std::string_view symbol) {
    const std::string name = std::string(symbol) + "-" + std::string(series);
    const auto found = tokens.find(name);
    return found == tokens.end() ? ScripNames() : ScripNames{name, found->second, {}};
}

SampleBasket::SampleBasket(std::uint32_t count)
    : lines(count), text(Lines(count, false)),
      withBad(Lines(count, true)), rules{{"CNC"}, {}, false, {}, ToSeconds({2027, 2, 1, 0, 0, 0})} {}

void SampleBasket::Load(const std::string& from, BasketSink& sink) {
    BasketReader load(from, rules, scrips, sink);
    while (load.Read(1'000)) {
    }
}

std::size_t SampleBasket::GoodOfBad() const {
    return lines - (lines + kBadEvery - 8) / kBadEvery;
}

} // namespace bench
