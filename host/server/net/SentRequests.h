// A client's requests without their last answer, in the order in which they were sent, over all its
// connections.
//
// Thread: the client's; plain values.
#pragma once

#include "host/server/net/Protocol.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// A request without its last answer. The bytes are its message, and valid until the requests change.
struct WaitingRequest {
    std::uint64_t number = 0;
    std::string_view bytes{};
    std::int64_t sinceMs = 0;
    bool hasLeft = false; // on this connection or one before, perhaps only in part
};

class SentRequests {
public:
    struct Answer {
        std::uint32_t control;
        std::string bytes;
    };

    // The number is higher than all before. False when it is too long, or too many wait.
    bool Add(std::uint64_t number, std::uint32_t control, std::string_view bytes, std::int64_t nowMs);

    // The next connection is there: what was answered in part is not answered so far once more.
    void BeginConnection();
    void EndConnection();
    bool HasUnsaid() const { return m_requests.upper_bound(m_lastSaid) != m_requests.end(); }
    // The first that is not said on this connection, and is from now on; null when all are.
    const net::ControlRequest* SayNext();

    // What is to be told of it, if anything. The answer is why the server may not say this; null when it may.
    const char* Take(net::Response&& said, std::optional<Answer>& told);
    const char* Take(const net::RequestDone& said, std::optional<Answer>& told);
    // Takes back one that never left. Nothing when it has, or does not wait any more.
    std::optional<net::ControlRequest> Withdraw(std::uint64_t number);

    std::size_t Size() const { return m_requests.size(); }
    // The oldest first.
    std::vector<std::uint64_t> Numbers() const;
    // Nothing when the request does not wait any more.
    std::optional<WaitingRequest> Find(std::uint64_t number) const;

private:
    struct Unanswered {
        net::ControlRequest request;
        std::int64_t sinceMs;
        bool hasLeft = false;    // on a connection before
        std::size_t answers = 0; // that came
        std::size_t toSkip = 0;  // of those to come, since they came before
        std::string skipped{};   // the last one
    };
    using ByNumber = std::map<std::uint64_t, Unanswered>;

    bool HasLeft(const Unanswered& one) const { return one.hasLeft || one.request.number <= m_lastSaid; }
    net::ControlRequest Remove(ByNumber::iterator found);

    ByNumber m_requests;
    std::uint64_t m_lastSaid = 0; // on this connection: those behind it are not in the output
    std::size_t m_bytes = 0;
};

} // namespace vesk
