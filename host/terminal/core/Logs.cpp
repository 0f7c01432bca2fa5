#include "host/terminal/core/Logs.h"

#include <algorithm>
#include <utility>

namespace vesk {

const LogLine& TabbedLog::AddFromPlugin(std::string time, std::string_view text) {
    const bool error = text.starts_with("Error") || text.find(" Failed") != std::string_view::npos;
    return Add({std::move(time), std::string(text), error ? LogTab::errors : LogTab::orders});
}

const LogLine& TabbedLog::AddFromSystem(std::string time, std::string_view text) {
    return Add({std::move(time), std::string(text), LogTab::system});
}

const LogLine& TabbedLog::Add(LogLine line) {
    if (m_lines.size() == kMostLines) {
        for (auto& rows : m_rows)
            if (!rows.empty() && rows.front() == m_dropped) rows.pop_front();
        m_lines.pop_front();
        ++m_dropped;
    }
    const std::size_t number = m_dropped + m_lines.size();
    m_rows[static_cast<std::size_t>(LogTab::all)].push_back(number);
    m_rows[static_cast<std::size_t>(line.kind)].push_back(number);
    return m_lines.emplace_back(std::move(line));
}

std::size_t TabbedLog::Count(LogTab tab) const {
    return m_rows[static_cast<std::size_t>(tab)].size();
}

const LogLine& TabbedLog::At(LogTab tab, std::size_t row) const {
    return m_lines.at(m_rows[static_cast<std::size_t>(tab)].at(row) - m_dropped);
}

bool TabbedLog::Contains(std::string_view part) const {
    return std::ranges::any_of(m_lines,
                               [&](const LogLine& line) { return line.text.find(part) != std::string::npos; });
}

} // namespace vesk
