// What every fuzzer shares: demands on the code under test, and taking an input apart.
//
// Inputs are lines of text where they can be, so that the kept ones can be read and written by hand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace fuzz {

// A demand that does not hold is a finding.
inline void Demand(bool holds, int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "the demand in line %d does not hold\n", line);
    std::abort();
}

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// The input piece by piece; beyond its end everything is empty.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_rest(Text(data, size)) {}
    explicit Input(std::string_view text) : m_rest(text) {}

    bool AtEnd() const { return m_rest.empty(); }
    std::string Rest() const { return std::string(m_rest); }
    std::string Line() { return std::string(CutAt(m_rest, '\n')); }
    unsigned Byte() {
        if (m_rest.empty()) return 0;
        const auto byte = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte;
    }

    // The text up to the separator, which is taken away with it.
    static std::string_view CutAt(std::string_view& text, char separator) {
        const std::size_t end = text.find(separator);
        const std::string_view piece = text.substr(0, end);
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
        return piece;
    }

private:
    std::string_view m_rest;
};

} // namespace fuzz
