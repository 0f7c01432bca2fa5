// A host's or plug-in's exports, and what is said of them.
#pragma once

#include "sdk/HostExportUses.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace hostcheck {

// The names that a Windows program or library exports, read from its file: nothing of it is run.
struct Export {
    std::string name;
    bool isFunction; // false: it lies where no code is
};

// Nothing when the file is no 64-bit image, or a broken one; `why` then says which. By name, as the file has
// them.
std::optional<std::vector<Export>> ReadExports(std::string_view image, std::string& why);

enum class State { present, untried, missing, wrong };

struct Finding {
    std::string_view name;
    State state;
    sdk::Need need;
    std::string_view without;
    std::string detail; // what is wrong with it, what is there instead, or why it was not tried
};

struct Findings {
    bool isPlugin;
    std::vector<Finding> exports;

    bool Lacks(sdk::Need need) const;
};

// A file that is named as plug-ins are, or has one of their entry points, is taken for a plug-in, any other for
// a host.
Findings Examine(std::span<const Export> exports, std::string_view file);

// How many are as they must be.
std::string Summary(const Findings& findings);
std::string AsText(const Findings& findings, std::string_view file);
std::string AsJson(const Findings& findings, std::string_view file);

} // namespace hostcheck
