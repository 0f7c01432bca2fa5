// What has come for a client's notifiers and waits to be told, in its order.
//
// The messages lie behind one another in one block: ten thousand small ones that come and go between what stays
// leave a heap full of holes, which some systems search through for each block.
//
// Thread: the client's; plain values.
#pragma once

#include "host/server/net/ByteQueue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

class Deliveries {
public:
    struct Delivery {
        std::uint32_t control;
        bool isStream;
        std::string bytes{};
        std::function<void()> tell{}; // instead of all that
    };

    void Keep(std::uint32_t control, bool isStream, std::string_view bytes) {
        m_bytes.Back() += bytes;
        m_waiting.push_back({{control, isStream}, bytes.size()});
    }
    void Keep(std::function<void()> tell) { m_waiting.push_back({{0, false, {}, std::move(tell)}, 0}); }
    // Who has done with it gives it back, for the next one's bytes.
    Delivery TakeFirst() {
        Waiting first = std::move(m_waiting.front());
        m_waiting.pop_front();
        first.delivery.bytes = std::exchange(m_spare, {});
        first.delivery.bytes = m_bytes.Bytes().substr(0, first.size);
        m_bytes.Take(first.size);
        return std::move(first.delivery);
    }
    void GiveBack(Delivery delivery) { m_spare = std::move(delivery.bytes); }
    // Without it nothing more is read.
    bool HasRoom() const {
        constexpr std::size_t most = 10'000, mostBytes = std::size_t{8} * 1024 * 1024;
        return m_waiting.size() < most && m_bytes.Size() < mostBytes;
    }
    std::size_t Size() const { return m_waiting.size(); }
    // Of requests, those of controls that are gone too.
    std::size_t Answers() const {
        return static_cast<std::size_t>(std::ranges::count_if(
            m_waiting, [](const Waiting& one) { return !one.delivery.isStream && !one.delivery.tell; }));
    }

private:
    struct Waiting {
        Delivery delivery; // without the bytes
        std::size_t size;
    };

    std::deque<Waiting> m_waiting;
    ByteQueue m_bytes;
    std::string m_spare;
};

} // namespace vesk
