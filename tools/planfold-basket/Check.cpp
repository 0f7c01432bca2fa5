#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketFile.h"
#include "tools/planfold-basket/Commands.h"
#include "tools/planfold-basket/Sources.h"

#include <nlohmann/json.hpp>

#include <utility>
#include <vector>

namespace basket {
namespace {

using namespace planfold;

// The orders of one side.
struct SideTotals {
    std::int64_t orders = 0;
    std::int64_t amountPaise = 0; // of orders by value
    std::int64_t quantity = 0;    // of orders by quantity
};

struct Rejection {
    int line;
    std::string reason;
    std::string text;
};

class Findings final : public BasketSink {
public:
    explicit Findings(bool keepRows) : m_keepRows(keepRows) {}

    void OnRow(const BasketTexts& texts) override {
        SideTotals& side = texts[BasketField::side] == "B" ? buy : sell;
        ++side.orders;
        if (texts[BasketField::investType] == "value")
            side.amountPaise += LeadingInteger(texts[BasketField::amount]);
        else
            side.quantity += LeadingInteger(texts[BasketField::quantity]);
        if (m_keepRows) AppendBasketLine(sBasketOrderData(texts, 0), rows);
    }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override {
        // What has no reason was told as a notice.
        rejected.push_back({line.number, line.reason.empty() ? m_notice : line.reason, line.text});
    }
    void OnNotice(std::string_view text) override { m_notice = text; }
    void OnLog(std::string_view) override {}

    std::vector<Rejection> rejected;
    SideTotals buy, sell;
    std::string rows;

private:
    bool m_keepRows;
    std::string m_notice;
};

struct Side {
    const char* name;
    SideTotals Findings::*totals;
};
constexpr Side kSides[] = {{"buy", &Findings::buy}, {"sell", &Findings::sell}};

std::string PlainReport(const std::string& file, const BasketReader& load, const Findings& findings) {
    std::string text;
    for (const Rejection& each : findings.rejected)
        text += file + Format(":%d: ", each.line) + each.reason + '\n';
    text += Format("%d lines read, %zu rows, %zu rejected\n", load.LinesRead(), load.RowsLoaded(),
                   findings.rejected.size());
    for (const Side& side : kSides) {
        const SideTotals& of = findings.*side.totals;
        text += Format("%-4s %lld orders, amount %lld.%02lld, quantity %lld\n", side.name,
                       static_cast<long long>(of.orders), static_cast<long long>(of.amountPaise / 100),
                       static_cast<long long>(of.amountPaise % 100), static_cast<long long>(of.quantity));
    }
    return text;
}

std::string JsonReport(const std::string& file, const BasketReader& load, const Findings& findings) {
    nlohmann::ordered_json report = {
        {"file", file},
        {"lines", load.LinesRead()},
        {"rows", load.RowsLoaded()},
        {"rejected", nlohmann::ordered_json::array()},
    };
    for (const Rejection& each : findings.rejected)
        report["rejected"].push_back({{"line", each.line}, {"reason", each.reason}, {"text", each.text}});
    for (const Side& side : kSides) {
        const SideTotals& of = findings.*side.totals;
        report[side.name] = {{"orders", of.orders}, {"amountPaise", of.amountPaise}, {"quantity", of.quantity}};
    }
    // A line may hold what is no UTF-8.
    return report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

} // namespace

int Check(const Options& options, ScripSource& scrips) {
    const auto text = ReadText(options.file);
    if (!text) return Fail(text.Fault().Text());
    if (base::IsUtf16(text.Value())) return Fail(options.file + ": " + kUtf16Fault);
    Findings findings(!options.normalised.empty());
    BasketReader load(text.Value(), options.rules, scrips, findings);
    while (load.Read(1'000'000)) {
    }
    std::string rejects;
    for (const Rejection& each : findings.rejected)
        rejects += each.text + '\n';
    const auto report = options.json ? JsonReport : PlainReport;
    const struct {
        std::string path;
        std::string text;
    } outputs[] = {
        {options.rejects, BasketFileText(std::move(rejects))},
        {options.normalised, BasketFileText(std::move(findings.rows))},
        {std::string(kStandardStream), report(options.file, load, findings)},
    };
    for (const auto& output : outputs)
        if (!output.path.empty() && !WriteText(output.path, output.text))
            return Fail(output.path + ": cannot be written");
    return findings.rejected.empty() ? kAllGood : kSomeRejected;
}

} // namespace basket
