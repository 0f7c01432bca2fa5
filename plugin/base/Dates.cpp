#include "plugin/base/Dates.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>

namespace planfold {

namespace {

constexpr std::int64_t kMissingPart = -1;
constexpr std::int64_t kNoSuchDate = -2;

std::int64_t MakeTime(const LocalDateTime& local, int daylightSaving) {
    std::tm parts{};
    parts.tm_year = local.year - 1900;
    parts.tm_mon = local.month - 1;
    parts.tm_mday = local.day;
    parts.tm_hour = local.hour;
    parts.tm_min = local.minute;
    parts.tm_sec = local.second;
    parts.tm_isdst = daylightSaving;
    return static_cast<std::int64_t>(std::mktime(&parts));
}

std::chrono::sys_days CalendarDay(const LocalDateTime& date) {
    return std::chrono::year_month_day(std::chrono::year(date.year),
                                       std::chrono::month(static_cast<unsigned>(date.month)),
                                       std::chrono::day(static_cast<unsigned>(date.day)));
}

// A date that days can be added to.
class WorkingDate {
public:
    explicit WorkingDate(const LocalDateTime& date) : m_days(CalendarDay(date)) {}

    void Move(int days) {
        m_days += std::chrono::days(days);
        m_counted += days;
    }
    int Counted() const { return m_counted; }
    bool InLeapYear() const { return IsLeapYear(static_cast<int>(Date().year())); }
    unsigned Month() const { return static_cast<unsigned>(Date().month()); }
    unsigned Day() const { return static_cast<unsigned>(Date().day()); }
    bool IsLeapDay() const { return Month() == 2 && Day() == 29; }

private:
    std::chrono::year_month_day Date() const { return std::chrono::year_month_day(m_days); }

    std::chrono::sys_days m_days;
    int m_counted = 0;
};

// Day, month and year; none of them empty. Runs of the separator count as one.
bool SplitDate(std::string_view text, std::array<std::string_view, 3>& parts) {
    const char separator = text.find('/') != text.npos ? '/' : '-';
    for (std::string_view& part : parts) {
        const std::size_t begin = text.find_first_not_of(separator);
        if (begin == text.npos) return false;
        text.remove_prefix(begin);
        const std::size_t end = std::min(text.find(separator), text.size());
        part = text.substr(0, end);
        text.remove_prefix(end);
    }
    return true;
}

bool IsCalendarDay(std::int64_t year, std::int64_t month, std::int64_t day) {
    if (month < 1 || month > 12 || day < 1 || day > 31) return false;
    if (month == 2) return day < 29 || (day == 29 && year % 4 == 0);
    const bool thirtyDays = month == 4 || month == 6 || month == 9 || month == 11;
    return day < 31 || !thirtyDays;
}

} // namespace

std::int64_t ToSeconds(const LocalDateTime& local) {
    return MakeTime(local, -1);
}

LocalDateTime ToLocal(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    const std::tm* parts = std::localtime(&time);
    if (!parts) return {};
    return {parts->tm_year + 1900, parts->tm_mon + 1, parts->tm_mday,
            parts->tm_hour,        parts->tm_min,     parts->tm_sec};
}

bool IsLeapYear(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int CountDaysInYears(const LocalDateTime& date, int years) {
    WorkingDate at(date);
    for (int round = 1; round <= years; ++round) {
        if (round == 1) {
            at.Move(at.InLeapYear() && at.Month() == 2 && at.Day() < 29 ? 366 : 365);
        } else if (!at.InLeapYear()) {
            at.Move(365);
        } else if (at.Month() < 3 && !at.IsLeapDay()) {
            at.Move(366);
        } else {
            at.Move(1);
            at.Move(365);
        }
    }
    if (at.InLeapYear() && (at.Month() >= 3 || at.IsLeapDay())) at.Move(1);
    return at.Counted();
}

bool IsLater(const LocalDateTime& date, const LocalDateTime& day, int days) {
    const std::chrono::sys_days latest = CalendarDay(day) + std::chrono::days(days);
    return CalendarDay(date) > latest || (CalendarDay(date) == latest && date != date.Midnight());
}

std::string FormatPickerDate(const LocalDateTime& date) {
    return Format("%02d/%s/%04d", date.day, std::string(MonthName(date.month)).c_str(), date.year);
}

std::int64_t ParseDate(std::string_view text) {
    std::array<std::string_view, 3> parts;
    if (!SplitDate(text, parts)) return kMissingPart;
    const auto& [dayText, monthText, yearText] = parts;
    const bool monthIsNumber = monthText.front() >= '0' && monthText.front() <= '9';
    const std::int64_t day = LeadingInteger(dayText);
    const std::int64_t month = monthIsNumber ? LeadingInteger(monthText) : MonthNumber(monthText);
    const std::int64_t year = LeadingInteger(
        yearText.size() < 3 ? Format("%d%s", 20, std::string(yearText).c_str()) : std::string(yearText));
    // A month that is no month must not slide into the year before.
    if (!IsCalendarDay(year, month, day) || year < 0 || year > 9999) return kNoSuchDate;
    return DateSeconds({static_cast<int>(year), static_cast<int>(month), static_cast<int>(day)});
}

std::int64_t DateSeconds(const LocalDateTime& date) {
    return MakeTime(date.Midnight(), 0);
}

} // namespace planfold
