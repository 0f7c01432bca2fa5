// A condition on the cells of one column.
#pragma once

#include "host/korvexcontrols/model/CellDates.h"
#include "host/korvexcontrols/model/Cells.h"
#include "sdk/korvex/ValueType.h"

#include <algorithm>
#include <functional>
#include <list>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvex {

inline bool IsNumeric(ValueType type) {
    return type == ValueType::number || type == ValueType::amount;
}

// What is no number, amount or date is text.
inline bool IsText(ValueType type) {
    return !IsNumeric(type) && type != ValueType::date;
}

// Their numbers are kept in files: further ones come before the last two.
enum class FilterOperator {
    contains,
    containsNot,
    equalsText,
    beginsWith,
    equals,
    equalsNot,
    less,
    atMost,
    greater,
    atLeast,
    between,
    on,
    before,
    after,
    betweenDates,
    nextDays, // today and the seven days behind it
    exactly,  // the owner's: every byte counts
    count
};

struct OperatorName {
    FilterOperator id;
    std::string_view name;
};
// What a column of text holds, by some of its cells: whole numbers (`number`), dates, or text.
ValueType ContentOf(std::span<const std::string_view> cells);
// The operators that a user can choose for the type, in the order to show them; `content` is what a column of
// text holds.
std::span<const OperatorName> OperatorsFor(ValueType type, ValueType content = ValueType::text);
// How many values the operator compares with: none, one or two.
int ValuesOf(FilterOperator id);

struct FilterInput {
    FilterOperator id = FilterOperator::contains;
    std::string value, second; // `second` is the upper end of "between"; a date may be "today"
    bool operator==(const FilterInput&) const = default;
};

struct KeptFilter {
    std::int32_t column;
    FilterInput input;
    bool operator==(const KeptFilter&) const = default;
};

class ColumnFilter {
public:
    // What is wrong with the input; empty when it is good.
    static std::string FaultOf(const FilterInput& input, std::int64_t today = LocalDay());

    // The input must be good. `today` is a day as DayOf counts them.
    ColumnFilter(std::int32_t column, FilterInput input, std::int64_t today = LocalDay());
    ColumnFilter(const ColumnFilter&) = delete;
    ColumnFilter& operator=(const ColumnFilter&) = delete;

    std::int32_t Column() const { return m_column; }
    const FilterInput& Input() const { return m_input; }
    // A cell that is not a number passes no comparison but "not =", one that is no date none of dates.
    bool Passes(std::string_view cell) const;
    // What passes depends on the day.
    bool IsOfToday() const;

private:
    bool PassesNumber(std::string_view cell) const;
    bool PassesDate(std::string_view cell) const;

    std::int32_t m_column;
    FilterInput m_input;
    std::string m_folded;
    Decimal m_value, m_second; // views into m_input
    std::int64_t m_firstDay = INT64_MIN, m_lastDay = INT64_MAX;
};

// The conditions of a list: one filter a column, and beside them the owner's: a text that must be in a column,
// and what it decides of a record itself.
class RowFilters {
public:
    using Condition = std::function<bool(std::uint32_t record)>;

    bool OfAnyColumn() const { return !m_filters.empty(); }
    bool PassAll() const { return !OfAnyColumn() && !m_owner && !m_condition; }
    const ColumnFilter* Of(std::int32_t column) const;
    const std::list<ColumnFilter>& OfColumns() const { return m_filters; }
    // Also the owner's.
    bool HasAny(std::int32_t column) const { return Of(column) || (m_owner && m_owner->Column() == column); }
    // Null takes the filter away.
    void Set(std::int32_t column, const FilterInput* input);
    void SetOwner(std::int32_t column, const std::string_view* text);
    void SetCondition(Condition condition) { m_condition = std::move(condition); }
    void Clear() { m_filters.clear(); } // but the owner's

    bool Pass(CellSource& source, std::uint32_t record) const {
        const auto passes = [&](const ColumnFilter& filter) {
            return filter.Passes(source.Cell(record, filter.Column()));
        };
        return (!m_condition || m_condition(record)) && (!m_owner || passes(*m_owner))
               && std::ranges::all_of(m_filters, passes);
    }
    // Of at most kBatch records those that pass, in front of the others.
    std::span<const std::uint32_t> Passing(CellSource& source, std::span<std::uint32_t> records) const;

private:
    std::list<ColumnFilter> m_filters;
    std::optional<ColumnFilter> m_owner;
    Condition m_condition;
};

} // namespace korvex
