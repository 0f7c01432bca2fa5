#include "host/server/Schedule.h"

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

std::string RecordDate(std::chrono::year_month_day date) {
    static constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (!date.ok()) return {};
    char text[32];
    std::snprintf(text, sizeof text, "%02u-%s-%04d", static_cast<unsigned>(date.day()),
                  months[static_cast<unsigned>(date.month()) - 1], static_cast<int>(date.year()));
    return text;
}

} // namespace vesk
