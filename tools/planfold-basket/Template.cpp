#include "plugin/base/Dates.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/messaging/Session.h"
#include "tools/planfold-basket/Commands.h"
#include "tools/planfold-basket/Sources.h"

#include <algorithm>

namespace basket {
namespace {

using namespace planfold;

constexpr int kStartDays = 28; // starts are spread over so many days
constexpr long long kClients = 40;
constexpr double kUsualPeriods = 12.0;

// What an order's texts view.
struct Made {
    std::string client, amount, quantity, startDate, totalPeriod;
};

// The n-th order, with what a dealer types; the check fills in the rest. Words change at paces of their own.
BasketTexts Order(long long n, const vesk::Scrip& scrip, const BasketRules& rules, Made& made) {
    std::vector<std::string> frequencies = rules.frequencies;
    if (frequencies.empty())
        for (const Frequency& row : kFrequencies)
            frequencies.emplace_back(row.word);
    const Frequency* frequency = FindFrequency(frequencies[static_cast<std::size_t>(n) % frequencies.size()]);
    const double minimum = rules.minimums[IndexOf(*frequency)];
    const bool byValue = n % 3 != 2;
    const std::int64_t day = rules.now + (1 + n % kStartDays) * kSecondsPerDay;

    made.client = Format("CL%lld", 100 + n % kClients);
    made.amount = byValue ? Format("%lld", 50'000 + n % 97 * 2'500) : "";
    made.quantity = byValue ? "" : Format("%lld", 1 + n % 50);
    made.startDate = FormatPickerDate(ToLocal(day));
    made.totalPeriod = Format("%.0f", std::max(minimum, kUsualPeriods));

    BasketTexts texts;
    texts[BasketField::account] = made.client;
    texts[BasketField::exchange] = scrip.exchange;
    texts[BasketField::series] = scrip.series;
    texts[BasketField::symbol] = scrip.symbol;
    texts[BasketField::token] = scrip.token;
    texts[BasketField::tradingSymbol] = scrip.tradingSymbol;
    texts[BasketField::product] = rules.products[static_cast<std::size_t>(n) % rules.products.size()];
    texts[BasketField::amount] = made.amount;
    texts[BasketField::quantity] = made.quantity;
    texts[BasketField::frequency] = frequency->word;
    texts[BasketField::startDateText] = made.startDate;
    texts[BasketField::totalPeriod] = made.totalPeriod;
    texts[BasketField::orderType] = "MKT";
    texts[BasketField::side] = n % 5 == 4 ? "S" : "B";
    texts[BasketField::investType] = byValue ? "value" : "qty";
    return texts;
}

} // namespace

int WriteTemplate(const Options& options, std::span<const vesk::Scrip> master, ScripSource& scrips) {
    if (master.empty()) return Fail(options.scrips + ": there is no scrip to make orders of");
    BasketCheck check(options.rules, scrips);
    std::string text;
    for (long long n = 0; n < options.lines; ++n) {
        const auto scrip = static_cast<std::size_t>(n * 37) % master.size();
        Made made;
        BasketTexts texts = Order(n, master[scrip], options.rules, made);
        if (const auto refusal = check.Validate(texts, static_cast<int>(n + 1)))
            return Fail("an order of " + master[scrip].tradingSymbol + " cannot be made: " + refusal->reason
                        + refusal->notice);
        AppendBasketLine(sBasketOrderData(texts, 0), text);
    }
    if (!WriteText(options.out, text)) return Fail(options.out + ": cannot be written");
    return kAllGood;
}

} // namespace basket
