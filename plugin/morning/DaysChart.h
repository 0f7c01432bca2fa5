// The money of the days to come as bars: what clients pay, and what they receive.
#pragma once

#include "plugin/history/HistoryChart.h"
#include "plugin/morning/RunReckoning.h"

namespace planfold {

class DaysChart final : public BarChart {
public:
    DaysChart() = default;
    // `days` begin with the first one of the period; those without trading and without runs have no bar.
    DaysChart(Day first, std::span<const RunSums> days, const ClosedDays& closed);

    // A bar a day, or, when these are more than `most`, one for every few days that follow each other.
    std::vector<ChartBar> Bars(std::size_t most) const override;
    std::string Heading(std::span<const ChartBar> bars) const override;
    std::array<std::string, kChartPartCount> Legend() const override;
    std::string Value(double height) const override;
    // All of it in words.
    std::string Summary() const;

private:
    std::vector<ChartBar> m_days;
    RunSums m_sums;
};

} // namespace planfold
