// Orders that ask for the same as a registration of the book, as an order of today, or as each other: placed
// twice by mistake as a rule, and on purpose now and then.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/record/OrderRecord.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace planfold {

class DuplicateGuard {
public:
    // Looks at the book and the record as they are now.
    explicit DuplicateGuard(Session& session);

    // Whether an order, of those that are to be placed, is like one before. An earlier one of them counts as
    // well.
    bool IsLike(const RecordTexts& order);
    // "2 like a registration in the book: ...", a line for each kind; empty when none was.
    std::string Text() const;

private:
    enum Kind { registration, recorded, each, kinds };
    struct Found {
        std::size_t count = 0;
        std::string names;
    };

    bool Note(Kind kind, const RecordTexts& order, std::string_view detail);

    const OrderLedger* m_record;                                 // null where the host has no folder for it
    std::unordered_map<std::uint64_t, std::string> m_registered; // numbers
    std::unordered_set<std::uint64_t> m_seen;
    std::array<Found, kinds> m_found{};
};

} // namespace planfold
