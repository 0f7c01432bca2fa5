// What the user is shown of requests that wait for their answers: the cells of the list, and the question when
// the terminal is to be left.
//
// Thread: any; pure functions.
#pragma once

#include "host/server/net/RxClient.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

enum class WaitingColumn { request, client, scrip, value, since, state, count };

struct WaitingHeading {
    const char* text;
    int width; // pixels at 96 DPI
};
extern const WaitingHeading kWaitingHeadings[static_cast<std::size_t>(WaitingColumn::count)];

// `ageMs` is how long the request has waited, `timeOfDay` the seconds of the local day by now.
std::string WaitingCell(const WaitingRequest& request, WaitingColumn column, std::int64_t ageMs, int timeOfDay);

struct WaitingCounts {
    std::size_t all = 0;
    std::size_t unsent = 0; // of these
};
WaitingCounts CountWaiting(const RxClient& client);

// "1 request waits for an answer", "3 requests wait for an answer"
std::string WaitingText(std::size_t requests);
// `trouble` is why there are no answers; empty when that is not known.
std::string LeaveQuestion(const WaitingCounts& counts, const std::string& trouble);

// When the terminal no longer waits for answers, once it is to be left.
class LeaveLimit {
public:
    static constexpr std::int64_t kQuietMs = 5'000;    // without an answer
    static constexpr std::int64_t kLongestMs = 60'000; // with answers

    LeaveLimit(std::size_t waiting, std::int64_t nowMs)
        : m_waiting(waiting), m_beganMs(nowMs), m_answeredMs(nowMs) {}
    bool IsOver(std::size_t waiting, std::int64_t nowMs);

private:
    std::size_t m_waiting;
    std::int64_t m_beganMs;
    std::int64_t m_answeredMs;
};

} // namespace vesk
