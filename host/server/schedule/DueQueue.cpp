#include "host/server/schedule/DueQueue.h"

#include <algorithm>
#include <iterator>

namespace vesk {

void DueQueue::Put(std::size_t registration, Day day) {
    if (registration >= m_dayOf.size()) m_dayOf.resize(registration + 1, kNone);
    if (m_dayOf[registration] == day) return;
    Remove(registration);
    m_dayOf[registration] = day;
    std::set<std::uint32_t>& all = m_days[day];
    all.insert(all.end(), static_cast<std::uint32_t>(registration));
}

void DueQueue::Remove(std::size_t registration) {
    if (registration >= m_dayOf.size() || m_dayOf[registration] == kNone) return;
    const auto day = m_days.find(m_dayOf[registration]);
    day->second.erase(static_cast<std::uint32_t>(registration));
    if (day->second.empty()) m_days.erase(day);
    m_dayOf[registration] = kNone;
}

std::optional<DueQueue::Day> DueQueue::FirstDay() const {
    return m_days.empty() ? std::nullopt : std::optional(m_days.begin()->first);
}

std::vector<std::size_t> DueQueue::First(std::size_t most) const {
    std::vector<std::size_t> registrations;
    if (m_days.empty()) return registrations;
    const std::set<std::uint32_t>& all = m_days.begin()->second;
    std::copy_n(all.begin(), std::min(most, all.size()), std::back_inserter(registrations));
    return registrations;
}

} // namespace vesk
