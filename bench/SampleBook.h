// Made-up registrations, the same ones in every run: their numbers, and messages about them as the server sends
// them.
#pragma once

#include "host/connectvesk/QmxHost.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// Numbers of registrations as the server counts them: 16 characters, of which the first nine or more agree.
class Numbers {
public:
    // `count` of them from the one that came as the n-th.
    Numbers(std::uint32_t first, std::uint32_t count);
    static Numbers InAnyOrder(std::uint32_t count);

    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_text.size() / kLength); }
    std::string_view operator[](std::uint32_t index) const { return {&m_text[index * kLength], kLength}; }

private:
    static constexpr std::size_t kLength = 16;

    Numbers() = default;
    void Append(std::uint32_t serial);

    std::string m_text; // all of them, so that reading one costs nothing beside using it
};

// Received messages that differ in what changes of a registration, and in client and scrip.
class SampleMessages {
public:
    enum Kind { streamed, queried };

    explicit SampleMessages(Kind kind);

    // The next sample's bytes, about the registration of this number; valid until its turn comes again.
    std::string_view Next(std::string_view number);

private:
    static constexpr std::size_t kSamples = 256;

    struct Sample {
        std::string bytes;
        std::size_t numberAt;
    };
    std::vector<Sample> m_samples;
    std::size_t m_next = 0;
};

} // namespace bench
