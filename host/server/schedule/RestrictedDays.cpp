#include "host/server/schedule/RestrictedDays.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>

namespace vesk {
namespace {

using Date = std::chrono::year_month_day;

constexpr std::string_view kRestrictedRecord = "restricted";
constexpr std::int64_t kLastDay = 31;
constexpr int kYearsAhead = 20;

std::optional<ServerRefusal> ReadNumber(const FieldRecord& fields, std::uint32_t tag, const char* name,
                                        std::int64_t least, std::int64_t most, std::int64_t& number) {
    const std::string_view text = fields.Text(tag);
    if (text.empty()) return MissingField(name);
    number = WholeNumber(text).value_or(least - 1);
    if (number < least || number > most) return WrongValue(name, text);
    return std::nullopt;
}

std::optional<ServerRefusal> ReadRange(const FieldRecord& fields, std::chrono::year firstYear,
                                       std::chrono::year lastYear, RestrictedRange& range) {
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::int64_t year = 0;
    if (auto refusal = ReadNumber(fields, tag::startDate, "from-day", 1, kLastDay, from)) return refusal;
    if (auto refusal = ReadNumber(fields, tag::restrictedTo, "to-day", 1, kLastDay, to)) return refusal;
    if (auto refusal = ReadNumber(fields, tag::restrictedYear, "year", int{firstYear}, int{lastYear}, year))
        return refusal;
    if (from > to) return ServerRefusal{kCodeWrongValue, "The from-day is behind the to-day"};
    range = {
        static_cast<unsigned>(from), static_cast<unsigned>(to), std::chrono::year(static_cast<int>(year)), {}};
    return std::nullopt;
}

} // namespace

std::optional<ServerRefusal> RestrictedRange::Read(void* request, Date today, RestrictedRange& range) {
    FieldRecord fields;
    for (const std::uint32_t tag : {tag::startDate, tag::restrictedTo, tag::restrictedYear})
        fields.Set(tag, qmx::Text(request, tag));
    auto refusal = ReadRange(fields, today.year(), today.year() + std::chrono::years(kYearsAhead), range);
    range.since = today;
    return refusal;
}

FieldRecord RestrictedRange::Fields() const {
    FieldRecord fields;
    fields.Set(tag::startDate, std::to_string(fromDay));
    fields.Set(tag::restrictedTo, std::to_string(toDay));
    fields.Set(tag::restrictedYear, std::to_string(int{year}));
    return fields;
}

std::string RestrictedRange::Json() const {
    FieldRecord fields = Fields();
    fields.Set(tag::registrationDate, RecordDate(since));
    return fields.JsonAs(kRestrictedRecord);
}

std::optional<RestrictedRange> RestrictedRange::FromJson(std::string_view text) {
    FieldRecord fields;
    RestrictedRange range;
    // The clock may stand anywhere by now.
    constexpr std::chrono::year earliest(1);
    if (!RecordReader(text).TakeAll(kRestrictedRecord, fields)
        || ReadRange(fields, earliest, std::chrono::year::max(), range))
        return std::nullopt;
    if (const auto date = ParseRecordDate(fields.Text(tag::registrationDate))) range.since = *date;
    return range;
}

void RestrictedDays::Set(const RestrictedRange& range) {
    std::erase_if(m_ranges, [&](const RestrictedRange& held) { return held.year == range.year; });
    m_ranges.push_back(range);
    ++m_changes;
}

bool RestrictedDays::Has(Date day) const {
    const auto number = static_cast<unsigned>(day.day());
    return std::any_of(m_ranges.begin(), m_ranges.end(), [&](const RestrictedRange& range) {
        return range.year == day.year() && range.fromDay <= number && number <= range.toDay;
    });
}

std::vector<Date> RestrictedDays::All() const {
    std::vector<Date> days;
    for (const RestrictedRange& range : m_ranges)
        for (unsigned month = 1; month <= 12; ++month)
            for (unsigned day = range.fromDay; day <= range.toDay; ++day)
                if (const Date date{range.year, std::chrono::month(month), std::chrono::day(day)}; date.ok())
                    days.push_back(date);
    std::sort(days.begin(), days.end());
    return days;
}

bool MarketDays::IsOpen(std::chrono::sys_days day) const {
    const std::chrono::weekday weekday(day);
    return weekday != std::chrono::Saturday && weekday != std::chrono::Sunday
           && !std::binary_search(nonTrading.begin(), nonTrading.end(), std::chrono::year_month_day(day))
           && !restricted.Has(day);
}

std::chrono::sys_days MarketDays::FirstOpen(std::chrono::sys_days from) const {
    while (!IsOpen(from))
        from += std::chrono::days(1);
    return from;
}

} // namespace vesk
