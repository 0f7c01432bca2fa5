#include "plugin/base/Numbers.h"

#include "plugin/base/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace planfold {

namespace {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The text from its number on, the sign taken off.
struct Unsigned {
    std::string_view text;
    bool negative;
};

Unsigned SkipToNumber(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    const bool sign = !text.empty() && (text.front() == '-' || text.front() == '+');
    const bool negative = sign && text.front() == '-';
    if (sign) text.remove_prefix(1);
    return {text, negative};
}

constexpr std::int64_t kFirstBeyond32Bit = 2147483648;

// None when the text is no number or leaves 64 bits.
std::optional<std::int64_t> ScaledPrice(std::string_view text, const PriceScale& scale) {
    const auto [number, negative] = SkipToNumber(text);
    std::int64_t value = 0;
    int fraction = -1;
    bool anyDigit = false;
    const auto append = [&](int digit) {
        return !__builtin_mul_overflow(value, std::int64_t{10}, &value)
               && !__builtin_add_overflow(value, std::int64_t{digit}, &value);
    };
    for (const char c : number) {
        if (c == '.' && fraction < 0) {
            fraction = 0;
        } else if (IsDigit(c)) {
            anyDigit = true;
            if (fraction == scale.decimals) continue;
            if (fraction >= 0) ++fraction;
            if (!append(c - '0')) return std::nullopt;
        } else {
            return std::nullopt;
        }
    }
    if (!anyDigit) return std::nullopt;
    for (int i = std::max(fraction, 0); i < scale.decimals; ++i)
        if (!append(0)) return std::nullopt;
    const auto tickFactor = static_cast<std::int64_t>(scale.multiplier / std::pow(10.0, scale.decimals));
    if (__builtin_mul_overflow(value, tickFactor, &value)) return std::nullopt;
    return negative ? -value : value;
}

} // namespace

PriceScale ScaleOf(const ScripDetails* details) {
    PriceScale scale;
    if (!details) return scale;
    if (details->decimals >= 0 && details->decimals <= 9) scale.decimals = details->decimals;
    if (details->priceMultiplier > 0 && details->priceMultiplier <= 1e12)
        scale.multiplier = details->priceMultiplier;
    if (details->tickSize > 0 && details->tickSize < kFirstBeyond32Bit) scale.tickSize = details->tickSize;
    return scale;
}

std::int64_t LeadingInteger(std::string_view text) {
    const auto [number, negative] = SkipToNumber(text);
    if (number.empty() || !IsDigit(number.front())) return 0;
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range)
        return negative ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
    return negative ? -value : value;
}

double LeadingReal(std::string_view text) {
    const auto [number, negative] = SkipToNumber(text);
    // Words such as "inf" and "nan" are no numbers here.
    if (number.empty() || (!IsDigit(number.front()) && number.front() != '.')) return 0.0;
    double value = 0.0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) {
        // Too large and too small are told apart by the exponent's sign or, without one, by the point.
        const std::string_view used(number.data(), static_cast<std::size_t>(end - number.data()));
        const std::size_t exponent = used.find_first_of("eE");
        const bool tiny =
            exponent != used.npos ? used[exponent + 1] == '-' : used.front() == '.' || used.starts_with("0.");
        value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return negative ? -value : value;
}

bool AllDigits(std::string_view text) {
    return std::ranges::all_of(text, IsDigit);
}

std::string FormatRupees(std::int64_t paise) {
    return "Rs " + GroupedRupees(paise);
}

std::string GroupedRupees(std::int64_t paise) {
    const std::int64_t rupees = paise / 100;
    const auto rest = static_cast<int>(paise % 100);
    return (paise < 0 && rupees == 0 ? "-" : "") + GroupedCount(rupees)
           + Format(".%02d", rest < 0 ? -rest : rest);
}

std::string InRupees(std::int64_t paise) {
    const auto size = static_cast<unsigned long long>(paise < 0 ? -paise : paise);
    return Format("%s%llu.%02llu", paise < 0 ? "-" : "", size / 100, size % 100);
}

std::string InPaise(std::string_view rupees) {
    constexpr std::size_t places = 2;
    const std::size_t point = std::min(rupees.find('.'), rupees.size());
    std::string paise(rupees.substr(0, point));
    const std::string_view fraction = rupees.substr(std::min(point + 1, rupees.size())).substr(0, places);
    paise.append(fraction).append(places - fraction.size(), '0');
    return paise.erase(0, std::min(paise.find_first_not_of('0'), paise.size()));
}

// Three digits, then groups of two.
std::string GroupedCount(std::int64_t count) {
    constexpr std::size_t firstGroup = 3, group = 2;
    std::string text = Format("%lld", static_cast<long long>(count));
    const std::size_t sign = count < 0 ? 1 : 0;
    for (std::size_t at = firstGroup; at + sign < text.size(); at += group + 1)
        text.insert(text.size() - at, ",");
    return text;
}

bool CheckPriceRange(std::string_view price, std::string& message, const ScripDetails* details,
                     bool check32Bit) {
    const auto scaled = ScaledPrice(price, ScaleOf(details));
    bool passed = true;
    if (check32Bit && (!scaled || *scaled >= kFirstBeyond32Bit)) {
        message = " exceeds the long variable range";
        passed = false;
    }
    if (!scaled) {
        if (message.empty()) message = " exceeds the long long variable range";
        passed = false;
    }
    std::string largest;
    if (!passed && FormatMaxPrice(largest, details)) message += Format(", Max Price is : %s", largest.c_str());
    return passed;
}

bool FormatMaxPrice(std::string& text, const ScripDetails* details) {
    if (!details) return false;
    const PriceScale scale = ScaleOf(details);
    std::int64_t value = kFirstBeyond32Bit;
    while (value >= kFirstBeyond32Bit) {
        const std::int64_t remainder = value % scale.tickSize;
        value -= remainder != 0 ? remainder : scale.tickSize;
    }
    text = Format("%.*lf", scale.decimals, static_cast<double>(value) / scale.multiplier);
    return true;
}

} // namespace planfold
