#include "host/server/RxHub.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace vesk {
namespace {

constexpr std::uint32_t kMostSubscriptionFields = 16;

// What a subscription may ask for; the stream's name besides.
constexpr std::uint32_t kSubscriptionTags[] = {
    kTagStream, kTagRegistrationNumber, kTagBroker, kTagBranch, kTagUser, kTagAccount,
};

int Fail(QmxError* error, QmxErrorCode code, const char* text) {
    if (!error) return 0;
    error->code = code;
    std::snprintf(error->text, sizeof error->text, "%s", text);
    return 0;
}

int Succeed(QmxError* error) {
    if (error) *error = QmxError{};
    return 1;
}

// Fields that a record must have; an empty value stands for any, an empty identity for the connection's user.
using Subscription = std::vector<std::pair<std::uint32_t, std::string>>;

// Fields by which a registration belongs to somebody.
bool IsIdentity(std::uint32_t tag) {
    return tag == kTagUser || tag == kTagBroker || tag == kTagBranch;
}

bool Matches(const Subscription& subscription, const Registration& registration) {
    return std::all_of(subscription.begin(), subscription.end(), [&](const auto& field) {
        return field.second.empty() || registration.Text(field.first) == field.second;
    });
}

} // namespace

class RxHub::Control final : public RxControl {
public:
    Control(RxHub& hub, ControlId id, int kind, CKeloRxNotifierBase& notifier)
        : m_hub(hub), m_id(id), m_kind(kind), m_notifier(notifier) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    ~Control() = default;

    CKeloRxNotifierBase& Notifier() const { return m_notifier; }
    bool IsSubscribed() const { return !m_subscriptions.empty(); }
    bool Wants(const Registration& registration) const {
        return std::any_of(m_subscriptions.begin(), m_subscriptions.end(),
                           [&](const Subscription& one) { return Matches(one, registration); });
    }

    int SendRequest(std::uint64_t* requestNumber, void* message, int, QmxError* error) noexcept override {
        if (m_kind != kRxRequests) return Fail(error, kQmxBadArgument, "a stream control sends no requests");
        QmxDatum bytes{};
        if (!qmx_message_bytes(message, &bytes, error)) return 0;
        try {
            const std::uint64_t number =
                m_hub.Queue(m_id, qmx::Text(message, kTagRequestName), qmx::View(bytes));
            if (requestNumber) *requestNumber = number;
        } catch (const std::bad_alloc&) {
            return Fail(error, kQmxNoMemory, "no memory for the request");
        }
        return Succeed(error);
    }

    int Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                  RxControl* self, int, int, int, QmxError* error) noexcept override {
        if (const char* fault = FaultOf(tags, values, count, self)) return Fail(error, kQmxBadArgument, fault);
        try {
            Subscription subscription;
            for (std::uint32_t i = 0; i < count; ++i) {
                const std::string_view value = qmx::View(values[i]);
                if (value.empty() && IsIdentity(tags[i]))
                    subscription.emplace_back(kTagUser, m_hub.m_user.loginId);
                else
                    subscription.emplace_back(tags[i], value);
            }
            m_subscriptions.push_back(std::move(subscription));
        } catch (const std::bad_alloc&) {
            return Fail(error, kQmxNoMemory, "no memory for the subscription");
        }
        if (out) *out = m_subscriptions.size();
        return Succeed(error);
    }

    int Stop(int) noexcept override {
        m_subscriptions.clear();
        return 1;
    }

    void Reserved0() noexcept override {}
    void Reserved1() noexcept override {}
    void Reserved2() noexcept override {}
    void Reserved3() noexcept override {}
    void Reserved6() noexcept override {}
    void Reserved7() noexcept override {}
    void Reserved8() noexcept override {}
    void Reserved9() noexcept override {}
    void Reserved10() noexcept override {}
    void Reserved11() noexcept override {}
    void Reserved12() noexcept override {}
    void Reserved13() noexcept override {}
    void Reserved14() noexcept override {}

private:
    // Null when the subscription may be made.
    const char* FaultOf(const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                        const RxControl* self) const {
        if (m_kind == kRxRequests) return "a request control has no stream";
        if (self != this) return "the control must name itself";
        if (!tags || !values || count == 0) return "a subscription needs fields";
        if (count > kMostSubscriptionFields) return "a subscription of too many fields";
        for (std::uint32_t i = 0; i < count; ++i) {
            if (!values[i].data && values[i].length) return "a null value with a length";
            if (std::find(std::begin(kSubscriptionTags), std::end(kSubscriptionTags), tags[i])
                == std::end(kSubscriptionTags))
                return "a field that no stream goes by";
        }
        return nullptr;
    }

    RxHub& m_hub;
    const ControlId m_id;
    const int m_kind;
    CKeloRxNotifierBase& m_notifier;
    std::vector<Subscription> m_subscriptions;
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
    if (!notifier || kind < kRxRequests || kind > kRxAccountStream) return nullptr;
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
    // The notifier may destroy the control, so nothing of it is touched after the call.
    if (delivery.isStream)
        control.Notifier().OnBroadcast(reader.Handle(), 0, nullptr);
    else
        control.Notifier().OnResponse(&control, reader.Handle(), nullptr);
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
