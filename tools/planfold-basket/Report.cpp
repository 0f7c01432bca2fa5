#include "tools/planfold-basket/Report.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/basket/BasketReview.h"
#include "tools/planfold-basket/Sources.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <unordered_set>
#include <utility>

namespace basket {

using namespace planfold;

void Findings::OnRow(const BasketTexts& texts) {
    SideTotals& side = texts[BasketField::side] == "B" ? buy : sell;
    ++side.orders;
    if (texts[BasketField::investType] == "value")
        side.amountPaise += LeadingInteger(texts[BasketField::amount]);
    else
        side.quantity += LeadingInteger(texts[BasketField::quantity]);
    if (m_keepRows) AppendBasketLine(sBasketOrderData(texts, 0), rows);
    if (m_keepOrders) records.push_back(orders.Add(texts));
}

void Findings::OnRejected(const RejectedLine& line, const BasketTexts&) {
    // What has no reason was told as a notice.
    rejected.push_back({line.number, columnOf(), line.reason.empty() ? m_notice : line.reason, line.text});
}

namespace {

struct Side {
    const char* name;
    SideTotals Findings::*totals;
};
constexpr Side kSides[] = {{"buy", &Findings::buy}, {"sell", &Findings::sell}};

struct Told {
    const std::string& file;
    const BasketReading& load;
    const Findings& findings;
    const std::vector<std::string>& notRead; // headings
    std::vector<ReviewLine> review;          // when it was asked for
};

// What the window's Check says of orders, but for what only a terminal knows.
std::vector<ReviewLine> Reviewed(const Findings& findings, const std::map<std::string, std::string>& settings,
                                 std::int64_t now) {
    const auto valueOf = [&](const std::string& key) {
        const auto found = settings.find(key);
        return found == settings.end() ? std::string() : found->second;
    };
    std::unordered_set<std::uint64_t> seen;
    ReviewFacts facts;
    facts.isLike = [&](const RecordTexts& order) { return !seen.insert(AskedForKey(order)).second; };
    return ReviewBasket(findings.orders, findings.records, {}, DeskLimits(valueOf, now), facts);
}

// Totals are for those who ask for JSON.
std::string PlainReview(const std::string& file, const std::vector<ReviewLine>& review) {
    std::string text;
    for (const ReviewLine& line : review)
        if (line.kind != ReviewKind::total)
            text += file + ": " + ReviewText(line, ReviewField::kind) + ": " + line.what
                    + (line.of.empty() ? "" : ": " + line.of) + '\n';
    return text;
}

std::string PlainReport(const Told& told) {
    const auto& [file, load, findings, notRead, review] = told;
    std::string text;
    for (const std::string& heading : notRead)
        text += file + ": column not read: " + heading + '\n';
    for (const Rejection& each : findings.rejected)
        text += file + Format(":%d: ", each.line) + each.reason + '\n';
    text += PlainReview(file, review);
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

std::string JsonReport(const Told& told) {
    const auto& [file, load, findings, notRead, review] = told;
    nlohmann::ordered_json report = {
        {"file", file},
        {"lines", load.LinesRead()},
        {"rows", load.RowsLoaded()},
        {"rejected", nlohmann::ordered_json::array()},
    };
    for (const Rejection& each : findings.rejected) {
        nlohmann::ordered_json rejected = {{"line", each.line}, {"reason", each.reason}, {"text", each.text}};
        if (each.column) rejected["column"] = each.column;
        report["rejected"].push_back(std::move(rejected));
    }
    if (!notRead.empty()) report["notRead"] = notRead;
    for (const Side& side : kSides) {
        const SideTotals& of = findings.*side.totals;
        report[side.name] = {{"orders", of.orders}, {"amountPaise", of.amountPaise}, {"quantity", of.quantity}};
    }
    for (const ReviewLine& line : review)
        report["findings"].push_back({{"kind", ReviewText(line, ReviewField::kind)},
                                      {"finding", line.what},
                                      {"of", line.of},
                                      {"orders", line.rows},
                                      {"amountPaise", line.amountPaise},
                                      {"quantity", line.quantity}});
    // A line may hold what is no UTF-8.
    return report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

} // namespace

int Tell(const Options& options, const BasketReading& load, Findings& findings,
         const std::vector<std::string>& notRead) {
    Told told{options.file, load, findings, notRead, {}};
    if (!options.limits.empty()) {
        const auto settings = ReadLimits(options.limits);
        if (!settings) return Fail(settings.Fault().Text());
        told.review = Reviewed(findings, settings.Value(), options.rules.now);
    }
    const bool isBeyond =
        std::ranges::find(told.review, ReviewKind::fault, &ReviewLine::kind) != told.review.end();
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
        {std::string(kStandardStream), report(told)},
    };
    for (const auto& output : outputs)
        if (!output.path.empty() && !WriteText(output.path, output.text))
            return Fail(output.path + ": cannot be written");
    return findings.rejected.empty() && !isBeyond ? kAllGood : kSomeRejected;
}

} // namespace basket
