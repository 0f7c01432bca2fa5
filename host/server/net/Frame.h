// What a connection carries, cut into frames:
//
//   length of the rest, CRC-32 of the rest, type, payload
//
// Both numbers are 32-bit, little-endian; the type is one byte.
//
// Thread: any; plain values. Failure: a reader that met a fault gives no frame any more.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

inline constexpr std::size_t kMostFrameBytes = std::size_t{1} << 20; // of type and payload

enum class FrameType : std::uint8_t {
    // from the terminal
    hello = 1,
    openControl,
    closeControl,
    request,
    subscribe,
    stop,
    // from the server
    welcome,
    connectionRefused,
    response,
    requestDone,
    update,
    unsubscribed,
    // These came later. The numbers above stay, so that terminal and server of any two versions can refuse each
    // other.
    command,     // from the terminal
    commandDone, // from the server
    state,       // from the server
    challenge,   // from the server
    end,         // no type: the first number without a meaning
};

struct Frame {
    FrameType type;
    std::string_view payload;
};

// What stays in one process cannot be damaged on its way, and has 0 for its checksum.
enum class Checksum : bool { none, crc32 };

// The payload is appended between the two; the first gives what the second needs. False when it is too long for
// a frame, of which then nothing is left.
std::size_t BeginFrame(std::string& out, FrameType type);
[[nodiscard]] bool EndFrame(std::string& out, std::size_t start, Checksum checksum);
// Appends a whole frame at once.
[[nodiscard]] bool AppendFrame(std::string& out, FrameType type, std::string_view payload);

enum class FrameFault { none, tooLong, empty, wrongChecksum, unknownType };
const char* TextOf(FrameFault fault);

// Takes bytes in any portions. Who calls Next until nothing comes lets it keep less than one frame of the
// longest.
class FrameReader {
public:
    explicit FrameReader(Checksum checksum = Checksum::crc32, std::size_t mostBytes = kMostFrameBytes)
        : m_checksum(checksum), m_mostBytes(mostBytes) {}

    void Add(std::string_view bytes);
    // Nothing when the bytes so far hold no further frame, or after a fault. The payload is valid until Add.
    std::optional<Frame> Next();
    FrameFault Fault() const { return m_fault; }

private:
    std::optional<Frame> Fail(FrameFault fault);

    Checksum m_checksum;
    std::size_t m_mostBytes; // of a frame
    std::string m_bytes;
    std::size_t m_read = 0; // of the bytes
    FrameFault m_fault = FrameFault::none;
};

} // namespace vesk
