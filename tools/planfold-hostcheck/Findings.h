// What is said of a host's or plug-in's exports.
#pragma once

#include "sdk/HostExportUses.h"
#include "tools/planfold-hostcheck/ImageExports.h"

#include <span>

namespace hostcheck {

enum class State { present, missing, wrong };

struct Finding {
    std::string_view name;
    State state;
    sdk::Need need;
    std::string_view without;
    std::string detail; // what is wrong with it, or what is there instead
};

struct Findings {
    bool isPlugin;
    std::vector<Finding> exports;

    bool Lacks(sdk::Need need) const;
};

// A file that is named as plug-ins are, or has one of their entry points, is taken for a plug-in, any other for
// a host.
Findings Examine(std::span<const Export> exports, std::string_view file);

std::string AsText(const Findings& findings, std::string_view file);
std::string AsJson(const Findings& findings, std::string_view file);

} // namespace hostcheck
