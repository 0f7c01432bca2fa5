// By which requests changes were made, so that one that comes again is known: those of a week, and no more than
// a bounded number. It lasts beyond a restart: each change's record names its request, and a request that found
// nothing to change has a record of its own.
//
// Thread: as the registrations.
#pragma once

#include "host/server/journal/FieldRecord.h"
#include "host/server/journal/Journal.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace vesk {

// The request that made a change.
struct ChangeOrigin {
    // The checksum of what the message asks for.
    static std::uint32_t ContentsOf(void* message);
    // A journal record of nothing else.
    std::string Json() const;
    bool HasOther(std::uint32_t asked) const { return contents && *contents != asked; }

    std::string_view loginId, sentAs;
    std::optional<std::uint32_t> contents{}; // older journals do not tell
    std::int64_t at = 0;                     // seconds since 1970, by the machine's clock
};

class ChangeMemory {
public:
    // What is known of it already stays. A request without a name cannot come again.
    void Remember(const ChangeOrigin& origin);
    std::size_t Size() const { return m_order.size(); }
    std::optional<ChangeOrigin> Find(std::string_view loginId, std::string_view sentAs) const;

    // For a replay from which the registrations' earlier records are gone.
    void WriteTo(const Journal::Sink& sink) const;
    // False when the record is another one.
    bool Replay(std::string_view record);

private:
    struct Known {
        std::optional<std::uint32_t> contents;
        std::int64_t at;
    };
    std::unordered_map<std::string, Known> m_known; // by login and name
    std::deque<const std::string*> m_order;         // their keys, the oldest first
};

} // namespace vesk
