// Which registrations have their next instalment on which day, in the order in which they are executed.
//
// Thread: any; plain values.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace vesk {

class DueQueue {
public:
    using Day = std::chrono::sys_days;

    // A registration, by its place among all, has one day at most.
    void Put(std::size_t registration, Day day);
    void Remove(std::size_t registration);

    std::optional<Day> FirstDay() const;
    // The first ones of the first day, in order of registration.
    std::vector<std::size_t> First(std::size_t most) const;

private:
    static constexpr Day kNone = Day::min();

    std::map<Day, std::set<std::uint32_t>> m_days; // none is empty
    std::vector<Day> m_dayOf;                      // by registration
};

inline void DueQueue::Put(std::size_t registration, Day day) {
    if (registration >= m_dayOf.size()) m_dayOf.resize(registration + 1, kNone);
    if (m_dayOf[registration] == day) return;
    Remove(registration);
    m_dayOf[registration] = day;
    std::set<std::uint32_t>& all = m_days[day];
    all.insert(all.end(), static_cast<std::uint32_t>(registration));
}

inline void DueQueue::Remove(std::size_t registration) {
    if (registration >= m_dayOf.size() || m_dayOf[registration] == kNone) return;
    const auto day = m_days.find(m_dayOf[registration]);
    day->second.erase(static_cast<std::uint32_t>(registration));
    if (day->second.empty()) m_days.erase(day);
    m_dayOf[registration] = kNone;
}

inline std::optional<DueQueue::Day> DueQueue::FirstDay() const {
    return m_days.empty() ? std::nullopt : std::optional(m_days.begin()->first);
}

inline std::vector<std::size_t> DueQueue::First(std::size_t most) const {
    std::vector<std::size_t> registrations;
    if (m_days.empty()) return registrations;
    const std::set<std::uint32_t>& all = m_days.begin()->second;
    std::copy_n(all.begin(), std::min(most, all.size()), std::back_inserter(registrations));
    return registrations;
}

} // namespace vesk
