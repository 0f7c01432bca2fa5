// Which registrations have their next instalment on which day, in the order in which they are executed.
//
// Thread: any; plain values.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
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
    // Of the first day, the first in order of registration.
    std::vector<std::size_t> First(std::size_t most) const;

private:
    static constexpr Day kNone = Day::min();

    std::map<Day, std::set<std::uint32_t>> m_days; // none is empty
    std::vector<Day> m_dayOf;                      // by registration
};

} // namespace vesk
