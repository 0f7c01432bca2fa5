// Every registration that the book has heard of, by number. Records stay for the life of the book.
#pragma once

#include "plugin/orderbook/OrderInfo.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace planfold {

// Dense, in the order of arrival.
using RecordId = std::uint32_t;
inline constexpr RecordId kNoRecord = UINT32_MAX;

class OrderCache {
public:
    // kNoRecord when the number is unknown. Compared exactly.
    RecordId Find(std::string_view number) const;
    // A new record that holds its number and nothing else.
    RecordId Add(std::string_view number);
    void Clear();

    std::size_t Size() const { return m_records.size(); }
    // Another Add may move the record, not its texts.
    sOrderinfo& operator[](RecordId id) { return m_records[id]; }
    const sOrderinfo& operator[](RecordId id) const { return m_records[id]; }

private:
    // Open addressing: a place holds a piece of the number's hash, so that the record itself is looked at only
    // when it is nearly certain to be the one.
    struct Place {
        std::uint32_t hash;
        RecordId id = kNoRecord;
    };

    std::size_t Start(std::uint32_t hash) const { return hash & (m_places.size() - 1); }
    void Enter(Place place);
    void Grow();

    std::vector<sOrderinfo> m_records;
    std::vector<Place> m_places; // a power of two, at most half of them taken
};

} // namespace planfold
