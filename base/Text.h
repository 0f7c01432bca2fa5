// Text as other programs have it: numbers, whatever locale the process has (any of its modules may set one,
// with another decimal point), and the encodings of files.
#pragma once

#include <charconv>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace base {

#ifdef __MINGW32__
#define BASE_PRINTF gnu_printf
#else
#define BASE_PRINTF printf
#endif

// As printf does in the "C" locale. The conversions are d, i, u, c, s, f and g, with "-", "0", a width, a
// precision (also "*") and a length. The format is always one of our own literals, never text from outside.
[[gnu::format(BASE_PRINTF, 1, 2)]] std::string Format(const char* format, ...);

// The pieces, one behind the other.
std::string Joined(std::initializer_list<std::string_view> pieces);

// The number that the whole text is, in the type's range: nothing may stand before or behind it.
template <class Number>
std::optional<Number> ReadNumber(std::string_view text, int base = 10) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// Without those of the blanks that stand before and behind it.
std::string_view Trimmed(std::string_view text, std::string_view blanks);

// A byte order mark at the start of a file belongs to no field.
std::string_view WithoutMark(std::string_view text);

// Whether it is UTF-16, by its mark or by its looks: nothing can be read from it.
bool IsUtf16(std::string_view text);

} // namespace base
