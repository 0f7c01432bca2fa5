// What has come for a client's notifiers and waits to be told, in its order.
//
// Thread: the client's; plain values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace vesk {

struct Delivery {
    std::uint32_t control;
    bool isStream;
    std::string bytes;
    std::function<void()> tell{}; // instead of all that
};

class Deliveries {
public:
    void Keep(Delivery delivery) {
        m_bytes += delivery.bytes.size();
        m_waiting.push_back(std::move(delivery));
    }
    // For a control that is gone.
    void Drop(std::uint32_t control) {
        std::erase_if(m_waiting, [&](const Delivery& one) {
            const bool isItsOwn = one.control == control;
            if (isItsOwn) m_bytes -= one.bytes.size();
            return isItsOwn;
        });
    }
    Delivery TakeFirst() {
        Delivery first = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_bytes -= first.bytes.size();
        return first;
    }
    // Without it nothing more is read.
    bool HasRoom() const {
        constexpr std::size_t most = 10'000, mostBytes = 8 * 1024 * 1024;
        return m_waiting.size() < most && m_bytes < mostBytes;
    }
    std::size_t Size() const { return m_waiting.size(); }
    // Of requests.
    std::size_t Answers() const {
        const auto isAnswer = [](const Delivery& one) { return !one.isStream && !one.tell; };
        return static_cast<std::size_t>(std::ranges::count_if(m_waiting, isAnswer));
    }

private:
    std::deque<Delivery> m_waiting;
    std::size_t m_bytes = 0;
};

} // namespace vesk
