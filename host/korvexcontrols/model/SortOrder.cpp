#include "host/korvexcontrols/model/SortOrder.h"

#include "host/korvexcontrols/model/CellDates.h"
#include "host/korvexcontrols/model/Cells.h"

#include <algorithm>
#include <array>

namespace korvex {
namespace {

constexpr std::uint64_t kNoNumber = UINT64_MAX, kBefore = 0, kBehind = UINT64_MAX;
constexpr std::size_t kKeyText = 7, kLongerThanKey = kKeyText + 1;
constexpr unsigned kLengthBits = 4; // enough for the latter
// Below these, comparing cells costs less than fetching them together, and comparing keys less than counting
// their bytes.
constexpr std::size_t kFew = 8, kManyKeys = 512;

// The key holds seven folded bytes behind the offset, then how many there are, at most eight. So a text comes
// before those that begin with it, and two keys are equal when the texts are, unless both are longer.
std::uint64_t KeyAt(std::string_view text, std::size_t offset, unsigned lengthBits = 8) {
    const std::size_t rest = text.size() - offset;
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < kKeyText; ++i)
        key = key << 8 | (i < rest ? Fold(text[offset + i]) : 0u);
    return key << lengthBits | std::min(rest, kLongerThanKey);
}

// Where some cells have a value: that, or the text behind all of them.
std::uint64_t KeyAmongValues(std::string_view text) {
    constexpr std::uint64_t noValue = std::uint64_t{1} << 63;
    if (const auto value = ReadTextValue(text)) return *value;
    return noValue | KeyAt(text, 0, kLengthBits);
}

bool IsWhole(std::uint64_t key, bool hasValues) {
    if (hasValues && key >> 63 == 0) return true;
    return (key & ((1u << kLengthBits) - 1)) < kLongerThanKey;
}

std::optional<DecimalKey> KeyOf(std::string_view cell, ValueType type) {
    if (type != ValueType::date) return ReadKey(cell);
    const auto date = ReadDate(cell);
    return date ? std::optional(DecimalKey{*date, true}) : std::nullopt;
}

// It is false when another number may have the same key.
bool MakeNumberKey(std::string_view cell, const SortColumn& by, std::uint64_t& key) {
    const auto made = KeyOf(cell, by.type);
    key = kNoNumber;
    if (!made) return true;
    key = static_cast<std::uint64_t>(by.descending ? -made->key : made->key) ^ (std::uint64_t{1} << 63);
    return made->exact;
}

template <class Value>
int Compare(const std::optional<Value>& one, const std::optional<Value>& other) {
    if (one && other) return (*one > *other) - (*one < *other);
    return static_cast<int>(!one) - static_cast<int>(!other);
}

int CompareDates(std::string_view one, std::string_view other, bool descending) {
    const auto left = ReadDate(one), right = ReadDate(other);
    const int order = Compare(left, right);
    return descending && left && right ? -order : order;
}

int CompareTexts(std::string_view one, std::string_view other) {
    const auto left = ReadTextValue(one), right = ReadTextValue(other);
    return left || right ? Compare(left, right) : CompareFolded(one, other);
}

int CompareNumbers(std::string_view one, std::string_view other, bool descending) {
    const auto left = ReadDecimal(one), right = ReadDecimal(other);
    if (!left || !right) return static_cast<int>(!left) - static_cast<int>(!right);
    const int order = Compare(*left, *right);
    return descending ? -order : order;
}

int CompareCells(const SortColumn& by, std::string_view one, std::string_view other) {
    if (IsNumeric(by.type)) return CompareNumbers(one, other, by.descending);
    if (by.type == ValueType::date) return CompareDates(one, other, by.descending);
    const int order = by.type == ValueType::text ? CompareTexts(one, other) : CompareFolded(one, other);
    return by.descending ? -order : order;
}

} // namespace

std::vector<SortColumn> AfterClick(std::vector<SortColumn> columns, std::int32_t column, ValueType type,
                                   bool adding) {
    const auto sorted = std::ranges::find(columns, column, &SortColumn::column);
    const bool known = sorted != columns.end() && (adding || columns.size() == 1);
    if (!known) {
        if (!adding) columns.clear();
        columns.push_back({column, false, type});
    } else if (sorted->descending) {
        columns.erase(sorted);
    } else {
        sorted->descending = true;
    }
    return columns;
}

