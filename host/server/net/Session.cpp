#include "host/server/net/Session.h"

#include "host/server/HubControl.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace vesk {
namespace {

constexpr std::size_t kMostControls = 1024;
constexpr std::size_t kMostSubscriptions = 4096; // each is looked at for every update

std::string_view Shortened(std::string_view text) {
    return text.substr(0, kLongestText);
}

struct SizeOf {
    std::size_t operator()(const net::Request& request) const { return request.bytes.size(); }
    std::size_t operator()(const net::Command& command) const { return command.line.size(); }
};

} // namespace

// Passes on what one stream control is told.
class Session::Forwarder final : public CKeloRxNotifierBase {
public:
    Forwarder(Session& session, std::uint32_t id, int kind)
        : m_session(session), m_id(id),
          m_control(kind == kRxRequests ? nullptr : session.m_streams->Get(kind, this)) {}
    Forwarder(const Forwarder&) = delete;
    Forwarder& operator=(const Forwarder&) = delete;
    ~Forwarder() {
        if (m_control) m_session.m_streams->Destroy(m_control);
    }

    // Null of a control for requests.
    RxControl* Control() const { return m_control; }

    void OnBroadcast(void* message, std::uint32_t, void*) override {
        QmxDatum bytes{};
        QmxError error{};
        if (!qmx_message_bytes(message, &bytes, &error)) return;
        m_session.Say(net::Stream{m_id, std::string(qmx::View(bytes))});
        ++m_session.m_streamed;
    }
    void OnResponse(void*, void*, void*) override {}

    std::size_t subscriptions = 0;

private:
    Session& m_session;
    std::uint32_t m_id;
    RxControl* m_control;
};

struct Session::Step {
    FrameType type;
    void (Session::*take)(std::string_view payload);
};
const Session::Step Session::kSteps[] = {
    {FrameType::hello, &Session::TakeAs<net::Hello>},
    {FrameType::open, &Session::TakeAs<net::Open>},
    {FrameType::close, &Session::TakeAs<net::Close>},
    {FrameType::request, &Session::TakeAs<net::Request>},
    {FrameType::subscribe, &Session::TakeAs<net::Subscribe>},
    {FrameType::stop, &Session::TakeAs<net::Stop>},
    {FrameType::command, &Session::TakeAs<net::Command>},
};

Session::Session(Server& server, ServerCommands& commands, const SessionLimits& limits)
    : m_server(server), m_commands(commands), m_limits(limits) {}
Session::~Session() = default;

void Session::Take(std::string_view bytes, std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    m_reader.Add(bytes);
    while (!HasEnded()) {
        const auto frame = m_reader.Next();
        if (!frame) break;
        const auto step = std::ranges::find(kSteps, frame->type, &Step::type);
        if (step == std::end(kSteps)) return Refuse("a frame that a server sends");
        if (!m_streams && frame->type != FrameType::hello) return Refuse("a terminal says hello first");
        (this->*step->take)(frame->payload);
    }
    if (m_reader.Fault() != FrameFault::none) Refuse(TextOf(m_reader.Fault()));
}

template <class Said>
void Session::TakeAs(std::string_view payload) {
    if (auto said = net::Read<Said>(payload))
        On(std::move(*said));
    else
        Refuse("a frame that cannot be read");
}

void Session::On(const net::Hello& said) {
    if (m_streams) return Refuse("a second hello");
    if (said.version != net::kProtocolVersion)
        return Refuse("the server speaks version " + std::to_string(net::kProtocolVersion) + ", not "
                      + std::to_string(said.version));
    if (said.loginId.empty()) return Refuse("a terminal without a login");
    m_user = {said.loginId, said.peerIdA, said.peerIdB};
    m_name = Shortened(said.loginId);
    m_terminal = std::to_string(said.terminal);
    m_streams =
        std::make_unique<RxHub>(m_server, m_user, PumpBudget{m_limits.turns, std::chrono::milliseconds{0}});
    Say(net::Welcome{net::kProtocolVersion, static_cast<std::uint64_t>(m_server.Now())});
    TellState();
}

