// Bytes that are put in behind and taken away in front. What is left is moved to the front only seldom: a great
// basket makes much output, of which a socket takes a little at a time.
//
// Thread: one at a time; plain values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

class ByteQueue {
public:
    // Only to be appended to.
    std::string& Back() { return m_bytes; }
    // What is left, until the next change.
    std::string_view Bytes() const { return std::string_view(m_bytes).substr(m_taken); }
    std::size_t Size() const { return m_bytes.size() - m_taken; }
    bool IsEmpty() const { return Size() == 0; }

    void Take(std::size_t count) {
        m_taken += count;
        if (m_taken > m_bytes.size() / 2) m_bytes.erase(0, std::exchange(m_taken, 0));
    }
    void Clear() {
        m_bytes.clear();
        m_taken = 0;
    }

private:
    std::string m_bytes;
    std::size_t m_taken = 0; // of them
};

} // namespace vesk
