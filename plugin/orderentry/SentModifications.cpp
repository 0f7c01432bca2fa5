#include "plugin/orderentry/SentModifications.h"

#include <algorithm>
#include <utility>

namespace planfold {

void SentModifications::Add(std::string registration, int opening, std::int64_t now) {
    m_sent.push_back({std::move(registration), opening, now});
    ForgetLost(now);
}

void SentModifications::ForgetLost(std::int64_t now) {
    while (m_sent.size() > 1 && now - m_sent.front().at > kAnswerPatienceMs)
        m_sent.erase(m_sent.begin());
}

bool SentModifications::Answered(std::string_view registration, int opening, bool refused, std::int64_t now) {
    ForgetLost(now);
    if (m_sent.empty()) return false;
    const std::string named(registration.empty() ? m_sent.front().registration : registration);
    const auto oldest = std::ranges::find(m_sent, named, &Sent::registration);
    if (oldest == m_sent.end()) return false;
    // Of one registration the answers of earlier openings may be lost.
    const bool own = std::ranges::any_of(
        m_sent, [&](const Sent& sent) { return sent.registration == named && sent.opening == opening; });
    if (own && !refused)
        std::erase_if(m_sent, [&](const Sent& sent) { return sent.opening == opening; });
    else
        m_sent.erase(oldest);
    return own;
}

} // namespace planfold