void Session::On(const net::Open& said) {
    if (said.kind > kRxAccountStream) return Refuse("a control of an unknown kind");
    if (m_forwarders.contains(said.control)) return Refuse("a control opened twice");
    if (m_forwarders.size() == kMostControls) return Refuse("too many controls");
    m_forwarders.emplace(said.control,
                         std::make_unique<Forwarder>(*this, said.control, static_cast<int>(said.kind)));
}

void Session::On(const net::Close& said) {
    m_forwarders.erase(said.control);
    std::erase_if(m_catchUps, [&](const CatchUp& one) { return one.control == said.control; });
    // A request still counts when nobody hears its answer; a query's rows are for nobody.
    for (const Query& query : m_queries)
        if (query.control == said.control) Say(net::Done{query.number});
    std::erase_if(m_queries, [&](const Query& query) { return query.control == said.control; });
}

void Session::On(net::Request&& said) {
    const qmx::MessageReader reader(said.bytes);
    if (!reader.Good()) return Refuse("a request that is no message");
    const std::int64_t delay = m_server.Config().FaultFor(qmx::Text(reader.Handle(), tag::requestName)).delayMs;
    Queue(m_nowMs + delay, std::move(said));
}

void Session::On(net::Command&& said) {
    Queue(m_nowMs, std::move(said));
}

void Session::Queue(std::int64_t dueMs, Asked asked) {
    m_askedBytes += std::visit(SizeOf{}, asked);
    m_asked.emplace(std::pair(dueMs, ++m_arrivals), std::move(asked));
}

void Session::On(const net::Subscribe& said) {
    Forwarder* forwarder = Find(said.control);
    if (!forwarder || !forwarder->Control())
        return Say(net::Unsubscribed{said.control, "there is no such stream control"});
    if (Subscriptions() >= kMostSubscriptions) return Refuse("too many subscriptions");
    std::vector<std::uint32_t> tags;
    std::vector<QmxDatum> values;
    for (const auto& [tag, text] : said.fields) {
        tags.push_back(tag);
        values.push_back(qmx::Datum(text));
    }
    QmxError error{};
    RxControl* control = forwarder->Control();
    if (!control->Subscribe(nullptr, tags.data(), values.data(), static_cast<std::uint32_t>(tags.size()),
                            control, 0, 0, 1, &error))
        return Say(net::Unsubscribed{said.control, error.text});
    ++forwarder->subscriptions;
    if (said.isRenewed) m_catchUps.push_back({said.control, said.fields, 0, m_server.Registrations().size()});
}

void Session::On(const net::Stop& said) {
    std::erase_if(m_catchUps, [&](const CatchUp& one) { return one.control == said.control; });
    Forwarder* forwarder = Find(said.control);
    if (!forwarder || !forwarder->Control()) return;
    forwarder->Control()->Stop(0);
    forwarder->subscriptions = 0;
}

std::size_t Session::Subscriptions() const {
    return std::accumulate(
        m_forwarders.begin(), m_forwarders.end(), std::size_t{0},
        [](std::size_t sum, const auto& entry) { return sum + entry.second->subscriptions; });
}

Session::Forwarder* Session::Find(std::uint32_t control) {
    const auto found = m_forwarders.find(control);
    return found == m_forwarders.end() ? nullptr : found->second.get();
}

template <class Said>
void Session::Say(Said said) {
    if (!net::Append(m_output, std::move(said))) End("a message is too long to be sent");
}

void Session::Refuse(const std::string& text) {
    Say(net::Refusal{text});
    End(text);
}

void Session::End(std::string reason) {
    if (!HasEnded()) m_endReason = std::move(reason);
}

bool Session::RequestIsDue(std::int64_t nowMs) const {
    return !m_asked.empty() && m_asked.begin()->first.first <= nowMs;
}

// An end of the due ones is told behind what the terminal hears of them.
bool Session::HasDue() const {
    return m_server.HasDue() || (m_toldState.hasDue && m_streams->Waiting() > 0);
}

bool Session::StateIsTold() const {
    return m_toldState.hasDue == HasDue() && m_toldState.date == m_server.Today()
           && m_toldState.restrictions == m_server.Restricted().Changes();
}

void Session::TellState() {
    m_toldState = {m_server.Today(), HasDue(), m_server.Restricted().Changes()};
    net::ServerState state{DateNumber(m_toldState.date), m_toldState.hasDue, {}};
    for (const auto date : m_server.Restricted().All())
        state.restricted.push_back(DateNumber(date));
    Say(std::move(state));
}

