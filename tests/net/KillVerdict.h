// What a server holds in the end against what its dealers were told.
#pragma once

#include "host/server/Server.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vesk {

// Ends the program with the text unless it holds.
void Demand(bool holds, const std::string& what);

struct PlanState {
    bool Is(const Registration& registration) const;
    std::string status = "active", amount = "123450";
};
struct StreamState {
    std::string status;
    std::uint32_t next = 0, furthest = 0; // of the days of the next execution, as yyyymmdd
};

// What one dealer asked for and was told.
struct Story {
    std::set<std::string> asked;                        // identifiers of orders
    std::map<std::string, std::string> registered;      // numbers by identifier
    std::map<std::string, PlanState> held, pending;     // by number: as answered last, and as asked for since
    std::map<std::string, StreamState> streamed;        // by number
    std::set<std::pair<std::string, std::string>> seen; // numbers, and of their exchange orders
    std::set<std::string> paused;
    bool isCut = false; // what it asked for last may be unanswered
};

class Verdict {
public:
    Verdict(Server& server, const std::vector<std::chrono::year_month_day>& closed);

    void Hear(const Story& story);
    // Every registration, once all dealers are heard. What they come to.
    std::string JudgeAll();

private:
    void JudgeInstalments(const Registration& registration);
    bool IsOpen(std::chrono::sys_days day) const;
    const Registration& Found(const std::string& number) const;
    // Of its exchange orders, by number.
    const std::map<std::string, std::chrono::sys_days>& DaysOf(const std::string& number);

    Server& m_server;
    std::set<std::chrono::sys_days> m_closed;
    std::map<std::string, std::string> m_byId; // numbers by identifier of the order
    std::map<std::string, std::map<std::string, std::chrono::sys_days>> m_days;
    std::set<std::string> m_asked, m_paused, m_orders;
    std::size_t m_told = 0, m_seen = 0;
};

} // namespace vesk
