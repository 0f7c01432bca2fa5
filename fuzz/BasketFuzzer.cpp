// Basket files of any content: every line is a row or is refused with a text, and rows load again as they are.

#include "fuzz/Fuzz.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/messaging/Dates.h"

#include <algorithm>

using fuzz::Demand;
using namespace planfold;

namespace {

// Two scrips in different units, and one that is known by its symbol alone.
class Scrips final : public ScripSource {
public:
    std::optional<ScripDetails> Details(std::string_view, std::string_view tradingSymbol) override {
        if (tradingSymbol == "A") return ScripDetails{2, 0, 100.0, 5, "1", "A"};
        if (tradingSymbol == "B") return ScripDetails{4, 0, 10000.0, 25, "2", "B"};
        return std::nullopt;
    }
    std::string TradingSymbol(std::string_view, std::string_view, std::string_view) override { return "C"; }
};

class Findings final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override {
        AppendBasketLine(sBasketOrderData(texts, 0), exported);
        // Less than half a paisa is rounded away after it was found to be something.
        hasRoundedAway |= texts[BasketField::investType] == "value" && texts[BasketField::amount] == "0";
    }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override {
        ++refused;
        Demand(line.report.starts_with(line.text) && line.report.find("failed to load") != line.report.npos);
        Demand(line.report.find(line.reason) != line.report.npos && !(line.reason + notice).empty());
        notice.clear();
    }
    void OnNotice(std::string_view text) override { notice = text; }
    void OnLog(std::string_view text) override { Demand(!text.empty()); }

    std::string exported, notice;
    std::size_t refused = 0;
    bool hasRoundedAway = false;
};

void Load(std::string_view text, const BasketRules& rules, Findings& findings) {
    Scrips scrips;
    BasketLoad load(text, rules, scrips, findings);
    while (load.Read(3)) {
    }
    const auto ends = static_cast<std::size_t>(std::ranges::count(text, '\n'));
    Demand(static_cast<std::size_t>(load.LinesRead()) == ends + (!text.empty() && text.back() != '\n'));
    Demand(load.RowsLoaded() + findings.refused == static_cast<std::size_t>(load.LinesRead()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    BasketRules rules;
    rules.products = {"CNC", ""};
    rules.now = ToSeconds({2027, 1, 31, 15, 30, 0});
    rules.serverPeriods = input.Byte() == 's';
    rules.frequencies = {"Daily", "weekly", "%s", ""};
    rules.minimums = {5, 0, 6, 2};
    const std::string text = input.Rest();

    Findings first, second;
    Load(text, rules, first);
    Load(first.exported, rules, second);
    if (first.hasRoundedAway) return 0;
    Demand(second.refused == 0 && second.exported == first.exported);
    return 0;
}
