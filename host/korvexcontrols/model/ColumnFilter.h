// A condition on the cells of one column.
#pragma once

#include "host/korvexcontrols/model/Cells.h"
#include "sdk/korvex/ValueType.h"

#include <span>
#include <string>

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

} // namespace korvex
