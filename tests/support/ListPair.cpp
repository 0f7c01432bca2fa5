#include "tests/support/ListPair.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace korvex::test {
namespace {

struct Text {
    const char* text;
    double value = 0; // of whole numbers and dates
};
constexpr Text kValues[] = {
    {"7", 7},
    {"12", 12},
    {"-3", -3},
    {"999999999999999999", 999999999999999999.0},
    {"05-Mar-2027", 1e19},
    {"06/03/2027 09:15", 2e19},
    {"01-APR-2027", 3e19},
};
constexpr const char* kTexts[] = {
    "7",
    "12",
    "-3",
    "999999999999999999",
    "05-Mar-2027",
    "06/03/2027 09:15",
    "01-APR-2027",
    "007",
    "7a",
    "31-Feb-2027",
    "9999999999999999999",
    "",
    "a",
    "B",
    "ab",
    "LUMENBANK",
    "lumenbank",
    "ARBORTOOLS 2027 first",
    "ARBORTOOLS 2027 FIRST",
    "ARBORTOOLS 2027 first of two",
    "ARBORTOOLS 2027",
    "BYTEFIN-EQ",
    "zz",
};
constexpr const char* kNumbers[] = {
    "0",   "-0.0", "12",    "12.00", " 12.5 ", "-3.5", "0.00001", "0.00002", "123456789012345678901",
    "n/a", "",     "99.99",
};

std::string Lower(std::string text) {
    for (char& character : text)
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    return text;
}

// The values above are few enough for a long double to tell them apart.
bool Number(const std::string& text, long double& value) {
    const std::size_t begin = text.find_first_not_of(' ');
    value = 0;
    if (begin != text.npos) std::from_chars(text.data() + begin, text.data() + text.size(), value);
    return text.find_first_of("0123456789") != text.npos
           && text.find_first_not_of(" +-.0123456789") == text.npos;
}

// Less than, equal to or greater than 0.
int CompareTexts(const std::string& one, const std::string& other, bool values) {
    const auto valueOf = [&](const std::string& text) {
        return std::ranges::find_if(kValues, [&](const Text& known) { return values && text == known.text; });
    };
    const auto left = valueOf(one), right = valueOf(other), none = std::end(kValues);
    if (left == none && right == none) return Lower(one).compare(Lower(other));
    if (left == none || right == none) return left == none ? 1 : -1;
    return (left->value > right->value) - (left->value < right->value);
}

} // namespace

void ListPair::Cells(std::span<const std::uint32_t> records, std::int32_t column, std::string_view* texts) {
    for (const std::uint32_t record : records)
        *texts++ = m_cells[record][static_cast<std::size_t>(column)];
}

void ListPair::FillCells(std::uint32_t record, const std::function<unsigned()>& next) {
    m_cells[record] = {kTexts[next() % std::size(kTexts)], kNumbers[next() % std::size(kNumbers)],
                       kTexts[next() % std::size(kTexts)]};
}

bool ListPair::Passes(std::uint32_t record) const {
    return std::ranges::all_of(m_filters, [&](const ColumnFilter& filter) {
        return filter.Passes(m_cells[record][static_cast<std::size_t>(filter.Column())]);
    });
}

std::vector<std::uint32_t> ListPair::Shown() const {
    std::vector<std::uint32_t> shown;
    std::ranges::copy_if(m_rows, std::back_inserter(shown),
                         [&](std::uint32_t record) { return Passes(record); });
    std::ranges::stable_sort(shown, [&](std::uint32_t one, std::uint32_t other) {
        for (const SortColumn& by : m_sort) {
            const auto& left = m_cells[one][static_cast<std::size_t>(by.column)];
            const auto& right = m_cells[other][static_cast<std::size_t>(by.column)];
            if (!IsNumeric(by.type)) {
                if (const int order = CompareTexts(left, right, by.type == ValueType::text))
                    return by.descending ? order > 0 : order < 0;
                continue;
            }
            long double a = 0, b = 0;
            const bool hasA = Number(left, a), hasB = Number(right, b);
            if (hasA != hasB) return hasA;
            if (hasA && a != b) return by.descending ? a > b : a < b;
        }
        return false;
    });
    return shown;
}

void ListPair::Settle(const ListChange& change, const std::vector<std::uint32_t>& before, bool rearranged) {
    const auto shown = Shown();
    auto told = before;
    const auto at = [&](std::uint32_t row) { return told.begin() + row; };
    if (change.kind == ListChange::removed || change.kind == ListChange::moved) told.erase(at(change.row));
    if (change.kind == ListChange::inserted || change.kind == ListChange::moved)
        told.insert(at(change.to), change.to < shown.size() ? shown[change.to] : kNone);
    if (change.kind != ListChange::everything && told != shown) m_fault = "the change is not what happened";
    if (rearranged && change.kind != ListChange::everything) m_fault = "a rearrangement is told as less";
    if (std::ranges::find(m_rows, m_focused) != m_rows.end()) return;
    const auto place = static_cast<std::size_t>(std::ranges::find(before, m_focused) - before.begin());
    const bool wasShown = place < before.size();
    m_focused = shown.empty() || !wasShown ? kNone : shown[std::min(place, shown.size() - 1)];
}

