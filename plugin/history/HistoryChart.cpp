#include "plugin/history/HistoryChart.h"

#include "plugin/base/Dates.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace planfold {

namespace {

constexpr const char* kPartNames[] = {"Filled", "Partly filled", "Waiting", "Rejected or cancelled"};
static_assert(std::size(kPartNames) == kChartPartCount);

constexpr double kLargestValue = 1e15; // beyond it whole numbers are no longer exact

double Positive(const std::string& text) {
    const double value = LeadingReal(text);
    return value > 0 ? std::min(value, kLargestValue) : 0;
}

// Rupees a share: what was paid, else what was asked for.
double PriceOf(const sOrderHistory& order) {
    const double traded = Positive(order[HistoryField::tradedPrice]);
    return traded > 0 ? traded : Positive(order[HistoryField::price]);
}

bool HoldsIgnoringCase(std::string_view text, std::string_view word) {
    const auto same = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

ChartPart KindOf(const sOrderHistory& order, double filled, double quantity) {
    if (filled > 0) return filled < quantity ? ChartPart::unfilled : ChartPart::filled;
    const std::string& status = order[HistoryField::orderStatus];
    const bool lost = HoldsIgnoringCase(status, "reject") || HoldsIgnoringCase(status, "cancel");
    return lost ? ChartPart::lost : ChartPart::waiting;
}

std::string DateOf(const std::string& timeStamp) {
    return timeStamp.substr(0, timeStamp.find(' '));
}

double& At(ChartParts& parts, ChartPart part) {
    return parts[static_cast<std::size_t>(part)];
}

// The places of the orders in the order of their placement.
std::vector<std::size_t> ByTime(std::span<const sOrderHistory> orders) {
    std::vector<std::size_t> places(orders.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::vector<std::pair<std::int64_t, std::string_view>> times;
    for (const sOrderHistory& order : orders) {
        const std::string& stamp = order[HistoryField::placementTime];
        const std::string date = DateOf(stamp);
        times.emplace_back(ParseDate(date), std::string_view(stamp).substr(date.size()));
        if (times.back().first < 0) return places;
    }
    std::ranges::stable_sort(places, {}, [&](std::size_t place) { return times[place]; });
    return places;
}

std::int64_t InPaise(double rupees) {
    constexpr double most = 9e16;
    return std::llround(std::min(rupees, most) * 100);
}

ChartBar Joined(std::span<const ChartBar> orders) {
    ChartBar bar{orders.front().from, orders.back().to, orders.size()};
    for (const ChartBar& order : orders)
        for (std::size_t i = 0; i < kChartPartCount; ++i)
            bar.values[i] += order.values[i];
    return bar;
}

} // namespace

std::vector<ChartBar> JoinedBars(std::span<const ChartBar> bars, std::size_t most) {
    if (bars.empty() || most == 0) return {};
    const std::size_t together = (bars.size() + most - 1) / most;
    std::vector<ChartBar> joined;
    for (std::size_t i = 0; i < bars.size(); i += together)
        joined.push_back(Joined(bars.subspan(i, std::min(together, bars.size() - i))));
    return joined;
}

ChartPart PartOf(const sOrderHistory& order) {
    const double filled = Positive(order[HistoryField::tradedQuantity]);
    return KindOf(order, filled, std::max(Positive(order[HistoryField::quantity]), filled));
}

double ChartBar::Total() const {
    return std::accumulate(values.begin(), values.end(), 0.0);
}

HistoryChart::HistoryChart(std::span<const sOrderHistory> orders) {
    const auto hasPrice = [](const sOrderHistory& order) { return PriceOf(order) > 0; };
    m_inRupees = !orders.empty() && std::ranges::all_of(orders, hasPrice);
    for (const std::size_t place : ByTime(orders)) {
        const sOrderHistory& order = orders[place];
        const double filled = Positive(order[HistoryField::tradedQuantity]);
        const double quantity = std::max(Positive(order[HistoryField::quantity]), filled);
        const ChartPart kind = KindOf(order, filled, quantity);
        ++m_counts[static_cast<std::size_t>(kind)];
        const std::string date = DateOf(order[HistoryField::placementTime]);
        ChartBar& bar = m_orders.emplace_back(ChartBar{date, date, 1});
        const double price = m_inRupees ? PriceOf(order) : 1;
        At(bar.values, ChartPart::filled) = filled * price;
        if (kind != ChartPart::filled) At(bar.values, kind) = (quantity - filled) * price;
    }
}

std::vector<ChartBar> HistoryChart::Bars(std::size_t most) const {
    return JoinedBars(m_orders, most);
}

std::string HistoryChart::Heading(std::span<const ChartBar> bars) const {
    const std::size_t together = bars.empty() ? 1 : bars.front().orders;
    return std::string(m_inRupees ? "Rupees" : "Quantity")
           + (together == 1 ? " by order" : Format(", %zu orders a bar", together));
}

std::array<std::string, kChartPartCount> HistoryChart::Legend() const {
    std::array<std::string, kChartPartCount> legend;
    for (std::size_t i = 0; i < kChartPartCount; ++i)
        legend[i] = Format("%s: %zu", kPartNames[i], m_counts[i]);
    return legend;
}

std::string HistoryChart::Summary() const {
    if (m_orders.empty()) return "No orders";
    ChartBar all = Joined(m_orders);
    const char* measure = m_inRupees ? "Amount" : "Quantity";
    const auto value = [&](double number) {
        return m_inRupees ? FormatRupees(InPaise(number)) : ValueText(number);
    };
    std::string text = Format("Orders: %zu, from %s to %s. %s: %s. %s filled: %s.", all.orders,
                              all.from.c_str(), all.to.c_str(), measure, value(all.Total()).c_str(), measure,
                              value(At(all.values, ChartPart::filled)).c_str());
    for (const std::string& entry : Legend())
        text += " " + entry + ".";
    return text;
}

std::string HistoryChart::Value(double height) const {
    return m_inRupees ? RupeeText(height) : ValueText(height);
}

double ScaleTop(std::span<const ChartBar> bars) {
    double highest = 0;
    for (const ChartBar& bar : bars)
        highest = std::max(highest, bar.Total());
    if (highest <= 1) return 1;
    const double power = std::pow(10, std::floor(std::log10(highest)));
    for (const double step : {1.0, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0})
        if (step * power >= highest) return step * power;
    return 10 * power;
}

std::string RupeeText(double rupees) {
    std::string text = GroupedRupees(InPaise(rupees));
    if (text.ends_with(".00")) text.resize(text.size() - 3);
    return text;
}

std::string ValueText(double value) {
    return Format("%.15g", std::round(value * 100) / 100);
}

} // namespace planfold
