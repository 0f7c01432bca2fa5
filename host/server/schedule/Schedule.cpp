#include "host/server/schedule/Schedule.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace vesk {
namespace {

struct Step {
    std::string_view frequency;
    int days;
    int months;
};
constexpr std::array kSteps{
    Step{"daily", 1, 0},
    Step{"weekly", 7, 0},
    Step{"monthly", 0, 1},
    Step{"yearly", 0, 12},
};

constexpr std::array<std::string_view, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

const Step* FindStep(std::string_view frequency) {
    const auto found = std::find_if(kSteps.begin(), kSteps.end(),
                                    [&](const Step& step) { return step.frequency == frequency; });
    return found == kSteps.end() ? nullptr : &*found;
}

} // namespace

bool IsKnownFrequency(std::string_view frequency) {
    return FindStep(frequency) != nullptr;
}

std::chrono::year_month_day InstalmentDate(std::chrono::year_month_day start, std::string_view frequency,
                                           int index) {
    const Step* found = FindStep(frequency);
    const Step& step = found ? *found : kSteps.front();
    std::chrono::year_month_day date = start + std::chrono::months(step.months * index);
    if (!date.ok()) date = date.year() / date.month() / std::chrono::last;
    return std::chrono::sys_days(date) + std::chrono::days(step.days * index);
}

int InstalmentsBefore(std::chrono::year_month_day start, std::string_view frequency,
                      std::chrono::year_month_day day) {
    const Step* found = FindStep(frequency);
    const Step& step = found ? *found : kSteps.front();
    constexpr int longestMonth = 31;
    const auto days = (std::chrono::sys_days(day) - std::chrono::sys_days(start)).count();
    // Shorter months make the first guess too small, never too large.
    int count = std::max(0, static_cast<int>(days / (step.days + longestMonth * step.months)));
    while (std::chrono::sys_days(InstalmentDate(start, frequency, count)) < std::chrono::sys_days(day))
        ++count;
    return count;
}

std::string RecordDate(std::chrono::year_month_day date) {
    if (!date.ok()) return {};
    char text[32];
    std::snprintf(text, sizeof text, "%02u-%s-%04d", static_cast<unsigned>(date.day()),
                  kMonths[static_cast<unsigned>(date.month()) - 1].data(), static_cast<int>(date.year()));
    return text;
}

std::optional<std::chrono::year_month_day> ParseRecordDate(std::string_view text) {
    constexpr std::size_t monthAt = 3;
    constexpr std::size_t yearAt = 7;
    if (text.size() != 11 || text[monthAt - 1] != '-' || text[yearAt - 1] != '-') return std::nullopt;
    const auto month = std::find(kMonths.begin(), kMonths.end(), text.substr(monthAt, 3));
    const auto day = WholeNumber(text.substr(0, 2));
    const auto year = WholeNumber(text.substr(yearAt));
    if (month == kMonths.end() || !day || !year) return std::nullopt;
    const std::chrono::year_month_day date{
        std::chrono::year(static_cast<int>(*year)),
        std::chrono::month(static_cast<unsigned>(month - kMonths.begin() + 1)),
        std::chrono::day(static_cast<unsigned>(*day))};
    return date.ok() ? std::optional(date) : std::nullopt;
}

std::uint32_t DateNumber(std::chrono::year_month_day date) {
    return static_cast<std::uint32_t>(int{date.year()}) * 10'000 + unsigned{date.month()} * 100
           + unsigned{date.day()};
}

std::chrono::year_month_day DateOf(std::uint32_t number) {
    return std::chrono::year(static_cast<int>(number / 10'000)) / std::chrono::month(number / 100 % 100)
           / std::chrono::day(number % 100);
}

std::string DatedNumber(std::string_view prefix, std::chrono::year_month_day date, std::size_t sequence) {
    char text[40];
    std::snprintf(text, sizeof text, "%02d%02u%02u%07zu", static_cast<int>(date.year()) % 100,
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), sequence);
    return std::string(prefix) + text;
}

std::size_t SequenceIn(std::string_view number, std::size_t prefix) {
    const std::size_t start = prefix + std::string_view("270305").size();
    return number.size() < start ? 0 : base::ReadNumber<std::size_t>(number.substr(start)).value_or(0);
}

std::optional<std::int64_t> WholeNumber(std::string_view text) {
    return text.starts_with('-') ? std::nullopt : base::ReadNumber<std::int64_t>(text);
}

} // namespace vesk
