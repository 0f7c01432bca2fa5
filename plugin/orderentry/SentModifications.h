// Modifications that are sent and not yet answered: whose answer has come, although others may never come.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// How long an answer is waited for before a younger one is taken to be another's.
inline constexpr std::int64_t kAnswerPatienceMs = 10'000;

class SentModifications {
public:
    // From the window's opening of that number.
    void Add(std::string registration, int opening, std::int64_t now);

    // Takes the modification off that is answered: one of the registration that the answer names, or when it
    // names none, of the oldest that can still be waited for. True when this opening has sent one of that
    // registration.
    bool Answered(std::string_view registration, int opening, bool refused, std::int64_t now);

private:
    struct Sent {
        std::string registration;
        int opening;
        std::int64_t at;
    };
    void ForgetLost(std::int64_t now);

    std::vector<Sent> m_sent; // the oldest first
};

} // namespace planfold
