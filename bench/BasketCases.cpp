#include "bench/BasketCases.h"

#include "bench/Allocations.h"
#include "bench/BasketPeers.h"
#include "bench/Cases.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/messaging/Dates.h"
#include "plugin/messaging/Text.h"

#include <deque>
#include <memory>
#include <unordered_map>

namespace bench {
namespace {

using namespace planfold;

constexpr std::uint32_t kScrips = 2'000;
constexpr std::uint32_t kStartDays = 28;
constexpr std::uint32_t kBadEvery = 20;

std::string SymbolOf(std::uint32_t scrip) {
    return Format("%s%04u", scrip % 2 ? "BYTEFIN" : "ARBORTOOL", scrip);
}

class Scrips final : public ScripSource {
public:
    Scrips() {
        for (std::uint32_t i = 0; i < kScrips; ++i) {
            const std::string name = SymbolOf(i) + "-EQ", token = std::to_string(1000 + i);
            ScripDetails details{2, 0, 100.0, 5, {}, {}};
            name.copy(details.tradingSymbol, sizeof details.tradingSymbol - 1);
            token.copy(details.token, sizeof details.token - 1);
            m_details.emplace(name, details);
            tokens.emplace(name, token);
        }
    }

    std::optional<ScripDetails> Details(std::string_view, std::string_view tradingSymbol) override {
        const auto found = m_details.find(std::string(tradingSymbol));
        return found == m_details.end() ? std::nullopt : std::optional(found->second);
    }
    std::string TradingSymbol(std::string_view, std::string_view, std::string_view) override { return {}; }

    TokenMap tokens;

private:
    std::unordered_map<std::string, ScripDetails> m_details;
};

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
        text +=
            Format("CL%04u,nse_cm,EQ,%s,%s%u,%s-EQ,%s,%s%u,,monthly,1804204800,%02u/Mar/2027,%s,MKT,%s,BUY,C,"
                   "DAY,value, ,\n",
                   i % 5000, symbol.c_str(), fault.token, 1000 + scrip, symbol.c_str(), fault.product,
                   fault.amount, 50'000 + i % 97 * 2'500, 1 + i % kStartDays, fault.period, fault.action);
    }
    return text;
}

class Rows final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override {
        rows.emplace_front(texts, static_cast<std::int32_t>(rows.size()));
    }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override { rejected.push_back(line.report); }
    void OnNotice(std::string_view) override {}
    void OnLog(std::string_view) override {}

    std::deque<sBasketOrderData> rows;
    std::vector<std::string> rejected;
};

struct Sample {
    explicit Sample(std::uint32_t count)
        : lines(count), text(Lines(count, false)), withBad(Lines(count, true)) {}

    void Load(const std::string& from, std::size_t expectedRows, Rows& into) {
        BasketLoad load(from, rules, scrips, into);
        while (load.Read(1'000)) {
        }
        Require(into.rows.size() == expectedRows, "loading a basket");
    }
    std::size_t GoodOfBad() const { return lines - (lines + kBadEvery - 8) / kBadEvery; }

    std::uint32_t lines;
    std::string text, withBad;
    Scrips scrips;
    BasketRules rules{{"CNC"}, {}, false, {}, ToSeconds({2027, 2, 1, 0, 0, 0})};
    std::unique_ptr<Rows> rows;
    std::string exported;
};

std::size_t Cut(const std::string& text) {
    std::size_t fields = 0;
    BasketLines lines(text);
    BasketTexts columns;
    while (const auto line = lines.Next())
        if (SplitBasketLine(line->text, columns)) fields += columns[BasketField::clientId].size();
    return fields;
}

std::string Named(const char* name, std::uint32_t lines) {
    return name + ("-" + std::to_string(lines));
}

} // namespace

std::vector<Case> BasketCases(std::uint32_t lines, bool peers) {
    auto sample = std::make_shared<Sample>(lines);
    // The rows before are given back before the clock runs.
    const auto empty = [=] {
        sample->rows.reset();
        sample->rows = std::make_unique<Rows>();
    };
    const auto filled = [=] {
        if (sample->rows && sample->rows->rows.size() == lines) return;
        empty();
        sample->Load(sample->text, lines, *sample->rows);
    };
    const auto writeAll = [=] {
        sample->exported.clear();
        for (const sBasketOrderData& row : sample->rows->rows)
            AppendBasketLine(row, sample->exported);
        Require(sample->exported.size() == sample->text.size(), "writing a basket");
    };
    std::vector<Case> cases = {
        {Named("load", lines), [=] { sample->Load(sample->text, lines, *sample->rows); }, lines, empty},
        {Named("export", lines), writeAll, lines, filled},
        {Named("load-bad", lines), [=] { sample->Load(sample->withBad, sample->GoodOfBad(), *sample->rows); },
         lines, empty},
        {Named("cut", lines), [=] { Require(Cut(sample->text) != 0, "cutting"); }, lines},
        {Named("floor", lines), [=] { Require(CountLineEnds(sample->text) == lines, "memchr"); }, lines},
    };
    if (!peers) return cases;
    const auto byLibcsv = [=] { Require(CutByLibcsv(sample->text) == lines * 21ul, "libcsv"); };
    const auto plainly = [=] {
        Require(LoadPlainly(sample->text, sample->scrips.tokens, sample->rules.now) == lines, "plain load");
    };
    cases.push_back({Named("cut-libcsv", lines), byLibcsv, lines});
    cases.push_back({Named("load-plain", lines), plainly, lines});
    return cases;
}

double BytesOfARow(std::uint32_t lines) {
    Sample sample(lines);
    std::deque<sBasketOrderData> rows;
    {
        Rows loaded;
        sample.Load(sample.text, lines, loaded);
        rows = std::move(loaded.rows);
    }
    const std::size_t full = HeapBytes();
    rows = std::deque<sBasketOrderData>();
    return static_cast<double>(full - HeapBytes()) / lines;
}

} // namespace bench
