// A condition on the cells of one column.
#pragma once

#include "host/korvexcontrols/model/Cells.h"
#include "sdk/korvex/ValueType.h"

#include <algorithm>
#include <list>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvex {

// What is no number or amount is text.
inline bool IsNumeric(ValueType type) {
    return type == ValueType::number || type == ValueType::amount;
}

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
    exactly, // the owner's: every byte counts
    count
};

struct OperatorName {
    FilterOperator id;
    std::string_view name;
};
// The operators that a user can choose for the type, in the order to show them.
std::span<const OperatorName> OperatorsFor(ValueType type);

struct FilterInput {
    FilterOperator id = FilterOperator::contains;
    std::string value, second; // `second` is the upper end of "between"
    bool operator==(const FilterInput&) const = default;
};

class ColumnFilter {
public:
    // What is wrong with the input; empty when it is good.
    static std::string FaultOf(const FilterInput& input);

    // The input must be good.
    ColumnFilter(std::int32_t column, FilterInput input);
    ColumnFilter(const ColumnFilter&) = delete;
    ColumnFilter& operator=(const ColumnFilter&) = delete;

    std::int32_t Column() const { return m_column; }
    const FilterInput& Input() const { return m_input; }
    // A cell that is not a number passes no comparison but "not =".
    bool Passes(std::string_view cell) const;

private:
    bool PassesNumber(std::string_view cell) const;

    std::int32_t m_column;
    FilterInput m_input;
    std::string m_folded;
    Decimal m_value, m_second; // views into m_input
};

// The conditions of a list: one filter a column, and the owner's beside them.
class RowFilters {
public:
    bool OfAnyColumn() const { return !m_filters.empty(); }
    bool PassAll() const { return !OfAnyColumn() && !m_owner; }
    const ColumnFilter* Of(std::int32_t column) const;
    // Null takes the filter away.
    void Set(std::int32_t column, const FilterInput* input);
    void SetOwner(std::int32_t column, const std::string_view* text);
    void Clear() { m_filters.clear(); } // but the owner's

    bool Pass(CellSource& source, std::uint32_t record) const {
        const auto passes = [&](const ColumnFilter& filter) {
            return filter.Passes(source.Cell(record, filter.Column()));
        };
        return (!m_owner || passes(*m_owner)) && std::ranges::all_of(m_filters, passes);
    }
    void DropThatFail(CellSource& source, std::vector<std::uint32_t>& records) const;

private:
    std::list<ColumnFilter> m_filters;
    std::optional<ColumnFilter> m_owner;
};

} // namespace korvex
