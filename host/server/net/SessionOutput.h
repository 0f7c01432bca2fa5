// What a session says: the bytes to go out, until it ends or its terminal is gone.
//
// Thread: the session's; plain values.
#pragma once

#include "host/server/net/ByteQueue.h"
#include "host/server/net/Protocol.h"

#include <cstddef>
#include <string>
#include <utility>

namespace vesk {

class SessionOutput {
public:
    // From so many bytes on there is no room for more.
    SessionOutput(std::size_t most, Checksum checksum) : m_most(most), m_checksum(checksum) {}

    template <class Said>
    void Say(Said said) {
        if (m_hasLeft) return;
        if (!net::Append(m_bytes.Back(), std::move(said), m_checksum)) End("a message is too long to be sent");
    }
    // Tells the terminal why, and ends.
    void Refuse(const std::string& reason) {
        Say(net::ConnectionRefused{reason});
        End(reason);
    }
    // What is to be sent by then still may be. The first reason counts.
    void End(std::string reason) {
        if (!HasEnded()) m_endReason = std::move(reason);
    }
    bool HasEnded() const { return !m_endReason.empty(); }
    const std::string& EndReason() const { return m_endReason; }

    // Nobody is there to be told anything.
    void Leave() {
        m_hasLeft = true;
        m_bytes.Clear();
    }
    bool HasLeft() const { return m_hasLeft; }

    bool HasRoom() const { return m_bytes.Size() < m_most; }
    // Whether more may be said now.
    bool IsOpen() const { return HasRoom() && !m_hasLeft && !HasEnded(); }
    ByteQueue& Bytes() { return m_bytes; }
    const ByteQueue& Bytes() const { return m_bytes; }

private:
    const std::size_t m_most;
    const Checksum m_checksum;
    ByteQueue m_bytes;
    std::string m_endReason;
    bool m_hasLeft = false;
};

} // namespace vesk