bool Session::HasWork(std::int64_t nowMs) const {
    if (HasEnded() || !HasRoom()) return false;
    return RequestIsDue(nowMs) || !m_queries.empty() || !m_catchUps.empty()
           || (m_streams && (m_streams->Waiting() > 0 || !StateIsTold()));
}

void Session::Pump(std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    if (HasRoom()) m_roomAtMs = m_nowMs;
    if (!m_beganMs) m_beganMs = m_nowMs;
    for (std::size_t turn = 0; turn < m_limits.turns && PumpOnce(); ++turn) {
    }
    JudgePace();
    JudgeStall();
}

// One of each: neither many requests nor a long query holds up the other.
bool Session::PumpOnce() {
    if (!HasWork(m_nowMs)) return false;
    if (!StateIsTold()) TellState();
    if (RequestIsDue(m_nowMs)) {
        const Asked asked = std::move(m_asked.begin()->second);
        m_asked.erase(m_asked.begin());
        m_askedBytes -= std::visit(SizeOf{}, asked);
        std::visit([this](const auto& one) { Handle(one); }, asked);
    }
    // All of them before the next row.
    while (HasRoom() && !HasEnded() && m_streams->Waiting() > 0)
        m_streams->Pump(m_nowMs);
    if (!HasRoom() || HasEnded()) return false;
    if (!m_catchUps.empty()) NextMissed();
    if (!m_queries.empty()) NextRow();
    return true;
}

void Session::Handle(const net::Request& request) {
    const qmx::MessageReader reader(request.bytes);
    Reply reply = m_server.Handle(reader.Handle(), m_user, m_terminal + "-" + std::to_string(request.number));
    if (reply.isCut) return End("the server plays a cut connection");
    if (!StateIsTold()) TellState();
    for (std::string& answer : reply.answers)
        Say(net::Answer{request.control, request.number, std::move(answer)});
    if (reply.rows)
        m_queries.push_back({request.control, request.number, std::move(*reply.rows)});
    else
        Say(net::Done{request.number});
}

void Session::Handle(const net::Command& command) {
    Told told = m_commands.Run(command.line, m_user, m_nowMs);
    if (!StateIsTold()) TellState();
    Say(net::Told{command.number, told.isDone, std::move(told.text)});
}

void Session::NextRow() {
    Query& query = m_queries.front();
    if (std::string row = m_server.NextRow(query.rows); !row.empty())
        Say(net::Answer{query.control, query.number, std::move(row)});
    if (HasEnded() || !query.rows.isDone) return;
    Say(net::Done{query.number});
    m_queries.pop_front();
}

void Session::NextMissed() {
    constexpr std::size_t mostLookedAt = 256;
    CatchUp& missed = m_catchUps.front();
    const std::size_t stop = std::min(missed.end, missed.next + mostLookedAt);
    while (missed.next < stop) {
        const Registration& registration = m_server.Registrations()[missed.next++];
        if (!Matches(missed.fields, registration, m_user.loginId)) continue;
        registration.AddTo(m_writer.Start());
        Say(net::Stream{missed.control, m_writer.Finish()});
        break;
    }
    if (!HasEnded() && missed.next == missed.end) m_catchUps.pop_front();
}

// One that takes its updates in drops must not hold up what the others wait for.
void Session::JudgePace() {
    constexpr std::int64_t periodMs = 1000;
    constexpr std::size_t leastTaken = 500;
    if (!HasBacklog())
        m_pace = {m_nowMs, m_streamed, true};
    else if (m_nowMs - m_pace.sinceMs >= periodMs)
        m_pace = {m_nowMs, m_streamed, m_streamed - m_pace.streamed >= leastTaken};
}

void Session::JudgeStall() {
    if (m_nowMs - m_roomAtMs > m_limits.stalledMs) End("it takes nothing more");
    if (!m_streams && m_nowMs - *m_beganMs > m_limits.greetingMs) End("it does not say hello");
    if (m_streams && m_streams->Waiting() > m_limits.streamBacklog) End("too many updates wait for it");
}

} // namespace vesk
