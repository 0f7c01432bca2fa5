// The peer's message, kept from one use to the next.
//
// Written in the older language of the peer's headers, as QuickFixPeer.cpp is compiled in it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bench {

class QuickFixPeer {
public:
    // The first field becomes the message type, which the peer's messages must have.
    using Fields = std::vector<std::pair<int, std::string>>;

    explicit QuickFixPeer(Fields fields);
    QuickFixPeer(const QuickFixPeer&) = delete;
    QuickFixPeer& operator=(const QuickFixPeer&) = delete;
    ~QuickFixPeer();

    // Bytes of the message, whose fields are those of the one before with new values: its fastest way.
    std::size_t Encode();
    // The same from an empty message.
    std::size_t EncodeAnew();
    // Bytes of all values, looked up by tag; without validation.
    std::size_t DecodeAndRead();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace bench
