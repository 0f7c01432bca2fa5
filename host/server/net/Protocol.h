// What terminal and server say to each other, a frame each. The server begins with a challenge, the terminal
// answers it with a hello, and the server that with a welcome or a refusal; after a refusal the connection
// ends.
//
// A terminal numbers its controls, its requests and its subscriptions. A request has any number of answers,
// told to be over by its "done". A subscription is made at once; one that cannot be is told by "unsubscribed".
// A command is answered by its "told". The server's state comes after the welcome and whenever it differs,
// before the answers of the request or command that changed it.
//
// Thread: any; plain values. Each says its fields once, for writing and reading alike.
#pragma once

#include "host/connectvesk/Wire.h"
#include "host/server/net/Frame.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vesk {

// The fields that a record must have; an empty value stands for any, and in an identity for who is logged in.
using Subscription = std::vector<std::pair<std::uint32_t, std::string>>;

} // namespace vesk

namespace vesk::net {

inline constexpr std::uint32_t kProtocolVersion = 4;

// What a terminal sends is short.
inline constexpr std::size_t kLongestRequest = std::size_t{32} * 1024;       // the message's bytes
inline constexpr std::size_t kMostTerminalFrameBytes = kLongestRequest + 64; // with what stands around it
inline constexpr std::size_t kMostRequestFields = 256;
inline constexpr std::size_t kMostSubscribedFields = 64;

struct Hello {
    static constexpr FrameType kType = FrameType::hello;
    std::uint32_t version = kProtocolVersion;
    std::string loginId, peerIdA, peerIdB;
    // The same on every connection of a terminal, and of no other: with the number it is the name of a request
    // that is sent again.
    std::uint64_t terminal = 0;
    std::string proof{}; // of all this and the nonce; empty where the server asks for none
    void Each(auto&& field) {
        field(version), field(loginId), field(peerIdA), field(peerIdB), field(terminal), field(proof);
    }
};
struct OpenControl {
    static constexpr FrameType kType = FrameType::openControl;
    std::uint32_t control = 0;
    std::uint32_t kind = 0;
    void Each(auto&& field) { field(control), field(kind); }
};
struct CloseControl {
    static constexpr FrameType kType = FrameType::closeControl;
    std::uint32_t control = 0;
    void Each(auto&& field) { field(control); }
};
struct ControlRequest {
    static constexpr FrameType kType = FrameType::request;
    std::uint32_t control = 0;
    std::uint64_t number = 0;
    std::string bytes;
    void Each(auto&& field) { field(control), field(number), field(bytes); }
};
struct Subscribe {
    static constexpr FrameType kType = FrameType::subscribe;
    std::uint32_t control = 0;
    std::uint64_t number = 0;
    bool isRenewed = false; // what the terminal may have missed is streamed first
    Subscription fields;
    void Each(auto&& field) { field(control), field(number), field(isRenewed), field(fields); }
};
struct Stop {
    static constexpr FrameType kType = FrameType::stop;
    std::uint32_t control = 0;
    void Each(auto&& field) { field(control); }
};
struct Challenge {
    static constexpr FrameType kType = FrameType::challenge;
    std::uint32_t version = kProtocolVersion;
    std::string nonce; // another one on each connection; empty: who comes need not prove himself
    void Each(auto&& field) { field(version), field(nonce); }
};
struct Welcome {
    static constexpr FrameType kType = FrameType::welcome;
    std::uint32_t version = kProtocolVersion;
    std::uint64_t now = 0; // seconds since 1970, by the server's clock
    void Each(auto&& field) { field(version), field(now); }
};
struct ConnectionRefused {
    static constexpr FrameType kType = FrameType::connectionRefused;
    std::string text;
    void Each(auto&& field) { field(text); }
};
struct Response {
    static constexpr FrameType kType = FrameType::response;
    std::uint32_t control = 0;
    std::uint64_t number = 0;
    std::string bytes;
    void Each(auto&& field) { field(control), field(number), field(bytes); }
};
struct RequestDone {
    static constexpr FrameType kType = FrameType::requestDone;
    std::uint64_t number = 0;
    void Each(auto&& field) { field(number); }
};
struct Update {
    static constexpr FrameType kType = FrameType::update;
    std::uint32_t control = 0;
    std::string bytes;
    void Each(auto&& field) { field(control), field(bytes); }
};
struct Unsubscribed {
    static constexpr FrameType kType = FrameType::unsubscribed;
    std::uint32_t control = 0;
    std::uint64_t number = 0; // of the subscription
    std::string text;
    void Each(auto&& field) { field(control), field(number), field(text); }
};

// A line of words, as ServerCommands has them.
struct ServerCommand {
    static constexpr FrameType kType = FrameType::command;
    std::uint64_t number = 0;
    std::string line;
    void Each(auto&& field) { field(number), field(line); }
};
struct CommandDone {
    static constexpr FrameType kType = FrameType::commandDone;
    std::uint64_t number = 0;
    bool isDone = false;
    std::string text;
    void Each(auto&& field) { field(number), field(isDone), field(text); }
};
struct ServerState {
    static constexpr FrameType kType = FrameType::state;
    std::uint32_t date = 0;                // yyyymmdd by the server's clock; 0: not told yet
    bool hasDue = false;                   // instalments to execute, or such that are not told of
    std::vector<std::uint32_t> restricted; // dates, ascending
    void Each(auto&& field) { field(date), field(hasDue), field(restricted); }
};

class PayloadWriter {
public:
    explicit PayloadWriter(std::string& out) : m_out(out) {}