// Texts without the prefix come before or behind all that have it.
std::uint64_t SortOrder::TextKey(std::string_view cell) const {
    if (m_hasValues) return KeyAmongValues(cell);
    if (m_columns.front().type == ValueType::text && HasTextValue(cell)) return kBefore;
    if (StartsWithFolded(cell, m_prefix)) return KeyAt(cell, m_prefix.size());
    return CompareFolded(cell, m_prefix) < 0 ? kBefore : kBehind;
}

std::uint64_t SortOrder::MakeKey(std::uint32_t record) {
    const SortColumn& by = m_columns.front();
    const std::string_view cell = m_source.Cell(record, by.column);
    std::uint64_t key = 0;
    if (!IsText(by.type)) {
        m_exact &= MakeNumberKey(cell, by, key);
    } else {
        key = TextKey(cell);
        m_exact &= IsWhole(key, m_hasValues) && key != kBefore;
        if (by.descending) key = ~key;
    }
    return key;
}

std::string_view SortOrder::Probe::OwnCell(std::size_t level) {
    auto& cell = m_cells[level];
    if (!cell) cell = m_order.m_source.Cell(m_record, m_order.m_columns[level].column);
    return *cell;
}

bool SortOrder::Probe::StandsBefore(std::uint32_t other) {
    for (std::size_t level = m_order.m_exact ? 1 : 0; level < m_cells.size(); ++level) {
        const SortColumn& by = m_order.m_columns[level];
        if (const int order = CompareCells(by, OwnCell(level), m_order.m_source.Cell(other, by.column)))
            return order < 0;
    }
    return m_order.m_arrival.SlotOf(m_record) > m_order.m_arrival.SlotOf(other);
}

template <class Take>
void SortOrder::ForCells(std::span<const Item> items, std::int32_t column, Take&& take) {
    std::array<std::uint32_t, kBatch> records;
    std::array<std::string_view, kBatch> cells;
    for (std::size_t at = 0; at < items.size(); at += kBatch) {
        const std::size_t count = std::min(kBatch, items.size() - at);
        for (std::size_t i = 0; i < count; ++i)
            records[i] = items[at + i].record;
        m_source.Cells({records.data(), count}, column, cells.data());
        for (std::size_t i = 0; i < count; ++i)
            take(at + i, cells[i]);
    }
}

void SortOrder::SortByCells(std::span<Item> items, std::size_t level) {
    std::ranges::stable_sort(items, [&](const Item& one, const Item& other) {
        for (std::size_t i = level; i < m_columns.size(); ++i) {
            const SortColumn& by = m_columns[i];
            const std::string_view left = m_source.Cell(one.record, by.column);
            if (const int order = CompareCells(by, left, m_source.Cell(other.record, by.column)))
                return order < 0;
        }
        return false;
    });
}

// Sorts byte by byte from the lowest and leaves out those that are the same in all keys. Equal keys keep their
// order.
// They are then where the answer tells: at their place or in m_spare.
std::span<SortOrder::Item> SortOrder::SortByKey(std::span<Item> items) {
    if (items.size() < kManyKeys) {
        std::ranges::stable_sort(items, {}, &Item::key);
        return items;
    }
    constexpr int bytes = 8;
    std::array<std::array<std::uint32_t, 256>, bytes> counts{};
    for (const Item& item : items)
        for (int byte = 0; byte < bytes; ++byte)
            ++counts[static_cast<std::size_t>(byte)][item.key >> (8 * byte) & 0xFF];
    m_spare.resize(std::max(m_spare.size(), items.size()));
    Item *from = items.data(), *to = m_spare.data();
    for (int byte = 0; byte < bytes; ++byte) {
        auto& places = counts[static_cast<std::size_t>(byte)];
        if (places[from->key >> (8 * byte) & 0xFF] == items.size()) continue;
        std::uint32_t place = 0;
        for (std::uint32_t& count : places)
            place += std::exchange(count, place);
        for (const Item* item = from; item != from + items.size(); ++item)
            to[places[item->key >> (8 * byte) & 0xFF]++] = *item;
        std::swap(from, to);
    }
    return {from, items.size()};
}

