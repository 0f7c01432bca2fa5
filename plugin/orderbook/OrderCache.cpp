#include "plugin/orderbook/OrderCache.h"

#include <functional>
#include <utility>

namespace planfold {

namespace {

constexpr std::size_t kFewestPlaces = 1024;

std::uint32_t Hash(std::string_view number) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>{}(number));
}

} // namespace

RecordId OrderCache::Find(std::string_view number) const {
    if (m_places.empty()) return kNoRecord;
    const std::uint32_t hash = Hash(number);
    const Beginning beginning(number);
    for (std::size_t at = Start(hash);; at = (at + 1) & (m_places.size() - 1)) {
        const Place& place = m_places[at];
        if (place.id == kNoRecord) return kNoRecord;
        if (place.hash != hash || m_entries[place.id].beginning != beginning) continue;
        if (beginning.IsWhole() || m_entries[place.id].record.Number() == number) return place.id;
    }
}

RecordId OrderCache::Add(std::string_view number) {
    if (m_places.size() <= 2 * (m_entries.size() + 1)) Grow();
    OrderChanges key;
    key[OrderField::registrationNumber] = number;
    sOrderinfo record(m_memory);
    record.Apply(key);
    m_entries.push_back({Beginning(number), std::move(record)});
    const auto id = static_cast<RecordId>(m_entries.size() - 1);
    Enter({Hash(number), id});
    return id;
}

void OrderCache::Clear() {
    m_entries.clear();
    m_places.clear();
    ++m_filling;
}

void OrderCache::Enter(Place place) {
    std::size_t at = Start(place.hash);
    while (m_places[at].id != kNoRecord)
        at = (at + 1) & (m_places.size() - 1);
    m_places[at] = place;
}

void OrderCache::Grow() {
    const auto old =
        std::exchange(m_places, std::vector<Place>(m_places.empty() ? kFewestPlaces : m_places.size() * 2));
    for (const Place& place : old)
        if (place.id != kNoRecord) Enter(place);
}

} // namespace planfold
