// Where a server is, and what proves a terminal's user to it.
#pragma once

#include <cstdint>
#include <string>

namespace vesk {

struct ServerPlace {
    std::uint16_t port = 0;
    std::string secretsFile{};
};

} // namespace vesk
