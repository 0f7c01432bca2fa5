#include "host/korvexcontrols/model/ColumnFilter.h"

#include "base/Text.h"
#include "host/korvexcontrols/model/Cells.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvex {
namespace {

constexpr OperatorName kTextOperators[] = {
    {FilterOperator::contains, "contains"},
    {FilterOperator::containsNot, "does not contain"},
    {FilterOperator::equalsText, "equals"},
    {FilterOperator::beginsWith, "begins with"},
};
constexpr OperatorName kNumberOperators[] = {
    {FilterOperator::equals, "="},        {FilterOperator::equalsNot, "not ="}, {FilterOperator::less, "<"},
    {FilterOperator::atMost, "<="},       {FilterOperator::greater, ">"},       {FilterOperator::atLeast, ">="},
    {FilterOperator::between, "between"},
};

// Of columns of text; what compares values stands first.
constexpr OperatorName kWholeNumberOperators[] = {
    {FilterOperator::equals, "="},
    {FilterOperator::equalsNot, "not ="},
    {FilterOperator::less, "<"},
    {FilterOperator::atMost, "<="},
    {FilterOperator::greater, ">"},
    {FilterOperator::atLeast, ">="},
    {FilterOperator::between, "between"},
    {FilterOperator::contains, "contains"},
    {FilterOperator::containsNot, "does not contain"},
    {FilterOperator::beginsWith, "begins with"},
};
constexpr OperatorName kDateOperators[] = {
    {FilterOperator::on, "on"},
    {FilterOperator::before, "before"},
    {FilterOperator::after, "after"},
    {FilterOperator::betweenDates, "between"},
    {FilterOperator::nextDays, "next 7 days"},
    {FilterOperator::contains, "contains"},
    {FilterOperator::containsNot, "does not contain"},
};
constexpr std::int64_t kNextDays = 7;
constexpr std::string_view kToday = "today";

bool ComparesDates(FilterOperator id) {
    return id >= FilterOperator::on && id <= FilterOperator::nextDays;
}

bool IsToday(std::string_view text) {
    return CompareFolded(base::Trimmed(text, " "), kToday) == 0;
}

std::optional<std::int64_t> ReadDay(std::string_view text, std::int64_t today) {
    if (IsToday(text)) return today;
    const auto date = ReadDate(base::Trimmed(text, " "));
    return date ? std::optional(DayOf(*date)) : std::nullopt;
}

bool ComparesNumbers(FilterOperator id) {
    return id >= FilterOperator::equals && id <= FilterOperator::between;
}

} // namespace

ValueType ContentOf(std::span<const std::string_view> cells) {
    bool dates = false, numbers = false;
    for (const std::string_view cell : cells) {
        if (cell.empty()) continue;
        const bool date = ReadDate(cell).has_value();
        if (!date && !ReadTextValue(cell)) return ValueType::text;
        (date ? dates : numbers) = true;
    }
    if (dates == numbers) return ValueType::text;
    return dates ? ValueType::date : ValueType::number;
}

std::span<const OperatorName> OperatorsFor(ValueType type, ValueType content) {
    if (IsNumeric(type)) return kNumberOperators;
    if (type == ValueType::date || (type == ValueType::text && content == ValueType::date))
        return kDateOperators;
    if (type == ValueType::text && content == ValueType::number) return kWholeNumberOperators;
    return kTextOperators;
}

int ValuesOf(FilterOperator id) {
    if (id == FilterOperator::nextDays) return 0;
    return id == FilterOperator::between || id == FilterOperator::betweenDates ? 2 : 1;
}

namespace {

std::string FaultOfDates(const FilterInput& input, std::int64_t today) {
    const std::string* values[] = {&input.value, &input.second};
    std::int64_t days[2] = {};
    for (int i = 0; i < ValuesOf(input.id); ++i) {
        const auto day = ReadDay(*values[i], today);
        if (!day) return "\"" + *values[i] + "\" is not a date such as 05-Mar-2027.";
        days[i] = *day;
    }
    // What today is may be otherwise tomorrow.
    const bool moves = IsToday(input.value) || IsToday(input.second);
    if (input.id == FilterOperator::betweenDates && !moves && days[1] < days[0])
        return "The second date is before the first.";
    return {};
}

} // namespace

std::string ColumnFilter::FaultOf(const FilterInput& input, std::int64_t today) {
    if (ComparesDates(input.id)) return FaultOfDates(input, today);
    if (!ComparesNumbers(input.id)) {
        // An empty text is in every cell, but a cell may equal it.
        const bool needsText = input.id != FilterOperator::equalsText && input.id != FilterOperator::exactly;
        return needsText && input.value.empty() ? "Type the text to look for." : "";
    }
    const auto value = ReadDecimal(input.value);
    if (!value) return "\"" + input.value + "\" is not a number.";
    if (input.id != FilterOperator::between) return {};
    const auto second = ReadDecimal(input.second);
    if (!second) return "\"" + input.second + "\" is not a number.";
    if (Compare(*second, *value) < 0) return "The second number is less than the first.";
    return {};
}

