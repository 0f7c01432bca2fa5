#include "host/server/net/SentRequests.h"

#include <utility>

namespace vesk {
namespace {

constexpr std::size_t kMostRequests = 2'000'000; // twice the largest basket
constexpr std::size_t kMostBytes = std::size_t{1} << 30;

} // namespace

bool SentRequests::Add(std::uint64_t number, std::uint32_t control, std::string_view bytes,
                       std::int64_t nowMs) {
    if (bytes.size() > net::kLongestRequest || m_requests.size() >= kMostRequests
        || m_bytes + bytes.size() > kMostBytes)
        return false;
    m_requests.emplace(number, Unanswered{{control, number, std::string(bytes)}, nowMs});
    m_bytes += bytes.size();
    return true;
}

void SentRequests::BeginConnection() {
    for (auto& [number, one] : m_requests)
        one.toSkip = one.answers;
}

void SentRequests::EndConnection() {
    for (auto one = m_requests.begin(); one != m_requests.end() && one->first <= m_lastSaid; ++one)
        one->second.hasLeft = true;
    m_lastSaid = 0;
}

const net::ControlRequest* SentRequests::SayNext() {
    const auto next = m_requests.upper_bound(m_lastSaid);
    if (next == m_requests.end()) return nullptr;
    m_lastSaid = next->first;
    return &next->second.request;
}

const char* SentRequests::Take(net::Response&& said, std::optional<Answer>& told) {
    const auto found = m_requests.find(said.number);
    if (found == m_requests.end() || said.number > m_lastSaid) return "an answer that nobody asked for";
    Unanswered& one = found->second;
    if (one.toSkip > 0) {
        --one.toSkip;
        one.skipped = std::move(said.bytes);
        return nullptr;
    }
    ++one.answers;
    told = {one.request.control, std::move(said.bytes)};
    return nullptr;
}

const char* SentRequests::Take(const net::RequestDone& said, std::optional<Answer>& told) {
    const auto found = m_requests.find(said.number);
    if (found == m_requests.end() || said.number > m_lastSaid) return "the end of a request that nobody made";
    Unanswered& one = found->second;
    // This server has less than the one before. The last answer tells the end of the rows.
    if (one.toSkip > 0 && !one.skipped.empty()) told = {one.request.control, std::move(one.skipped)};
    Remove(found);
    return nullptr;
}

std::optional<net::ControlRequest> SentRequests::Withdraw(std::uint64_t number) {
    const auto found = m_requests.find(number);
    if (found == m_requests.end() || HasLeft(found->second)) return std::nullopt;
    return Remove(found);
}

net::ControlRequest SentRequests::Remove(ByNumber::iterator found) {
    net::ControlRequest request = std::move(found->second.request);
    m_bytes -= request.bytes.size();
    m_requests.erase(found);
    return request;
}

std::vector<std::uint64_t> SentRequests::Numbers() const {
    std::vector<std::uint64_t> numbers;
    numbers.reserve(m_requests.size());
    for (const auto& [number, one] : m_requests)
        numbers.push_back(number);
    return numbers;
}

std::optional<WaitingRequest> SentRequests::Find(std::uint64_t number) const {
    const auto found = m_requests.find(number);
    if (found == m_requests.end()) return std::nullopt;
    const Unanswered& one = found->second;
    return WaitingRequest{number, one.request.bytes, one.sinceMs, HasLeft(one)};
}

} // namespace vesk
