// planfold_list_bench [ROUNDS]   the shared list's model beside a list that holds its rows in a vector
#include "bench/Cases.h"
#include "host/korvexcontrols/model/Cells.h"
#include "host/korvexcontrols/model/ListModel.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace korvex;
using bench::Case, bench::Keep, bench::Require;

constexpr std::uint32_t kMillion = 1'000'000;
enum Column : std::int32_t { symbol, identifier, amount, quantity, note, columnCount };

// The same numbers in each process.
std::uint32_t Scattered(std::uint32_t i) {
    i = (i ^ 61u ^ (i >> 16)) * 9u;
    i = (i ^ (i >> 4)) * 0x27D4EB2Du;
    return i ^ (i >> 15);
}

class Records final : public CellSource {
public:
    explicit Records(std::uint32_t count) : cells(count) {
        static constexpr const char* names[] = {"ARBORTOOLS", "BYTEFIN", "LUMENBANK", "Cedarline", "quillmark"};
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t scattered = Scattered(i);
            cells[i] = {std::string(names[scattered % 5]) + "-" + std::to_string(scattered / 5 % 5000) + "-EQ",
                        "2611210447" + std::to_string(10'000'000 + i), Amount(scattered), Amount(~scattered),
                        ""};
        }
    }
    static std::string Amount(std::uint32_t scattered) {
        return std::to_string(scattered % 9'000'000) + "." + std::to_string(scattered % 90 + 10);
    }
    void Cells(std::span<const std::uint32_t> records, std::int32_t column, std::string_view* texts) override {
        for (const std::uint32_t record : records)
            *texts++ = cells[record][static_cast<std::size_t>(column)];
    }

    std::vector<std::array<std::string, columnCount>> cells;
};

// The same records in lists of each kind; each kind's updates change a column that no other looks at.
struct Lists {
    explicit Lists(std::uint32_t rows) : records(rows + 1) {
        for (ListModel* list : {&plain, &filtered, &sorted, &bulk})
            for (std::uint32_t record = 0; record < rows; ++record)
                list->InsertFront(record);
        const FilterInput wanted{FilterOperator::greater, "4500000", {}};
        filtered.SetFilter(amount, &wanted);
        sorted.SetSort({{quantity, false, ValueType::amount}});
    }
    std::uint32_t Next() { return Scattered(++turn) % plain.RowCount(); }
    void Update(ListModel& list, Column column) {
        const std::uint32_t record = Next();
        records.cells[record][column] = Records::Amount(Scattered(turn * 7));
        list.Repaint(record);
    }

    Records records;
    ListModel plain{records}, filtered{records}, sorted{records}, bulk{records};
    std::uint32_t turn = 0;
};

struct Size {
    std::uint32_t rows;
    const char *insert, *remove, *row, *updatePlain, *updateFiltered, *updateSorted;
};
constexpr Size kSizes[] = {
    {1000, "insert-1k", "reinsert-1k", "row-1k", "update-1k", "update-filter-1k", "update-sort-1k"},
    {100'000, "insert-100k", "reinsert-100k", "row-100k", "update-100k", "update-filter-100k",
     "update-sort-100k"},
    {kMillion, "insert-1m", "reinsert-1m", "row-1m", "update-1m", "update-filter-1m", "update-sort-1m"},
};

constexpr bench::Ratio kRatios[] = {
    {"insert-1m", "insert-1k", 2, 1.5},
    {"reinsert-1m", "reinsert-1k", 0, 0},
    {"row-1m", "row-1k", 0, 0},
    {"update-1m", "update-1k", 0, 0},
    {"update-filter-1m", "update-filter-1k", 0, 0},
    {"update-sort-1m", "update-sort-1k", 0, 0},
    {"sort-text-1m", "sort-text-peer", 0.5, 0.1},
    {"sort-prefix-1m", "sort-prefix-peer", 0.5, 0.1},
    {"sort-amount-1m", "sort-amount-peer", 0.3, 0.15},
    {"filter-1m", "filter-peer", 0.7, 0.17},
};