    void operator()(std::uint32_t number) { Put(number); }
    void operator()(std::uint64_t number) {
        Put(static_cast<std::uint32_t>(number));
        Put(static_cast<std::uint32_t>(number >> 32));
    }
    void operator()(bool flag) { Put(flag); }
    void operator()(const std::vector<std::uint32_t>& numbers) {
        Put(static_cast<std::uint32_t>(numbers.size()));
        for (const std::uint32_t number : numbers)
            Put(number);
    }
    void operator()(const std::string& text) {
        Put(static_cast<std::uint32_t>(text.size()));
        m_out.append(text);
    }
    void operator()(const Subscription& fields) {
        Put(static_cast<std::uint32_t>(fields.size()));
        for (const auto& [tag, text] : fields)
            (*this)(tag), (*this)(text);
    }

private:
    void Put(std::uint32_t number) {
        char bytes[sizeof number];
        qmx::Store(bytes, number);
        m_out.append(bytes, sizeof bytes);
    }

    std::string& m_out;
};

// What is missing reads as nothing, and is remembered.
class PayloadReader {
public:
    explicit PayloadReader(std::string_view payload) : m_rest(payload) {}

    void operator()(std::uint32_t& number) {
        const std::string_view bytes = Take(sizeof number);
        if (!bytes.empty()) number = qmx::Load(bytes.data());
    }
    void operator()(std::uint64_t& number) {
        std::uint32_t low = 0, high = 0;
        (*this)(low), (*this)(high);
        number = low | std::uint64_t{high} << 32;
    }
    void operator()(bool& flag) {
        std::uint32_t number = 0;
        (*this)(number);
        flag = number != 0;
        m_good = m_good && number <= 1;
    }
    void operator()(std::vector<std::uint32_t>& numbers) {
        std::uint32_t count = 0;
        for ((*this)(count); count > 0 && m_good; --count)
            (*this)(numbers.emplace_back());
    }
    void operator()(std::string& text) {
        std::uint32_t size = 0;
        (*this)(size);
        text = Take(size);
    }
    void operator()(Subscription& fields) {
        std::uint32_t count = 0;
        // Nothing is reserved: the count is a stranger's.
        for ((*this)(count); count > 0 && m_good; --count) {
            fields.emplace_back();
            (*this)(fields.back().first), (*this)(fields.back().second);
        }
    }
    bool IsWhole() const { return m_good && m_rest.empty(); }

private:
    std::string_view Take(std::size_t size) {
        m_good = m_good && size <= m_rest.size();
        if (!m_good) return {};
        const std::string_view taken = m_rest.substr(0, size);
        m_rest.remove_prefix(size);
        return taken;
    }

    std::string_view m_rest;
    bool m_good = true;
};

template <class Said>
[[nodiscard]] bool Append(std::string& out, Said said, Checksum checksum = Checksum::crc32) {
    const std::size_t start = BeginFrame(out, Said::kType);
    PayloadWriter writer(out);
    said.Each(writer);
    return EndFrame(out, start, checksum);
}

// Nothing when the payload is not exactly what the type says.
template <class Said>
std::optional<Said> Read(std::string_view payload) {
    PayloadReader reader(payload);
    Said said;
    said.Each(reader);
    return reader.IsWhole() ? std::optional(std::move(said)) : std::nullopt;
}

} // namespace vesk::net
