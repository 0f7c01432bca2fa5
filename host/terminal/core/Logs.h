// The two logs: what the user sees under the tabs, and the file that says what happened in a session.
#pragma once

#include "host/files/Files.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <fstream>
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

// Every line stands under "All" and under the tab of its kind.
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

// The file is complete up to its last line even when the program dies.
class SessionLog {
public:
    // An empty path writes nothing.
    explicit SessionLog(const std::string& path) {
        if (!path.empty()) m_file.open(PathOf(path), std::ios::trunc);
    }

    void Write(const std::string& line) {
        if (m_file.is_open()) m_file << line << std::endl;
    }

private:
    std::ofstream m_file;
};

} // namespace vesk
