// Every registration that the book has heard of, by number. Records stay for the life of the book.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/orderbook/OrderInfo.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <vector>

namespace planfold {

// Records are numbered in the order of arrival.
class OrderCache {
public:
    // kNoRecord when the number is unknown. Compared exactly.
    RecordId Find(std::string_view number) const;
    // A new record that holds its number and nothing else.
    RecordId Add(std::string_view number);
    void Clear();
    // Another one after each Clear: by it who keeps numbers of records sees that these are gone.
    std::uint32_t Filling() const { return m_filling; }

    std::size_t Size() const { return m_entries.size(); }
    // Another Add may move the record, not its texts.
    sOrderinfo& operator[](RecordId id) { return m_entries[id].record; }
    const sOrderinfo& operator[](RecordId id) const { return m_entries[id].record; }

private:
    // Open addressing: a place holds a piece of the number's hash, so that the record itself is looked at only
    // when it is nearly certain to be the one.
    struct Place {
        std::uint32_t hash;
        RecordId id = kNoRecord;
    };

    // How a number begins: all of it, as a rule, so that the record's own block need not be fetched to compare.
    struct Beginning {
        explicit Beginning(std::string_view number)
            : size(static_cast<std::uint8_t>(std::min<std::size_t>(number.size(), UINT8_MAX))) {
            number.copy(text.data(), text.size());
        }
        bool operator==(const Beginning&) const = default;
        bool IsWhole() const { return size <= text.size(); }

        std::array<char, 23> text{};
        std::uint8_t size;
    };
    struct Entry {
        Beginning beginning;
        sOrderinfo record;
    };

    std::size_t Start(std::uint32_t hash) const { return hash & (m_places.size() - 1); }
    void Enter(Place place);
    void Grow();

    // Of the records' texts. A million small blocks between others make some systems' heaps slow.
    std::pmr::unsynchronized_pool_resource m_memory;
    std::vector<Entry> m_entries;
    std::vector<Place> m_places; // a power of two, at most half of them taken
    std::uint32_t m_filling = 0;
};

} // namespace planfold
