#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace base {
namespace {

enum class Length { usual, isLong, longLong, size };

struct Conversion {
    bool left = false, zeros = false;
    std::size_t width = 0;
    int precision = -1; // none
    Length length = Length::usual;
    char letter = 0;
};

class Writer {
public:
    explicit Writer(std::va_list* arguments) : m_arguments(*arguments) {}

    std::string Write(const char* format) {
        while (const char* const percent = std::strchr(format, '%')) {
            m_text.append(format, percent);
            format = percent + 1;
            Add(ReadConversion(format));
        }
        m_text += format;
        return std::move(m_text);
    }

private:
    Conversion ReadConversion(const char*& at) {
        Conversion read;
        for (; *at == '-' || *at == '0'; ++at)
            (*at == '-' ? read.left : read.zeros) = true;
        for (; *at >= '0' && *at <= '9'; ++at)
            read.width = read.width * 10 + static_cast<std::size_t>(*at - '0');
        if (*at == '.') {
            ++at;
            if (*at == '*') {
                ++at;
                read.precision = va_arg(m_arguments, int);
            } else {
                for (read.precision = 0; *at >= '0' && *at <= '9'; ++at)
                    read.precision = read.precision * 10 + (*at - '0');
            }
        }
        for (; *at == 'l'; ++at)
            read.length = read.length == Length::usual ? Length::isLong : Length::longLong;
        if (*at == 'z') read.length = Length::size, ++at;
        read.letter = *at;
        if (*at) ++at;
        return read;
    }

    void Add(const Conversion& conversion) {
        switch (conversion.letter) {
        case '%':
            m_text += '%';
            return;
        case 'c':
            return Pad(conversion, std::string(1, static_cast<char>(va_arg(m_arguments, int))));
        case 's':
            return Pad(conversion, Text(conversion.precision));
        case 'd':
        case 'i':
            return AddNumber(conversion, Signed(conversion.length));
        case 'u':
            return AddNumber(conversion, Unsigned(conversion.length));
        case 'f':
            return AddReal(conversion, std::chars_format::fixed);
        case 'g':
            return AddReal(conversion, std::chars_format::general);
        default:
            throw std::invalid_argument("a format with an unknown conversion");
        }
    }

    std::string_view Text(int precision) {
        const char* const text = va_arg(m_arguments, const char*);
        // Without a zero at its end only a text whose length is told may be.
        return precision < 0 ? text
                             : std::string_view(text, strnlen(text, static_cast<std::size_t>(precision)));
    }

    std::int64_t Signed(Length length) {
        switch (length) {
        case Length::usual:
            return va_arg(m_arguments, int);
        case Length::isLong:
            return va_arg(m_arguments, long);
        default:
            return va_arg(m_arguments, long long);
        }
    }

    std::uint64_t Unsigned(Length length) {
        switch (length) {
        case Length::usual:
            return va_arg(m_arguments, unsigned);
        case Length::isLong:
            return va_arg(m_arguments, unsigned long);
        default:
            return va_arg(m_arguments, unsigned long long);
        }
    }

    void AddReal(const Conversion& conversion, std::chars_format format) {
        constexpr int usual = 6;
        AddNumber(conversion, va_arg(m_arguments, double), format,
                  conversion.precision < 0 ? usual : conversion.precision);
    }

    template <class... Number>
    void AddNumber(const Conversion& conversion, Number... number) {
        char made[512]; // the largest number has 309 digits before its point
        const auto [end, fault] = std::to_chars(made, made + sizeof made, number...);
        if (fault != std::errc()) throw std::length_error("a number with too many digits");
        Pad(conversion, {made, end});
    }

    void Pad(const Conversion& conversion, std::string_view text) {
        const std::size_t missing = conversion.width > text.size() ? conversion.width - text.size() : 0;
        const bool zeros = conversion.zeros && !conversion.left;
        if (zeros && text.starts_with('-')) {
            m_text += '-';
            text.remove_prefix(1);
        }
        if (!conversion.left) m_text.append(missing, zeros ? '0' : ' ');
        m_text += text;
        if (conversion.left) m_text.append(missing, ' ');
    }

    std::va_list& m_arguments;
    std::string m_text;
};

} // namespace

std::string Format(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = Writer(&arguments).Write(format);
    va_end(arguments);
    return text;
}

std::string Joined(std::initializer_list<std::string_view> pieces) {
    std::size_t size = 0;
    for (const std::string_view piece : pieces)
        size += piece.size();
    std::string text;
    text.reserve(size);
    for (const std::string_view piece : pieces)
        text += piece;
    return text;
}

std::string_view Trimmed(std::string_view text, std::string_view blanks) {
    const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

std::string_view WithoutMark(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.remove_prefix(mark.size());
    return text;
}

// Without a mark it is one whose first characters mostly have a zero for one half, and hardly for the other.
bool IsUtf16(std::string_view text) {
    constexpr std::size_t fewest = 16, enough = 4096;
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) return true;
    std::size_t zeros[2] = {};
    const std::size_t looked = std::min(text.size(), enough);
    for (std::size_t i = 0; i < looked; ++i)
        zeros[i % 2] += text[i] == '\0';
    const auto [few, many] = std::minmax(zeros[0], zeros[1]);
    return looked >= fewest && many >= looked / 4 && few <= many / 8;
}

} // namespace base
