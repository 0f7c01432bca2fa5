#include "tests/support/FakeHost.h"

#include "tests/support/TagNames.h"

#ifdef _WIN32
#include <windows.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace planfold::test {
namespace {

FakeHost* g_host = nullptr; // plain functions have no other way to their test

} // namespace

FakeHost& Host() {
    if (!g_host) std::abort();
    return *g_host;
}

Fields::Fields(const std::string& text) {
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t equals = word.find('=');
        Field& field = emplace_back(Field{TagNamed(word.substr(0, equals)), {}});
        std::istringstream values(word.substr(equals + 1) + ',');
        for (std::string value; std::getline(values, value, ',');)
            field.values.push_back(value);
    }
}

Fields Order(const Fields& changes) {
    Fields order =
        "requestName=add_sip_orders exchange=nse_cm token=1013 tradingSymbol=ARBORTEX-EQ side=B orderType=MKT "
        "product=CNC investType=value amountOrQuantity=123450 frequency=monthly startDate=1799625600 "
        "totalPeriod=12 loginId=DEALER1 customerFirm=C account=C001 validity=DAY peerIdA=BROKER "
        "peerIdB=BRANCH";
    for (const Field& change : changes)
        for (Field& field : order)
            if (field.tag == change.tag) field.values = change.values;
    return order;
}

std::string TextOf(const Fields& message) {
    return Named(qmx::Dump(Received(message).Message()));
}

Received::Received(const Fields& fields) {
    qmx::MessageWriter writer;
    for (const Field& field : fields) {
        std::vector<QmxDatum> values;
        for (const std::string& value : field.values)
            values.push_back(qmx::Datum(value));
        writer.AddValues(field.tag, values.data(), static_cast<std::uint32_t>(values.size()));
    }
    m_bytes = writer.Finish();
    m_reader = std::make_unique<qmx::MessageReader>(m_bytes);
}

bool RecordDouble::Append(const LocalDateTime&, std::string_view lines, bool, std::size_t&) {
    ++appends;
    if (writable) text.append(text.empty() ? RecordHeading() : std::string_view()).append(lines);
    return writable;
}

Texts RecordDouble::Events() const {
    Texts events;
    RecordReader reader(text);
    while (const auto line = reader.Next()) {
        std::string& event = events.emplace_back((*line)[RecordField::event]);
        for (const RecordField field : {RecordField::account, RecordField::registration, RecordField::text})
            if (!(*line)[field].empty()) event.append(" ").append((*line)[field]);
    }
    return events;
}

int FakeControl::SendRequest(std::uint64_t*, void* message, int zero, QmxError* error) {
    if (!live || zero != 0 || !error || !message) Misused();
    if (m_host.onRequest) m_host.onRequest();
    if (m_host.refuses) return 0;
    m_host.requests.push_back(Named(qmx::Dump(message)));
    m_host.sender = this;
    return 1;
}

int FakeControl::Subscribe(std::uint64_t*, const std::uint32_t* tags, const QmxDatum* values,
                           std::uint32_t count, RxControl* self, int zeroA, int zeroB, int one,
                           QmxError* error) {
    if (!live || self != this || zeroA != 0 || zeroB != 0 || one != 1 || !error) Misused();
    std::string line;
    for (std::uint32_t i = 0; i < count; ++i) {
        const bool absent = !values[i].data && values[i].length == 0;
        line +=
            (i ? " " : "") + std::to_string(tags[i]) + "=" + (absent ? "-" : std::string(qmx::View(values[i])));
    }
    ++subscribed;
    m_host.subscriptions.push_back(Named(line));
    error->code = 42;
    return !m_host.refuses;
}

// Streams only, before they are given back.
int FakeControl::Stop(int zero) {
    if (!live || zero != 0 || kind == kRxRequests) Misused();
    ++stops;
    return 1;
}

void FakeControl::Misused() {
    m_host.misuses.push_back("a control of kind " + std::to_string(kind));
}

FakeHost::FakeHost() {
    g_host = this;
#ifdef _WIN32
    const auto folder = std::filesystem::temp_directory_path() / "user";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    userDirectory = folder.string();
    WNDCLASSA frame{};
    frame.lpfnWndProc = DefWindowProcA;
    frame.lpszClassName = "FakeHostFrame";
    RegisterClassA(&frame);
    app.mainFrame = mainFrame = CreateWindowExA(0, frame.lpszClassName, "Host", WS_OVERLAPPEDWINDOW, 0, 0, 1000,
                                                700, nullptr, nullptr, nullptr, nullptr);
#endif
}
FakeHost::~FakeHost() {
#ifdef _WIN32
    DestroyWindow(mainFrame);
#endif
    g_host = nullptr;
}

int FakeHost::CallsOf(std::string_view name) const {
    const std::string start = std::string(name) + "(";
    return static_cast<int>(
        std::ranges::count_if(calls, [&](const std::string& call) { return call.starts_with(start); }));
}

int FakeHost::LiveControls() const {
    return static_cast<int>(std::ranges::count_if(controls, &FakeControl::live));
}

void FakeHost::Answer(const Fields& fields) {
    const Received message(fields);
    const auto taken = std::ranges::find_if(controls, &FakeControl::live);
    (taken == controls.end() ? controls.front() : *taken)
        .notifier->OnResponse(nullptr, message.Message(), nullptr);
}

void FakeHost::AnswerSender(const Fields& fields) {
    sender->notifier->OnResponse(nullptr, Received(fields).Message(), nullptr);
}

FakeControl& FakeHost::Newest(int kind) {
    const auto found = std::find_if(controls.rbegin(), controls.rend(),
                                    [&](const FakeControl& control) { return control.kind == kind; });
    if (found == controls.rend()) std::abort();
    return *found;
}

void FakeHost::AnswerBook(const Fields& fields) {
    const Received message(fields);
    Newest(kRxRequests).notifier->OnResponse(nullptr, message.Message(), nullptr);
}

void FakeHost::Stream(int kind, const Fields& fields) {
    const Received message(fields);
    Newest(kind).notifier->OnBroadcast(message.Message(), 0, nullptr);
}

} // namespace planfold::test
