// Reckons up the runs of all plans of the book in a period, some plans at a time.
#pragma once

#include "plugin/morning/PlanRuns.h"
#include "plugin/orderbook/OrderCache.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace planfold {

// Between two looks at the clock.
inline constexpr RecordId kRecordsAStep = 500;

// Both days belong to it.
struct RunPeriod {
    static constexpr int kMostDays = 366;

    Day from;
    Day to;

    bool Has(Day day) const { return from <= day && day <= to; }
    std::size_t Days() const { return static_cast<std::size_t>((to - from).count() + 1); }
};

// A period that is offered; of a range both ends are chosen.
struct PeriodChoice {
    const char* text;
    int firstDay; // after today
    int days;     // 0: as chosen
};

struct UpcomingRows {
    // A plan with runs in the period.
    struct Plan {
        RecordId record = kNoRecord;
        std::uint32_t client = 0;
        Need need{};
        bool ends = false; // with the last of these runs
        bool isEndCertain = true;
        std::uint32_t runs = 0;
        std::uint32_t moved = 0;
        std::int64_t value = 0; // of all its runs
        Run first{};
        Run firstMoved{};
        Day last{};
    };
    struct Client {
        std::string account;
        std::string name;
        RunSums sums;
        std::uint32_t firstPlan = 0; // its plans stand together
        std::uint32_t planCount = 0;
        bool isOpen = false;
    };

    RunPeriod period{};
    std::uint32_t filling = 0;   // of the book, by which its records are known
    std::vector<Client> clients; // by account
    std::vector<Plan> plans;
    std::vector<RunSums> days; // of the period
    RunSums total;
    std::size_t paused = 0;
    std::size_t unreadable = 0;
    bool isStopped = false; // before the last plan
};

class RunReckoning {
public:
    // A period that is too long is cut. Only plans of this user; of all when it is empty.
    RunReckoning(const OrderCache& records, RunPeriod period, Day today, ClosedDays closed,
                 std::string user = {});

    // Takes some more plans; false when there are none.
    bool Step();
    std::size_t Done() const { return m_next; }
    std::size_t Total() const { return m_records.Size(); }
    // What has come together.
    UpcomingRows Take();

private:
    void TakeRecord(RecordId id);
    std::uint32_t ClientOf(const sOrderinfo& record);

    const OrderCache& m_records;
    Day m_today;
    ClosedDays m_closed;
    std::string m_user;
    UpcomingRows m_rows;
    std::unordered_map<std::string, std::uint32_t> m_clients;
    RecordId m_next = 0;
};

} // namespace planfold
