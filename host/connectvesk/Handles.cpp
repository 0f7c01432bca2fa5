#include "host/connectvesk/Handles.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace qmx {
namespace {

// The memory of the handles closed last, oldest next to go.
class Quarantine {
public:
    constexpr Quarantine() = default;
    Quarantine(const Quarantine&) = delete;
    Quarantine& operator=(const Quarantine&) = delete;
    ~Quarantine() {
        for (void* block : m_blocks)
            std::free(block);
    }

    void Keep(void* block) {
        Lock();
        void* oldest = std::exchange(m_blocks[m_next], block);
        m_next = (m_next + 1) % m_blocks.size();
        Unlock();
        std::free(oldest);
    }
    // The oldest, once there are so many that it would go next; else null.
    void* TakeOldest() {
        Lock();
        void* oldest = std::exchange(m_blocks[m_next], nullptr);
        Unlock();
        return oldest;
    }

private:
    void Lock() {
        while (m_busy.test_and_set(std::memory_order_acquire)) {
        }
    }
    void Unlock() { m_busy.clear(std::memory_order_release); }

    std::array<void*, 64> m_blocks{};
    std::size_t m_next = 0;
    std::atomic_flag m_busy;
};

// Apart, so that a message gets the memory of an earlier one and not of a buffer.
Quarantine g_closedMessages;
Quarantine g_closedScratch;

} // namespace

Message* NewMessage() {
    // A message is opened for each one received: the heap is spared that.
    void* memory = g_closedMessages.TakeOldest();
    if (!memory) memory = std::malloc(sizeof(Message));
    return memory ? new (memory) Message : nullptr;
}

void* NewScratch(std::uint32_t size) {
    void* memory = std::malloc(sizeof(ScratchPrefix) + size);
    if (!memory) return nullptr;
    auto* prefix = new (memory) ScratchPrefix{size, SealOf(size)};
    std::memset(prefix + 1, 0, size);
    return prefix + 1;
}

void Close(Message* message) {
    message->mark = Mark::closed;
    message->state = Message::State::idle;
    g_closedMessages.Keep(message);
}

void Close(ScratchPrefix* prefix) {
    prefix->seal = static_cast<std::uint64_t>(Mark::closed);
    g_closedScratch.Keep(prefix);
}

} // namespace qmx
