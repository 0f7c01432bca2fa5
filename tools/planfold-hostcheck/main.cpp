// planfold-hostcheck: tells the maker of a host what the plug-in will miss there.
#include "host/files/Files.h"
#include "planfold_version.h"
#include "tools/planfold-hostcheck/Findings.h"

#include <cstdio>
#include <exception>

namespace hostcheck {
namespace {

constexpr int kAllThere = 0, kLess = 1, kFailed = 2, kUnusable = 3;

constexpr std::string_view kHelp = R"(NAME
    planfold-hostcheck - tells what the plug-in misses in a host

SYNOPSIS
    planfold-hostcheck [--json] FILE
    planfold-hostcheck --help | --version

DESCRIPTION
    Reads the names that FILE exports, without running any of it: a host's program
    (VeskTrader.exe and the like), or a plug-in (Planfold.zup). For each export that
    is missing or wrong it prints a line: the name, what is wrong, how much it is
    needed, and what the user goes without:

        always    the plug-in refuses to open a window
        orders    orders cannot be placed or seen
        comfort   something is missing that orders do not need

    An export is wrong when it is no function, or stands there under another name:
    decorated by the compiler, in other letters, or misspelled. sdk/HostExports.h
    has the type of each, and the names as they are looked up. What they answer
    is tried by HostCheck.zup, a plug-in, in the running host.

OPTIONS
    --json       all exports as JSON, also those that are as they must be

EXIT STATUS
    0    all exports are there
    1    only some that are for comfort are missing or wrong
    2    the words of the command were wrong, or the file cannot be read
    3    the plug-in does not work with this file

EXAMPLE
    planfold-hostcheck C:\Trader\VeskTrader.exe
)";

int Fail(std::string_view why) {
    std::fprintf(stderr, "planfold-hostcheck: %.*s\n", static_cast<int>(why.size()), why.data());
    return kFailed;
}

int Print(std::string_view text, int status) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0
               ? status
               : kFailed;
}

int Run(std::span<const std::string> words) {
    std::string file;
    bool asJson = false;
    for (const std::string& word : words) {
        if (word == "--help") return Print(kHelp, kAllThere);
        if (word == "--version") return Print("planfold-hostcheck " PLANFOLD_VERSION "\n", kAllThere);
        if (word == "--json")
            asJson = true;
        else if (word.starts_with("--") || !file.empty())
            return Fail('"' + word + "\" is not understood; see planfold-hostcheck --help");
        else
            file = word;
    }
    if (file.empty()) return Fail("a file is needed; see planfold-hostcheck --help");
    const auto bytes = vesk::ReadWholeFile(file);
    if (!bytes) return Fail(bytes.Fault().Text());
    std::string why;
    const auto exports = ReadExports(bytes.Value(), why);
    if (!exports) return Fail(file + ' ' + why);
    const std::string name(vesk::FileNameOf(file));
    const Findings findings = Examine(*exports, name);
    const bool isUnusable = findings.Lacks(sdk::Need::always) || findings.Lacks(sdk::Need::orders);
    const int status = isUnusable ? kUnusable : findings.Lacks(sdk::Need::comfort) ? kLess : kAllThere;
    return Print(asJson ? AsJson(findings, name) : AsText(findings, name), status);
}

} // namespace
} // namespace hostcheck

int main(int count, char** words) {
    try {
        return hostcheck::Run(vesk::CommandWords(count, words));
    } catch (const std::exception& fault) {
        return hostcheck::Fail(fault.what());
    }
}
