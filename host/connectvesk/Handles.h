// The two kinds of handle, and how a wrong one is told from a right one.
//
// A closed handle's memory is kept for a while, marked as closed, so that a late use finds the mark and not
// somebody else's data.
#pragma once

#include "host/connectvesk/Wire.h"

#include <cstddef>
#include <cstdint>

namespace qmx {

enum class Mark : std::uint64_t {
    message = 0x6D786D65737361FEull,
    scratch = 0x6D78736372617BFEull,
    closed = 0x6D78636C6F736564ull,
};

// Stands hidden before the buffer that qmx_open_scratch hands out; the buffer begins with the fill length.
struct alignas(16) ScratchPrefix {
    std::uint64_t capacity; // bytes of the buffer, the fill length included
    std::uint64_t seal;     // of an open buffer and this capacity: an overrun from in front is noticed
};

struct Message {
    enum class State : std::uint32_t { idle, writing, reading };

    Mark mark = Mark::message;
    State state = State::idle;
    std::uint32_t used = 0;             // bytes of the message, header included
    std::uint32_t limit = 0;            // bytes that it may have in the buffer that is written
    char* scratch = nullptr;            // that buffer
    std::uint64_t seal = 0;             // and its seal
    const char* bytes = nullptr;        // the message itself
    std::uint32_t resume = kHeaderSize; // where the look-up of the next field starts
    TagFilter tags;
};

inline constexpr std::uint32_t kFillSize = 4;
inline constexpr std::uint32_t kLargestScratch = 1u << 30;

inline Message* AsMessage(void* handle) {
    auto* message = static_cast<Message*>(handle);
    return message && message->mark == Mark::message ? message : nullptr;
}
inline ScratchPrefix* PrefixBefore(void* scratch) {
    return static_cast<ScratchPrefix*>(scratch) - 1;
}
inline std::uint64_t SealOf(std::uint64_t capacity) {
    return static_cast<std::uint64_t>(Mark::scratch) ^ capacity;
}
inline bool IsOpen(const ScratchPrefix& prefix) {
    return prefix.seal == SealOf(prefix.capacity);
}
// Null when the pointer is not an open scratch buffer.
inline ScratchPrefix* PrefixOf(void* scratch) {
    if (!scratch || reinterpret_cast<std::uintptr_t>(scratch) % alignof(ScratchPrefix) != 0) return nullptr;
    ScratchPrefix* prefix = PrefixBefore(scratch);
    return IsOpen(*prefix) ? prefix : nullptr;
}

Message* NewMessage();
void* NewScratch(std::uint32_t size);
void Close(Message* message);
void Close(ScratchPrefix* prefix);

} // namespace qmx
