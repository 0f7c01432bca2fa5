#include "tests/support/FakeHost.h"

#include <cctype>
#include <utility>
#include <windows.h>

#include <algorithm>
#include <stdexcept>

namespace {

constexpr char kFrameClass[] = "FakeHostFrame";

// The fields must be in the message itself, not only in the calls that were seen to build it.
bool Carries(void* message, const Fields& fields) {
    std::map<std::uint32_t, std::uint32_t> next;
    for (const Field& field : fields) {
        QmxDatum datum{};
        QmxError error{};
        if (!Connection::Loaded().get(message, field.tag, next[field.tag]++, &datum, &error)) return false;
        const std::string text = datum.length ? std::string(datum.data, datum.length) : "null";
        if (text != field.text) return false;
    }
    return true;
}

} // namespace

int FakeControl::SendRequest(std::uint64_t* requestNumber, void* message, int zero, QmxError* error) {
    const Fields& fields = ConnectionWatch::Current().building;
    if (!live || zero != 0 || !error || !message) Misused();
    if (!Carries(message, fields)) m_host.misuses.push_back("sent something else than was built");
    if (requestNumber) *requestNumber = m_host.requests.size() + 1;
    if (!m_host.sendResult) return 0;
    m_host.requests.push_back({m_index, fields});
    return 1;
}

int FakeControl::Subscribe(std::uint64_t*, const std::uint32_t* tags, const QmxDatum* values,
                           std::uint32_t count, RxControl* self, int zeroA, int zeroB, int one,
                           QmxError* error) {
    if (!live || self != this || zeroA != 0 || zeroB != 0 || one != 1 || !error) Misused();
    Fields fields;
    for (std::uint32_t i = 0; i < count; ++i)
        fields.push_back({tags[i], values[i].data ? std::string(values[i].data, values[i].length) : "null"});
    m_host.subscriptions.push_back({m_index, fields});
    if (!m_host.subscribeResult && error) error->code = m_host.subscribeError;
    return m_host.subscribeResult;
}

int FakeControl::Stop(int zero) {
    if (!live || zero != 0) Misused();
    stopped = true;
    return 1;
}

void FakeControl::Misused() {
    m_host.misuses.push_back("control " + std::to_string(m_index));
}

FakeHost* FakeHost::s_current = nullptr;

FakeHost::FakeHost() {
    if (s_current) throw std::logic_error("a host is there already");
    s_current = this;
    WNDCLASSA frame{};
    frame.lpfnWndProc = DefWindowProcA;
    frame.lpszClassName = kFrameClass;
    frame.hInstance = GetModuleHandleA(nullptr);
    RegisterClassA(&frame);
    m_mainFrame = CreateWindowExA(0, kFrameClass, "Host", WS_OVERLAPPEDWINDOW, 0, 0, 1000, 700, nullptr,
                                  nullptr, frame.hInstance, nullptr);
}

FakeHost::~FakeHost() {
    DestroyWindow(m_mainFrame);
    s_current = nullptr;
}

FakeHost& FakeHost::Current() {
    if (!s_current) std::abort();
    return *s_current;
}

int FakeHost::CallsOf(std::string_view name) const {
    return static_cast<int>(std::ranges::count_if(
        calls, [&](const std::string& call) { return call.starts_with(std::string(name) + "("); }));
}

int FakeHost::LiveControls() const {
    return static_cast<int>(std::ranges::count_if(controls, &FakeControl::live));
}

void FakeHost::Answer(int control, const Fields& fields) {
    const BuiltMessage message(fields);
    controls.at(static_cast<std::size_t>(control)).notifier->OnResponse(nullptr, message.Handle(), nullptr);
}

void FakeHost::Broadcast(int control, const Fields& fields) {
    const BuiltMessage message(fields);
    controls.at(static_cast<std::size_t>(control)).notifier->OnBroadcast(message.Handle(), 0, nullptr);
}

const FakeHost::Scrip* FakeHost::FindScrip(const std::function<bool(const Scrip&)>& matches) const {
    const auto found = std::ranges::find_if(scrips, matches);
    return found == scrips.end() ? nullptr : &*found;
}

VeskApp* FakeHost::App() {
    if (!hasApp) return nullptr;
    m_app = {appSize, 0, hasMainFrame ? m_mainFrame : nullptr, GetModuleHandleA(nullptr)};
    return &m_app;
}

const NonTradingDates* FakeHost::NonTrading() {
    m_nonTrading = {static_cast<std::uint32_t>(nonTradingDates.size()), 0,
                    nonTradingDates.empty() ? nullptr : nonTradingDates.data()};
    return &m_nonTrading;
}

// Every search gives texts of its own and lets those of the one before go, as a host may.
// Mode 2 looks at the identifier only, 3 at the name only; the text is in upper case, "X(" asks for X alone.
const ClientResult* FakeHost::Search(int mode, std::string_view text, int& count) {
    const auto holds = [&](std::string value) {
        for (char& c : value)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return text.ends_with('(') ? value == text.substr(0, text.size() - 1) : value.find(text) != value.npos;
    };
    if (const auto during = std::exchange(duringSearch, nullptr)) during();
    m_results.clear();
    m_resultTexts.clear();
    for (const auto& client : clients) {
        if (!(mode != 3 && holds(client.first)) && !(mode != 2 && holds(client.second))) continue;
        const auto& copy =
            *m_resultTexts.emplace_back(std::make_unique<std::pair<std::string, std::string>>(client));
        m_results.push_back({copy.first.c_str(), copy.second.c_str()});
    }
    count = static_cast<int>(m_results.size());
    return m_results.empty() ? nullptr : m_results.data();
}
