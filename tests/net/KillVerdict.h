// Dealers to be killed, and what a server holds in the end against what they were told.
#pragma once

#include "host/server/Server.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vesk {

// A dealer's terminal as a process of its own, to be killed. It works as fast as the answers come, and says
// down its standard output, a line each, what it asks and what it is told:
//
//   p ID                     asks for an order
//   P ID NUMBER              that is registered
//   c NUMBER STATUS AMOUNT   asks for a change, behind which the registration is so
//   C NUMBER done|refused    what became of it
//   s NUMBER STATUS NEXT     hears by the stream how a registration is, the day as yyyymmdd
//   o NUMBER ORDER           sees an exchange order
//   q                        asks no more, was told everything, and no instalment is due
//
// A byte on its standard input tells it to ask no more; the end of it ends it.
//
// Its orders have ids that begin with `name`, and end with a digit.
int RunDealer(std::uint16_t port, const std::string& login, const std::string& name, unsigned seed);

// Ends the program with the text unless it holds.
void Demand(bool holds, const std::string& what);

class Verdict {
public:
    Verdict(Server& server, const std::vector<std::chrono::year_month_day>& closed);

    // The lines of one dealer, as RunDealer says them. Was it killed, the last of them may be unanswered.
    void Hear(const std::string& said, bool wasKilled);
    // Every registration, once all dealers are heard. What they come to.
    std::string JudgeAll();

private:
    using Words = std::vector<std::string>;
    struct State {
        bool Is(const Registration& registration) const;
        std::string status = "active", amount = "123450";
    };
    // What one dealer was told.
    struct Story {
        std::set<std::string> orders;              // by identifier, unanswered
        std::map<std::string, State> held;         // by number, as the last answer said
        std::map<std::string, State> pending;      // and as was asked for and not answered
        std::map<std::string, std::string> stream; // the last status and day
    };
    struct Line;
    static const Line kLines[];

    void OnOrder(Story& story, const Words& words);
    void OnRegistered(Story& story, const Words& words);
    void OnChange(Story& story, const Words& words);
    void OnChanged(Story& story, const Words& words);
    void OnStream(Story& story, const Words& words);
    void OnExchangeOrder(Story& story, const Words& words);

    void JudgeInstalments(const Registration& registration);
    bool IsOpen(std::chrono::sys_days day) const;
    const Registration& Found(const std::string& number) const;
    // The day of its next execution, as yyyymmdd.
    std::string Next(const std::string& number) const;
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
