#include "plugin/base/Notices.h"

#include "plugin/base/Text.h"

namespace planfold {

namespace {

constexpr std::size_t kMostLines = 30;

} // namespace

void KeptTexts::Add(std::string_view text) {
    if (++m_count <= kMostLines) m_lines.append(m_lines.empty() ? "" : "\n").append(text);
}

std::string KeptTexts::Text() const {
    if (m_count <= kMostLines) return m_lines;
    return m_lines + Format("\n... and %zu more", m_count - kMostLines);
}

} // namespace planfold
