// Bytes of a connection in any portions: the frames do not depend on the portions, what is read is written the
// same again, and neither end of a connection is upset by anything. Nobody becomes a login without its secret,
// and a terminal tells its own to nobody.

#include "fuzz/Fuzz.h"
#include "host/server/net/RxClient.h"

#include <filesystem>
#include <unistd.h>
#include <vector>

namespace {

using Frames = std::vector<std::pair<vesk::FrameType, std::string>>;

// What the frames came to, and how it ended.
Frames ReadAll(std::string_view bytes, std::size_t portion, vesk::FrameFault& fault) {
    vesk::FrameReader reader;
    Frames frames;
    for (; !bytes.empty(); bytes.remove_prefix(std::min(portion, bytes.size()))) {
        reader.Add(bytes.substr(0, portion));
        while (const auto frame = reader.Next())
            frames.emplace_back(frame->type, frame->payload);
    }
    fault = reader.Fault();
    return frames;
}

template <class Said>
void RoundTrip(vesk::FrameType type, std::string_view payload) {
    if (type != Said::kType) return;
    const auto said = vesk::net::Read<Said>(payload);
    std::string again, same;
    if (!said) return;
    fuzz::Demand(vesk::net::Append(again, *said) && vesk::AppendFrame(same, type, payload) && again == same);
}

template <class... Said>
void RoundTrips(const Frames& frames) {
    for (const auto& [type, payload] : frames)
        (RoundTrip<Said>(type, payload), ...);
}

// Lines of "type payload", so that inputs need no checksums.
std::string Conversation(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const std::string_view line = fuzz::Input::CutAt(text, '\n');
        if (line.empty()) continue;
        fuzz::Demand(vesk::AppendFrame(bytes, static_cast<vesk::FrameType>(line[0] - '0'), line.substr(1)));
    }
    return bytes;
}

// To a session that takes anybody, behind a hello, and to one that wants a proof.
void Talk(std::string_view bytes, std::size_t portion, const vesk::Logins* logins) {
    static vesk::JournalOpening opening = vesk::Journal::Open(std::filesystem::temp_directory_path()
                                                              / ("fuzz-framing-" + std::to_string(getpid())));
    vesk::Server server({}, *opening.journal, {}, vesk::SystemClock());
    vesk::ServerCommands commands(server, {}, true);
    vesk::SessionLimits limits;
    limits.logins = logins;
    vesk::ServerSession session(server, commands, limits);
    vesk::FrameFault fault{};
    std::string hello;
    if (!logins)
        fuzz::Demand(
            vesk::net::Append(hello, vesk::net::Hello{vesk::net::kProtocolVersion, "USER1", "B", "", 1, {}}));
    session.Take(hello, 0);
    for (; !bytes.empty(); bytes.remove_prefix(std::min(portion, bytes.size()))) {
        session.Take(bytes.substr(0, portion), 0);
        session.Pump(0);
    }
    fuzz::Demand(!logins || session.IsStranger());
    // Whatever came in: what goes out is in order.
    ReadAll(session.Output().Bytes(), portion, fault);
    fuzz::Demand(fault == vesk::FrameFault::none);
}

constexpr const char* kSecret = "a secret that is told to nobody!";

// A server that says these bytes, and hears what it is told.
class MadServer final : public vesk::Channel {
public:
    MadServer(std::string_view bytes, std::size_t portion, std::string& heard)
        : m_left(bytes), m_portion(portion), m_heard(heard) {}
    std::string Name() const override { return "mad"; }
    vesk::Checksum Sums() const override { return vesk::Checksum::crc32; }
    vesk::Loaded<std::string> Secret(const std::string&) const override { return std::string(kSecret); }
    std::string Open() override { return {}; }
    void Close() override {}
    Exchanged Exchange(std::string_view& output, vesk::FrameReader* reader, std::int64_t) override {
        m_heard += output;
        output = {};
        const std::string_view some = m_left.substr(0, m_portion);
        m_left.remove_prefix(some.size());
        if (reader) reader->Add(some);
        return {!m_left.empty(), nullptr};
    }
    std::size_t Waiting() const override { return m_left.size(); }

private:
    std::string_view m_left;
    const std::size_t m_portion;
    std::string& m_heard;
};

void Listen(std::string_view bytes, std::size_t portion) {
    std::string heard;
    vesk::RxClient client(std::make_unique<MadServer>(bytes, portion, heard), {"USER1", "B", ""}, {}, {},
                          std::chrono::hours(1));
    client.Command("clock 1", {});
    client.Pump(0);
    fuzz::Demand(heard.find(kSecret) == heard.npos);
    vesk::FrameFault fault{};
    ReadAll(heard, portion, fault);
    fuzz::Demand(fault == vesk::FrameFault::none);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    static const vesk::Logins logins = [] {
        vesk::Logins made;
        made.Add({"USER1", "B", ""});
        return made;
    }();
    const std::size_t portion = data[0] + 1u;
    const std::string_view rest = fuzz::Text(data, size).substr(1);
    for (const std::string& bytes : {std::string(rest), Conversation(rest)}) {
        vesk::FrameFault fault{}, faultAtOnce{};
        const Frames frames = ReadAll(bytes, portion, fault);
        fuzz::Demand(frames == ReadAll(bytes, bytes.size(), faultAtOnce) && fault == faultAtOnce);
        namespace net = vesk::net;
        RoundTrips<net::Hello, net::OpenControl, net::CloseControl, net::ControlRequest, net::Subscribe,
                   net::Stop, net::Challenge, net::Welcome, net::ConnectionRefused, net::Response,
                   net::RequestDone, net::Update, net::Unsubscribed, net::ServerCommand, net::CommandDone,
                   net::ServerState>(frames);
        Talk(bytes, portion, nullptr);
        Talk(bytes, portion, &logins);
        Listen(bytes, portion);
    }
    return 0;
}