ColumnFilter::ColumnFilter(std::int32_t column, FilterInput input, std::int64_t today)
    : m_column(column), m_input(std::move(input)) {
    if (ComparesDates(m_input.id)) {
        const std::int64_t day = ReadDay(m_input.value, today).value_or(today);
        if (m_input.id == FilterOperator::nextDays) m_firstDay = today, m_lastDay = today + kNextDays;
        if (m_input.id == FilterOperator::on) m_firstDay = m_lastDay = day;
        if (m_input.id == FilterOperator::before) m_lastDay = day - 1;
        if (m_input.id == FilterOperator::after) m_firstDay = day + 1;
        if (m_input.id == FilterOperator::betweenDates)
            m_firstDay = day, m_lastDay = ReadDay(m_input.second, today).value_or(day);
    } else if (ComparesNumbers(m_input.id)) {
        m_value = ReadDecimal(m_input.value).value_or(Decimal{});
        m_second = ReadDecimal(m_input.second).value_or(Decimal{});
    } else {
        m_folded = m_input.value;
        std::ranges::transform(m_folded, m_folded.begin(), [](char c) { return static_cast<char>(Fold(c)); });
    }
}

bool ColumnFilter::Passes(std::string_view cell) const {
    switch (m_input.id) {
    case FilterOperator::contains:
        return ContainsFolded(cell, m_folded);
    case FilterOperator::containsNot:
        return !ContainsFolded(cell, m_folded);
    case FilterOperator::equalsText:
        return cell.size() == m_folded.size() && StartsWithFolded(cell, m_folded);
    case FilterOperator::beginsWith:
        return StartsWithFolded(cell, m_folded);
    case FilterOperator::exactly:
        return cell == m_input.value;
    default:
        return ComparesDates(m_input.id) ? PassesDate(cell) : PassesNumber(cell);
    }
}

bool ColumnFilter::IsOfToday() const {
    return m_input.id == FilterOperator::nextDays
           || (ComparesDates(m_input.id) && (IsToday(m_input.value) || IsToday(m_input.second)));
}

bool ColumnFilter::PassesDate(std::string_view cell) const {
    const auto date = ReadDate(cell);
    if (!date) return false;
    const std::int64_t day = DayOf(*date);
    return m_firstDay <= day && day <= m_lastDay;
}

bool ColumnFilter::PassesNumber(std::string_view cell) const {
    const auto number = ReadDecimal(cell);
    if (!number) return m_input.id == FilterOperator::equalsNot;
    const int order = Compare(*number, m_value);
    switch (m_input.id) {
    case FilterOperator::equals:
        return order == 0;
    case FilterOperator::equalsNot:
        return order != 0;
    case FilterOperator::less:
        return order < 0;
    case FilterOperator::atMost:
        return order <= 0;
    case FilterOperator::greater:
        return order > 0;
    case FilterOperator::atLeast:
        return order >= 0;
    default:
        return order >= 0 && Compare(*number, m_second) <= 0;
    }
}

const ColumnFilter* RowFilters::Of(std::int32_t column) const {
    const auto found = std::ranges::find(m_filters, column, &ColumnFilter::Column);
    return found == m_filters.end() ? nullptr : &*found;
}

void RowFilters::Set(std::int32_t column, const FilterInput* input) {
    std::erase_if(m_filters, [&](const ColumnFilter& filter) { return filter.Column() == column; });
    if (input) m_filters.emplace_back(column, *input);
}

void RowFilters::SetOwner(std::int32_t column, const std::string_view* text) {
    m_owner.reset();
    if (text) m_owner.emplace(column, FilterInput{FilterOperator::exactly, std::string(*text), {}});
}

std::span<const std::uint32_t> RowFilters::Passing(CellSource& source, std::span<std::uint32_t> records) const {
    std::array<std::string_view, kBatch> cells;
    constexpr std::size_t ahead = 16;
    const auto keep = [&](const ColumnFilter& filter) {
        source.Cells(records, filter.Column(), cells.data());
        std::size_t kept = 0;
        for (std::size_t i = 0; i < records.size(); ++i) {
            // The texts lie anywhere: those to come are fetched meanwhile.
            if (i + ahead < records.size()) __builtin_prefetch(cells[i + ahead].data());
            records[kept] = records[i];
            kept += filter.Passes(cells[i]);
        }
        records = records.first(kept);
    };
    if (m_condition) {
        const auto end = std::remove_if(records.begin(), records.end(), std::not_fn(m_condition));
        records = records.first(static_cast<std::size_t>(end - records.begin()));
    }
    if (m_owner) keep(*m_owner);
    std::ranges::for_each(m_filters, keep);
    return records;
}

} // namespace korvex