void ListPair::Select(const std::function<unsigned()>& next) {
    const auto shown = Shown();
    const unsigned how = next() % 4;
    if (how == 0) {
        const std::uint32_t record = next() % static_cast<std::uint32_t>(m_cells.size());
        m_model.Deselect(record);
        m_selected.erase(record);
        return;
    }
    if (shown.empty()) return;
    const auto count = static_cast<std::uint32_t>(shown.size());
    const std::uint32_t one = next() % count, other = next() % count;
    if (how == 1) {
        m_model.SelectOnly(shown[one]);
        m_selected = {shown[one]};
        m_focused = shown[one];
        return;
    }
    const std::uint32_t begin = std::min(one, other), end = std::max(one, other) + 1;
    m_model.SelectRows(begin, end, how == 2);
    std::erase_if(m_selected,
                  [&](std::uint32_t record) { return std::ranges::find(shown, record) == shown.end(); });
    for (std::uint32_t row = begin; row < end; ++row) {
        m_selected.erase(shown[row]);
        if (how == 2) m_selected.insert(shown[row]);
    }
}

void ListPair::Filters(const std::function<unsigned()>& next) {
    const auto before = Shown();
    const auto column = static_cast<std::int32_t>(next() % kColumns);
    const unsigned how = next() % 4;
    const bool owners = how == 0;
    std::erase_if(m_filters, [&](const ColumnFilter& filter) {
        const bool isOwners = filter.Input().id == FilterOperator::exactly;
        return isOwners == owners && (owners || filter.Column() == column);
    });
    const std::span<const char* const> values =
        IsNumeric(kTypes[column]) ? std::span(kNumbers) : std::span<const char* const>(kTexts);
    const std::string value = values[next() % values.size()];
    if (owners) {
        const bool set = next() % 2;
        const std::string_view view = value;
        if (set) m_filters.emplace_back(column, FilterInput{FilterOperator::exactly, value, {}});
        return Settle(m_model.SetOwnerFilter(column, set ? &view : nullptr), before, true);
    }
    const auto operators = OperatorsFor(kTypes[column]);
    const FilterInput input{operators[next() % operators.size()].id, value, values[next() % values.size()]};
    const bool set = how > 1 && ColumnFilter::FaultOf(input).empty();
    if (set) m_filters.emplace_back(column, input);
    Settle(m_model.SetFilter(column, set ? &input : nullptr), before, true);
}

ListChange ListPair::SetSort(const std::function<unsigned()>& next) {
    m_sort.clear();
    const unsigned columns = next() % 3;
    for (unsigned i = 0; i < columns; ++i) {
        const auto column = static_cast<std::int32_t>(next() % kColumns);
        m_sort.push_back({column, next() % 2 == 1, kTypes[column]});
    }
    return m_model.SetSort(m_sort);
}

void ListPair::Fill(const std::function<unsigned()>& next) {
    for (std::uint32_t record = 0; record < m_cells.size(); ++record) {
        FillCells(record, next);
        m_rows.insert(m_rows.begin(), record);
        m_model.InsertFront(record);
    }
    m_focused = m_rows.front();
}

void ListPair::Step(const std::function<unsigned()>& next) {
    const unsigned what = next() % 16;
    const std::uint32_t record = (next() << 8 | next()) % static_cast<std::uint32_t>(m_cells.size());
    const bool stands = std::ranges::find(m_rows, record) != m_rows.end();
    if (what == 12 || what == 13) return Select(next);
    if (what == 14) return Filters(next);
    const auto before = Shown();
    if (what == 15) return Settle(SetSort(next), before, true);
    ListChange change;
    if (what < 6) {
        FillCells(record, next);
        if (!stands) m_rows.insert(m_rows.begin(), record);
        change = m_model.InsertFront(record);
        if (!stands && Passes(record)) m_focused = record;
    } else if (what < 9) {
        if (stands) FillCells(record, next);
        change = m_model.Repaint(record);
    } else if (what == 9 && next() == 0) {
        m_rows.clear();
        m_selected.clear();
        change = m_model.RemoveAll();
    } else {
        std::erase(m_rows, record);
        m_selected.erase(record);
        change = m_model.Remove(record);
    }
    Settle(change, before, false);
}

std::string ListPair::Difference() {
    if (!m_fault.empty()) return m_fault;
    const auto shown = Shown();
    if (m_model.RowCount() != m_rows.size()) return "number of rows";
    if (m_model.ShownCount() != shown.size()) return "number of shown rows";
    std::vector<std::uint32_t> selected;
    for (std::uint32_t row = 0; row < shown.size(); ++row) {
        const std::uint32_t record = shown[row];
        if (m_model.ShownAt(row) != record || m_model.ShownRowOf(record) != row)
            return "shown row " + std::to_string(row);
        if (m_selected.contains(record)) selected.push_back(record);
    }
    for (std::uint32_t row = 0; row < m_rows.size(); ++row)
        if (m_model.RecordAt(row) != m_rows[row] || m_model.IndexOf(m_rows[row]) != row)
            return "row " + std::to_string(row);
    if (m_model.SelectedRecords() != selected || m_model.Selection().Count() != selected.size())
        return "selection";
    const bool focusIsShown = std::ranges::find(shown, m_focused) != shown.end();
    if (m_model.Focused() != (focusIsShown ? m_focused : kNone)) return "focus";
    return {};
}

} // namespace korvex::test
