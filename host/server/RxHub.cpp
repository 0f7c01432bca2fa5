#include "host/server/RxHub.h"

#include "host/server/HubControl.h"

#include <algorithm>

namespace vesk {

class RxHub::Control final : public HubControl {
public:
    Control(RxHub& hub, ControlId id, int kind, CKeloRxNotifierBase& notifier)
        : HubControl(kind, notifier), m_hub(hub), m_id(id) {}
    ~Control() = default;

    bool Wants(const Registration& registration) const {
        return std::ranges::any_of(Subscriptions(), [&](const Subscription& one) {
            return Matches(one, registration, m_hub.m_user.loginId);
        });
    }

private:
    std::uint64_t Queue(std::string_view request, std::string_view bytes) override {
        return m_hub.Queue(m_id, request, bytes);
    }

    RxHub& m_hub;
    const ControlId m_id;
};

// What one pump may still do. Only once many turns are taken is the clock asked.
class RxHub::Turns {
public:
    explicit Turns(const PumpBudget& budget)
        : m_least(budget.leastTurns), m_end(std::chrono::steady_clock::now() + budget.time) {}

    bool Take() { return m_taken++ < m_least || std::chrono::steady_clock::now() < m_end; }

private:
    std::size_t m_least;
    std::size_t m_taken = 0;
    std::chrono::steady_clock::time_point m_end;
};

RxHub::RxHub(Server& server, UserIdentity user, PumpBudget budget)
    : m_server(server), m_user(std::move(user)), m_budget(budget) {
    m_server.AddListener(*this);
}
RxHub::~RxHub() {
    m_server.RemoveListener(*this);
}

RxControl* RxHub::Get(int kind, CKeloRxNotifierBase* notifier) {
    if (!HubControl::CanBe(kind, notifier)) return nullptr;
    const ControlId id = ++m_lastControl;
    const auto made = m_controls.emplace(id, std::make_unique<Control>(*this, id, kind, *notifier));
    return made.first->second.get();
}

void RxHub::Destroy(RxControl* control) {
    const auto found = std::find_if(m_controls.begin(), m_controls.end(),
                                    [&](const auto& entry) { return entry.second.get() == control; });
    if (found == m_controls.end()) return;
    std::erase_if(m_deliveries, [&](const Delivery& delivery) { return delivery.receiver == found->first; });
    m_controls.erase(found);
}

std::uint64_t RxHub::Queue(ControlId sender, std::string_view request, std::string_view bytes) {
    const std::uint64_t number = m_lastRequest + 1;
    const std::int64_t dueMs = m_nowMs + m_server.Config().FaultFor(request).delayMs;
    m_requests.emplace(std::pair(dueMs, number), Request{sender, std::string(bytes)});
    m_lastRequest = number;
    return number;
}

std::size_t RxHub::Pump(std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    Turns turns(m_budget);
    std::size_t calls = 0;
    // One of each: neither many requests nor a long query holds up the other.
    while ((RequestIsDue() || !m_deliveries.empty()) && turns.Take()) {
        if (RequestIsDue()) HandleNextRequest();
        if (!m_deliveries.empty() && Deliver(TakeNext())) ++calls;
    }
    return calls;
}

bool RxHub::RequestIsDue() const {
    return !m_requests.empty() && m_requests.begin()->first.first <= m_nowMs;
}

void RxHub::HandleNextRequest() {
    const Request request = std::move(m_requests.begin()->second);
    m_requests.erase(m_requests.begin());
    HandleRequest(request);
}

void RxHub::HandleRequest(const Request& request) {
    const qmx::MessageReader reader(request.bytes);
    // The server tells of the change while it handles; the answer still goes out first.
    const auto answersFrom = static_cast<std::ptrdiff_t>(m_deliveries.size());
    Reply reply = m_server.Handle(reader.Handle(), m_user);
    if (!m_controls.contains(request.sender)) return;
    auto place = m_deliveries.begin() + answersFrom;
    for (std::string& answer : reply.answers)
        place = 1 + m_deliveries.insert(place, Delivery{request.sender, false, std::move(answer)});
    if (reply.rows) m_deliveries.insert(place, Delivery{request.sender, false, {}, std::move(reply.rows)});
}

RxHub::Delivery RxHub::TakeNext() {
    Delivery& front = m_deliveries.front();
    Delivery next{front.receiver, front.isStream};
    if (front.rows)
        next.bytes = m_server.NextRow(*front.rows);
    else
        next.bytes = std::move(front.bytes);
    // Taken out before the call: the notifier may run a message loop that pumps again.
    if (!front.rows || front.rows->isDone) m_deliveries.pop_front();
    return next;
}

bool RxHub::Deliver(const Delivery& delivery) {
    const auto found = m_controls.find(delivery.receiver);
    if (found == m_controls.end()) return false;
    Control& control = *found->second;
    if (delivery.bytes.empty() || (delivery.isStream && !control.IsSubscribed())) return false;
    const qmx::MessageReader reader(delivery.bytes);
    if (!reader.Good()) return false;
    control.Tell(reader.Handle(), delivery.isStream);
    return true;
}

void RxHub::OnUpdate(const Registration& registration) {
    std::string bytes;
    for (const auto& [id, control] : m_controls) {
        if (!control->Wants(registration)) continue;
        if (bytes.empty()) {
            registration.AddTo(m_writer.Start());
            bytes = m_writer.Finish();
        }
        m_deliveries.push_back({id, true, bytes});
    }
}

} // namespace vesk
