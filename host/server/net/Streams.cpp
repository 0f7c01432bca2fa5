#include "host/server/net/Streams.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace vesk {
namespace {

constexpr std::size_t kMostControlSubscriptions = 256;

// What a subscription may ask for; the stream's name besides.
constexpr std::uint32_t kSubscriptionTags[] = {
    tag::streamName, tag::registrationNumber, tag::peerIdA, tag::peerIdB, tag::loginId, tag::account,
};

} // namespace

const char* FaultOf(const Subscription& subscription, std::size_t others) {
    if (subscription.empty()) return "a subscription needs fields";
    if (subscription.size() > kMostSubscriptionFields) return "a subscription of too many fields";
    if (others >= kMostControlSubscriptions) return "too many subscriptions";
    for (const auto& [tag, value] : subscription) {
        if (value.size() > kLongestText) return "a value that no record has";
        if (std::ranges::count(kSubscriptionTags, tag) == 0) return "a field that no stream goes by";
    }
    return nullptr;
}

bool IsForeign(const Subscription& subscription, const UserIdentity& user) {
    return std::ranges::any_of(
        subscription, [&](const auto& field) { return NamesAnother(field.first, field.second, user); });
}

bool Matches(const Subscription& subscription, const Registration& registration, const UserIdentity& user) {
    return MaySee(user, registration) && std::ranges::all_of(subscription, [&](const auto& field) {
               const auto& [tag, value] = field;
               if (!value.empty()) return registration.Text(tag) == value;
               return std::ranges::count(kIdentityFields, tag, &IdentityField::tag) == 0
                      || registration.Text(tag::loginId) == user.loginId;
           });
}

Streams::Streams(Server& server, UserIdentity user) : m_server(server), m_user(std::move(user)) {
    m_server.AddListener(*this);
}
Streams::~Streams() {
    m_server.RemoveListener(*this);
}

std::string Streams::Subscribe(std::uint32_t control, const Subscription& subscription, bool isRenewed) {
    const auto found = m_controls.find(control);
    if (const char* fault = FaultOf(subscription, found == m_controls.end() ? 0 : found->second.size()))
        return fault;
    if (IsForeign(subscription, m_user)) return WrongUser().text;
    m_controls[control].push_back(subscription);
    if (isRenewed) m_catchUps.push_back({control, subscription, 0, m_server.Held().All().size()});
    return {};
}

void Streams::Stop(std::uint32_t control) {
    m_controls.erase(control);
    std::erase_if(m_updates, [&](const net::Update& update) { return update.control == control; });
    std::erase_if(m_catchUps, [&](const CatchUp& one) { return one.control == control; });
}

void Streams::StopAll() {
    m_controls.clear();
    m_updates.clear();
    m_catchUps.clear();
}

std::size_t Streams::Subscriptions() const {
    return std::accumulate(m_controls.begin(), m_controls.end(), std::size_t{0},
                           [](std::size_t sum, const auto& entry) { return sum + entry.second.size(); });
}

net::Update Streams::TakeNext() {
    net::Update next = std::move(m_updates.front());
    m_updates.pop_front();
    return next;
}

std::optional<net::Update> Streams::NextMissed() {
    constexpr std::size_t mostLookedAt = 256;
    if (m_catchUps.empty()) return std::nullopt;
    CatchUp& missed = m_catchUps.front();
    missed.end = std::min(missed.end, m_server.Held().All().size());
    const std::size_t stop = std::min(missed.end, missed.next + mostLookedAt);
    std::optional<net::Update> found;
    while (!found && missed.next < stop) {
        const Registration& registration = m_server.Held().All()[missed.next++];
        if (!Matches(missed.fields, registration, m_user)) continue;
        registration.AddTo(m_writer.Start());
        found = net::Update{missed.control, m_writer.Finish()};
    }
    if (missed.next >= missed.end) m_catchUps.pop_front();
    return found;
}

void Streams::OnUpdate(const Registration& registration) {
    std::string bytes;
    for (const auto& [control, subscriptions] : m_controls) {
        if (std::ranges::none_of(subscriptions,
                                 [&](const Subscription& one) { return Matches(one, registration, m_user); }))
            continue;
        if (bytes.empty()) {
            registration.AddTo(m_writer.Start());
            bytes = m_writer.Finish();
        }
        m_updates.push_back({control, bytes});
    }
}

} // namespace vesk
