#include "host/korvexcontrols/model/ColumnFilter.h"

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

bool ComparesNumbers(FilterOperator id) {
    return id >= FilterOperator::equals && id <= FilterOperator::between;
}

} // namespace

std::span<const OperatorName> OperatorsFor(ValueType type) {
    if (IsNumeric(type)) return kNumberOperators;
    return kTextOperators;
}

std::string ColumnFilter::FaultOf(const FilterInput& input) {
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

ColumnFilter::ColumnFilter(std::int32_t column, FilterInput input)
    : m_column(column), m_input(std::move(input)) {
    if (ComparesNumbers(m_input.id)) {
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
        return PassesNumber(cell);
    }
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

void RowFilters::DropThatFail(CellSource& source, std::vector<std::uint32_t>& records) const {
    std::array<std::string_view, kBatch> cells;
    const auto drop = [&](const ColumnFilter& filter) {
        std::size_t kept = 0;
        for (std::size_t at = 0; at < records.size(); at += kBatch) {
            const std::size_t count = std::min(kBatch, records.size() - at);
            source.Cells({&records[at], count}, filter.Column(), cells.data());
            for (std::size_t i = 0; i < count; ++i)
                if (filter.Passes(cells[i])) records[kept++] = records[at + i];
        }
        records.resize(kept);
    };
    if (m_owner) drop(*m_owner);
    std::ranges::for_each(m_filters, drop);
}

} // namespace korvex