void AddCasesOfSize(std::vector<Case>& cases, const Size& size, const std::shared_ptr<Lists>& lists) {
    // A record in front of all, that goes again.
    cases.push_back({size.insert, [lists, rows = size.rows] {
                         lists->plain.InsertFront(rows);
                         lists->plain.Remove(rows);
                     }});
    cases.push_back({size.remove, [lists] {
                         const std::uint32_t record = lists->Next();
                         lists->plain.Remove(record);
                         lists->plain.InsertFront(record);
                     }});
    cases.push_back({size.row, [lists] { Require(lists->plain.IndexOf(lists->Next()) != kNone, "row"); }});
    cases.push_back({size.updatePlain, [lists] { lists->Update(lists->plain, note); }});
    cases.push_back({size.updateFiltered, [lists] { lists->Update(lists->filtered, amount); }});
    cases.push_back({size.updateSorted, [lists] { lists->Update(lists->sorted, quantity); }});
}

// The peers: what a list does that holds its rows in a vector.
void SortTexts(const Records& records, Column column) {
    std::vector<std::uint32_t> rows(records.cells.size());
    for (std::uint32_t i = 0; i < rows.size(); ++i)
        rows[i] = static_cast<std::uint32_t>(rows.size()) - 1 - i;
    std::ranges::stable_sort(rows, [&](std::uint32_t one, std::uint32_t other) {
        return CompareFolded(records.cells[one][column], records.cells[other][column]) < 0;
    });
    Keep(rows.data());
}

void SortAmounts(const Records& records) {
    std::vector<std::pair<double, std::uint32_t>> rows;
    for (auto record = static_cast<std::uint32_t>(records.cells.size()); record-- > 0;)
        rows.emplace_back(std::strtod(records.cells[record][amount].c_str(), nullptr), record);
    std::ranges::stable_sort(rows, {}, &std::pair<double, std::uint32_t>::first);
    Keep(rows.data());
}

void FindTexts(const Records& records) {
    std::vector<std::uint32_t> rows;
    for (auto record = static_cast<std::uint32_t>(records.cells.size()); record-- > 0;)
        if (records.cells[record][symbol].find("NBANK-12") != std::string::npos) rows.push_back(record);
    Keep(rows.data());
}

void AddBulkCases(std::vector<Case>& cases, const std::shared_ptr<Lists>& lists) {
    const auto sorts = [lists](Column column, ValueType type) {
        return [lists, column, type] { lists->bulk.SetSort({{column, false, type}}); };
    };
    const auto filters = [lists] {
        const FilterInput input{FilterOperator::contains, "nbank-12", {}};
        lists->bulk.SetFilter(symbol, &input);
        Require(lists->bulk.ShownCount() > 0, "filter");
        lists->bulk.SetFilter(symbol, nullptr);
    };
    // A unit is a row.
    const auto add = [&](const char* name, std::function<void()> run) {
        cases.push_back({name, std::move(run), kMillion});
    };
    add("sort-text-1m", sorts(symbol, ValueType::text));
    add("sort-text-peer", [lists] { SortTexts(lists->records, symbol); });
    add("sort-prefix-1m", sorts(identifier, ValueType::identifier));
    add("sort-prefix-peer", [lists] { SortTexts(lists->records, identifier); });
    add("sort-amount-1m", sorts(amount, ValueType::amount));
    add("sort-amount-peer", [lists] { SortAmounts(lists->records); });
    // In the order of arrival, as a list is opened.
    cases.push_back({"filter-1m", filters, kMillion, [lists] { lists->bulk.SetSort({}); }});
    add("filter-peer", [lists] { FindTexts(lists->records); });
}

} // namespace

int main(int count, char** arguments) {
    std::vector<Case> cases;
    std::shared_ptr<Lists> lists;
    for (const Size& size : kSizes) {
        lists = std::make_shared<Lists>(size.rows);
        AddCasesOfSize(cases, size, lists);
    }
    AddBulkCases(cases, lists);
    const auto results = bench::RunInTurns(cases, bench::RoundsAsked(count, arguments));
    bench::Print(results);
    bench::Print(kRatios, results);
}