bool SortOrder::MakeNumberKeys(std::span<Item> items, const SortColumn& by) {
    bool exact = true;
    ForCells(items, by.column,
             [&](std::size_t i, std::string_view cell) { exact &= MakeNumberKey(cell, by, items[i].key); });
    return exact;
}

SortOrder::Made SortOrder::MakeKeys(std::span<Item> items, std::size_t level, std::size_t offset) {
    const SortColumn& by = m_columns[level];
    if (IsText(by.type)) return MakeTextKeys(items, level, offset);
    Made made;
    made.exact = MakeNumberKeys(items, by);
    return made;
}

SortOrder::Made SortOrder::MakeTextKeys(std::span<Item> items, std::size_t level, std::size_t offset) {
    const SortColumn& by = m_columns[level];
    Made made;
    std::vector<std::string_view> cells(items.size());
    ForCells(items, by.column, [&](std::size_t i, std::string_view cell) { cells[i] = cell; });
    // Cells that agree in what stood before the offset are all without a value.
    made.hasValues = offset == 0 && by.type == ValueType::text && std::ranges::any_of(cells, HasTextValue);
    if (level + offset == 0) m_hasValues = made.hasValues;
    made.behind = kKeyText;
    if (made.hasValues) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            const std::uint64_t key = KeyAmongValues(cells[i]);
            made.exact &= IsWhole(key, true);
            items[i].key = by.descending ? ~key : key;
        }
        return made;
    }
    std::string_view prefix = cells.front();
    for (const std::string_view cell : cells)
        prefix = prefix.substr(0, offset + CommonPrefixFolded(cell.substr(offset), prefix.substr(offset)));
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::uint64_t key = KeyAt(cells[i], prefix.size());
        made.exact &= IsWhole(key, false);
        items[i].key = by.descending ? ~key : key;
    }
    made.behind += prefix.size();
    if (level + offset == 0) m_prefix = prefix;
    return made;
}

void SortOrder::SortRun(std::span<Item> items, std::size_t level, std::size_t offset) {
    if (level == m_columns.size() || items.size() < 2) return;
    if (items.size() <= kFew) return SortByCells(items, level);
    const Made made = MakeKeys(items, level, offset);
    if (const auto sorted = SortByKey(items); sorted.data() != items.data())
        std::ranges::copy(sorted, items.begin());
    SortTies(items, level, made);
}

void SortOrder::SortTies(std::span<Item> items, std::size_t level, const Made& made) {
    const SortColumn& by = m_columns[level];
    if (made.exact && level + 1 == m_columns.size()) return;
    for (auto begin = items.begin(); begin != items.end();) {
        const std::uint64_t key = begin->key;
        const auto end = std::find_if(begin, items.end(), [&](const Item& item) { return item.key != key; });
        const std::span<Item> run(begin, end);
        begin = end;
        if (!IsText(by.type)) {
            const bool open = !made.exact && key != kNoNumber;
            open ? SortByCells(run, level) : SortRun(run, level + 1, 0);
        } else {
            const bool whole = IsWhole(by.descending ? ~key : key, made.hasValues);
            whole ? SortRun(run, level + 1, 0) : SortRun(run, level, made.behind);
        }
    }
}

std::vector<std::uint64_t> SortOrder::Sort(std::vector<std::uint32_t>& records) {
    m_prefix.clear();
    m_exact = true;
    m_hasValues = m_columns.front().type == ValueType::text; // those to come may have
    if (records.empty()) return {};
    std::vector<Item> items(records.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i].record = records[i];
    const Made made = MakeKeys(items, 0, 0);
    m_exact = made.exact;
    if (SortByKey(items).data() != items.data()) items.swap(m_spare);
    // The ties would overwrite them; a tie stays among records of one key.
    std::vector<std::uint64_t> keys(items.size());
    std::ranges::transform(items, keys.begin(), &Item::key);
    SortTies(items, 0, made);
    std::ranges::transform(items, records.begin(), &Item::record);
    m_spare = {};
    return keys;
}

} // namespace korvex
