// What a terminal has asked for and the server has not handled, in the order in which it is due.
//
// Thread: any; plain values.
#pragma once

#include "host/server/net/Protocol.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <variant>

namespace vesk {

using Asked = std::variant<net::ControlRequest, net::ServerCommand>;

class AskedQueue {
public:
    void Add(std::int64_t dueMs, Asked asked) {
        m_bytes += SizeOf(asked);
        m_asked.emplace(std::pair(dueMs, ++m_arrivals), std::move(asked));
    }
    bool IsDue(std::int64_t nowMs) const { return !m_asked.empty() && m_asked.begin()->first.first <= nowMs; }
    Asked TakeFirst() {
        Asked first = std::move(m_asked.extract(m_asked.begin()).mapped());
        m_bytes -= SizeOf(first);
        return first;
    }
    std::size_t Size() const { return m_asked.size(); }
    std::size_t Bytes() const { return m_bytes; }

private:
    static std::size_t SizeOf(const Asked& asked) {
        const auto* request = std::get_if<net::ControlRequest>(&asked);
        return request ? request->bytes.size() : std::get<net::ServerCommand>(asked).line.size();
    }

    std::map<std::pair<std::int64_t, std::uint64_t>, Asked> m_asked; // by due time, then arrival
    std::size_t m_bytes = 0;
    std::uint64_t m_arrivals = 0;
};

} // namespace vesk
