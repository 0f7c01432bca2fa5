// The names that a Windows program or library exports, read from its file: nothing of it is run.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hostcheck {

struct Export {
    std::string name;
    bool isFunction; // false: it lies where no code is
};

// Nothing when the file is no 64-bit image, or a broken one; `why` then says which. By name, as the file has
// them.
std::optional<std::vector<Export>> ReadExports(std::string_view image, std::string& why);

} // namespace hostcheck
