// The list's model beside a plain one: a vector, std::stable_sort, sets. Only the single filter is shared.
// Steps are bytes, from a generator or a fuzzer.
#pragma once

#include "host/korvexcontrols/model/ListModel.h"

#include <functional>
#include <list>
#include <set>
#include <string>
#include <vector>

namespace korvex::test {

class ListPair final : CellSource {
public:
    explicit ListPair(std::uint32_t records) : m_cells(records) {}

    // Adds all records, in front of each other.
    void Fill(const std::function<unsigned()>& next);
    // One operation on both; `next` gives bytes.
    void Step(const std::function<unsigned()>& next);
    // What differs; empty when nothing does.
    std::string Difference();

private:
    static constexpr int kColumns = 3;
    static constexpr ValueType kTypes[kColumns] = {ValueType::text, ValueType::amount, ValueType::identifier};

    void Cells(std::span<const std::uint32_t> records, std::int32_t column, std::string_view* texts) override;
    bool Passes(std::uint32_t record) const;
    std::vector<std::uint32_t> Shown() const;
    // After what changes the shown rows: selection and focus follow the records.
    void Settle(const ListChange& change, const std::vector<std::uint32_t>& before, bool rearranged);
    void Select(const std::function<unsigned()>& next);
    void Filters(const std::function<unsigned()>& next);
    ListChange SetSort(const std::function<unsigned()>& next);
    void FillCells(std::uint32_t record, const std::function<unsigned()>& next);

    std::vector<std::array<std::string, kColumns>> m_cells;
    ListModel m_model{*this};
    std::vector<std::uint32_t> m_rows; // the newest first
    std::list<ColumnFilter> m_filters; // the owner's has FilterOperator::exactly
    std::vector<SortColumn> m_sort;
    std::set<std::uint32_t> m_selected; // shown or not
    std::uint32_t m_focused = kNone;
    std::string m_fault;
};

} // namespace korvex::test
