#include "plugin/import/XmlCutter.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr int kDeepest = 64;
constexpr std::size_t kLongestElement = 4u << 20;
constexpr std::size_t kPiece = 64u << 10;

} // namespace

bool XmlCutter::Refuse(std::string_view why) {
    if (m_fault.empty()) m_fault = why;
    return false;
}

// False at the end of the part.
bool XmlCutter::Fill() {
    if (!m_fault.empty()) return false;
    if (m_keep > 0) {
        m_buffer.erase(0, m_keep);
        m_at -= m_keep;
        m_keep = 0;
    }
    const std::size_t size = m_buffer.size();
    if (size > kLongestElement) return Refuse("an element of the workbook is longer than 4 MB");
    m_buffer.resize(size + kPiece);
    m_buffer.resize(size + m_part.Read({m_buffer.data() + size, kPiece}));
    if (!m_part.Fault().empty()) return Refuse(m_part.Fault());
    return m_buffer.size() > size;
}

// The place behind it, counted from m_keep, as the buffer moves; npos without one.
std::size_t XmlCutter::Find(std::string_view what, std::size_t from) {
    std::size_t offset = from - m_keep;
    while (true) {
        const std::size_t found = m_buffer.find(what, m_keep + offset);
        if (found != m_buffer.npos) return found + what.size() - m_keep;
        const std::size_t left = m_buffer.size() - m_keep;
        offset = std::max(offset, left - std::min(left, what.size() - 1));
        if (!Fill()) return m_buffer.npos;
    }
}

// Behind the ">" that closes it; one in a quoted value does not.
std::size_t XmlCutter::EndOfTag(std::size_t from) {
    std::size_t offset = from - m_keep;
    char quote = 0;
    while (true) {
        for (; m_keep + offset < m_buffer.size(); ++offset) {
            const char c = m_buffer[m_keep + offset];
            if (quote ? c == quote : c == '"' || c == '\'')
                quote = quote ? '\0' : c;
            else if (!quote && c == '>')
                return offset + 1;
        }
        if (!Fill()) return m_buffer.npos;
    }
}

bool XmlCutter::NextTag(Tag& tag) {
    while (true) {
        std::size_t found = Find("<", m_at);
        if (found == m_buffer.npos) return m_depth == 0 ? false : Refuse(kBroken);
        const std::size_t begin = found - 1; // from m_keep
        while (m_buffer.size() - m_keep < begin + 9 && Fill()) {
        }
        const std::string_view ahead = std::string_view(m_buffer).substr(m_keep + begin);
        const std::string_view close = ahead.starts_with("<!--")        ? "-->"
                                       : ahead.starts_with("<![CDATA[") ? "]]>"
                                       : ahead.starts_with("<?")        ? "?>"
                                                                        : "";
        if (close.empty() && ahead.starts_with("<!")) return Refuse("the workbook has a document type");
        const std::size_t end = close.empty() ? EndOfTag(m_keep + begin + 1) : Find(close, m_keep + begin + 2);
        if (end == m_buffer.npos) return Refuse(kBroken);
        m_at = m_keep + end;
        if (!close.empty()) continue;
        tag = {m_keep + begin, m_at, m_buffer[m_keep + begin + 1] == '/', m_buffer[m_at - 2] == '/'};
        return true;
    }
}

bool XmlCutter::IsNamed(const Tag& tag) const {
    std::string_view text = std::string_view(m_buffer).substr(tag.begin, tag.end - tag.begin);
    text.remove_prefix(tag.isEnd ? 2 : 1);
    text = text.substr(0, text.find_first_of(" \t\r\n/>"));
    return text.substr(text.find(':') + 1) == m_name;
}

bool XmlCutter::Next(std::string& element) {
    int outer = -1; // the depth at which the element stands
    Tag tag;
    while (true) {
        if (outer < 0) m_keep = m_at;
        if (!NextTag(tag)) return false;
        if (tag.isEnd) {
            if (--m_depth < 0) return Refuse(kBroken);
        } else {
            if (outer < 0 && IsNamed(tag)) {
                outer = m_depth;
                m_keep = tag.begin;
            }
            if (!tag.isEmpty && ++m_depth > kDeepest) return Refuse("the workbook's XML is nested too deep");
        }
        if (outer < 0 || m_depth != outer) continue;
        element.assign(m_buffer, m_keep, tag.end - m_keep);
        return true;
    }
}

} // namespace planfold
