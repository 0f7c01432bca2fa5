// The instalments of a registration over time, as bars: how much each order asked for and what became of it, in
// rupees when every order has a price, else in shares.
#pragma once

#include "plugin/history/HistoryRecord.h"

#include <array>
#include <span>
#include <string>
#include <vector>

namespace planfold {

// The parts of a bar, from the bottom: an order that was filled in part has a filled and an unfilled one; what
// was rejected or cancelled before any fill is lost.
enum class ChartPart { filled, unfilled, waiting, lost, count };
inline constexpr std::size_t kChartPartCount = static_cast<std::size_t>(ChartPart::count);
using ChartParts = std::array<double, kChartPartCount>;

struct ChartBar {
    std::string from; // date of its first order
    std::string to;   // and of its last
    std::size_t orders = 0;
    ChartParts values{}; // rupees or shares

    double Total() const;
};

// They themselves, or when these are more than `most`, every few that follow each other as one.
std::vector<ChartBar> JoinedBars(std::span<const ChartBar> bars, std::size_t most);

// What is painted. It knows no pixels; whoever paints says how many bars there is room for.
class BarChart {
public:
    virtual std::vector<ChartBar> Bars(std::size_t most) const = 0;
    // What the height of the bars is counted in.
    virtual std::string Heading(std::span<const ChartBar> bars) const = 0;
    // An entry a part; a part without one is in no bar.
    virtual std::array<std::string, kChartPartCount> Legend() const = 0;
    // A height, at the scale.
    virtual std::string Value(double height) const = 0;

protected:
    ~BarChart() = default;
};

class HistoryChart final : public BarChart {
public:
    HistoryChart() = default;
    // In the order of placement; as given where a time stamp cannot be read.
    explicit HistoryChart(std::span<const sOrderHistory> orders);

    // A bar an order, or, when these are more than `most`, one for every few orders that follow each other.
    std::vector<ChartBar> Bars(std::size_t most) const override;
    std::string Heading(std::span<const ChartBar> bars) const override;
    // How many orders are of each kind.
    std::array<std::string, kChartPartCount> Legend() const override;
    std::string Value(double height) const override;
    // All of it in words.
    std::string Summary() const;

private:
    bool m_inRupees = false;
    std::vector<ChartBar> m_orders;
    std::array<std::size_t, kChartPartCount> m_counts{};
};

// What has become of an order as a whole: `unfilled` when it was filled in part.
ChartPart PartOf(const sOrderHistory& order);

// The smallest round number that no bar is higher than.
double ScaleTop(std::span<const ChartBar> bars);
// Without a fraction that says nothing; the first in groups, "1,50,000".
std::string RupeeText(double rupees);
std::string ValueText(double value);

} // namespace planfold
