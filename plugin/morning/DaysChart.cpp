#include "plugin/morning/DaysChart.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/orderentry/PlannedDates.h"

#include <algorithm>

namespace planfold {

namespace {

// The parts in which they are painted, told apart by more than colour.
constexpr auto kPaid = static_cast<std::size_t>(ChartPart::filled);
constexpr auto kReceived = static_cast<std::size_t>(ChartPart::waiting);

double Rupees(std::int64_t paise) {
    return static_cast<double>(paise) / 100;
}

} // namespace

DaysChart::DaysChart(Day first, std::span<const RunSums> days, const ClosedDays& closed) {
    for (Day day = first; const RunSums& sums : days) {
        if (sums.runs > 0 || !closed.Has(day)) {
            const std::string date = FormatPlannedDate(day);
            ChartBar& bar = m_days.emplace_back(ChartBar{date, date, 1});
            bar.values[kPaid] = Rupees(sums[Need::pay]);
            bar.values[kReceived] = Rupees(sums[Need::receive]);
        }
        m_sums.Add(sums);
        day += std::chrono::days(1);
    }
}

std::vector<ChartBar> DaysChart::Bars(std::size_t most) const {
    return JoinedBars(m_days, most);
}

std::string DaysChart::Heading(std::span<const ChartBar> bars) const {
    const std::size_t together = bars.empty() ? 1 : bars.front().orders;
    return together == 1 ? "Rupees by day" : Format("Rupees, %zu days a bar", together);
}

std::array<std::string, kChartPartCount> DaysChart::Legend() const {
    std::array<std::string, kChartPartCount> legend;
    legend[kPaid] = "To pay: " + FormatRupees(m_sums[Need::pay]);
    legend[kReceived] = "To receive: " + FormatRupees(m_sums[Need::receive]);
    return legend;
}

std::string DaysChart::Value(double height) const {
    return RupeeText(height);
}

std::string DaysChart::Summary() const {
    if (m_days.empty()) return "No days with trading";
    std::string text =
        Format("%zu days from %s to %s.", m_days.size(), m_days.front().from.c_str(), m_days.back().to.c_str());
    for (const std::string& entry : Legend())
        if (!entry.empty()) text += " " + entry + ".";
    return text;
}

} // namespace planfold
