// The lines of the log under its tabs: every line stands under "All" and under the tab of its kind.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace vesk {

enum class LogTab : std::size_t { all, orders, errors, system, count };
inline constexpr std::array<std::string_view, static_cast<std::size_t>(LogTab::count)> kLogTabNames{
    "All",
    "Orders",
    "Errors",
    "System",
};

struct LogLine {
    std::string time; // as shown
    std::string text;
    LogTab kind = LogTab::system;
};

class TabbedLog {
public:
    // A line from a plug-in: an error line when it says so, else an order line.
    const LogLine& AddFromPlugin(std::string time, std::string_view text);
    const LogLine& AddFromSystem(std::string time, std::string_view text);

    std::size_t Count(LogTab tab) const;
    // Row 0 is the oldest line that the tab still holds.
    const LogLine& At(LogTab tab, std::size_t row) const;
    bool Contains(std::string_view part) const;

    // Older lines are dropped; the count of each tab stays below this.
    static constexpr std::size_t kMostLines = 20'000;

private:
    const LogLine& Add(LogLine line);

    std::deque<LogLine> m_lines;
    std::size_t m_dropped = 0; // lines dropped so far: number of the line at the front of m_lines
    // Numbers of the lines under each tab.
    std::array<std::deque<std::size_t>, static_cast<std::size_t>(LogTab::count)> m_rows;
};

} // namespace vesk
