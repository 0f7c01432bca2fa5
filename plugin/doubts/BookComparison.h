// Compares orders in doubt with the server's book. What the book shows was registered. What two complete
// answers do not show was not: the first of them is asked for only when nothing that was sent can still be on
// its way.
#pragma once

#include "plugin/messaging/Answer.h"
#include "plugin/orderbook/OrderInfo.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/RxControl.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace planfold {

class BookComparison {
public:
    // What came of it.
    struct Outcome {
        std::size_t found = 0;
        std::vector<OrderPlace> absent{}; // orders and changes
        std::size_t inDoubt = 0;          // those of other users and those that came meanwhile included
        std::string fault{};              // why it is not complete; empty when it is
    };

    BookComparison(Session& session, std::function<RxControl*()> control)
        : m_session(session), m_control(std::move(control)) {}

    bool IsUnderWay() const { return m_phase != Phase::none; }
    // Looks at what is in doubt now. False when nothing of this user is.
    bool Begin();
    // To be called every second: asks the server once it is time, and gives up when it does not answer in full.
    void OnTime(Pass pass, Notices& notices);
    void OnResponse(const Answer& answer);
    // There is one once the comparison has ended.
    std::optional<Outcome> TakeOutcome();

private:
    enum class Phase { none, waiting, first, second, over };

    void Ask(Pass pass, Notices& notices, Phase phase);
    void TakeRow(void* message);
    void SettleChanges(const BookRow& row);
    void End(std::string fault);

    Session& m_session;
    const std::function<RxControl*()> m_control;
    Phase m_phase = Phase::none;
    bool m_asksNext = false;
    std::vector<OrderPlace> m_orders;                           // in doubt, of this user
    std::unordered_multimap<std::string, OrderPlace> m_changes; // of these, by registration
    std::set<std::string> m_listed;                             // numbers of registrations in the answer
    std::int64_t m_notBefore = 0;                               // seconds, by the record's clock
    std::int64_t m_askedAt = 0;
    Outcome m_outcome;
};

} // namespace planfold
