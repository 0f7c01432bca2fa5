// planfold-basket: checks basket files without the terminal.
#include "host/files/Files.h"
#include "planfold_version.h"
#include "tools/planfold-basket/Commands.h"
#include "tools/planfold-basket/Sources.h"

#include <cstdio>
#include <exception>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace basket {
namespace {

int RunCommand(std::span<const std::string> words) {
    if (!words.empty() && words.front() == "changes") return Changes(words.subspan(1));
    Options options;
    if (const auto complaint = ReadOptions(words, options))
        return Fail(*complaint + "; see planfold-basket --help");
    if (options.task == Task::help) return WriteText(std::string(kStandardStream), kHelp) ? kAllGood : kFailed;
    if (options.task == Task::version)
        return WriteText(std::string(kStandardStream), "planfold-basket " PLANFOLD_VERSION "\n") ? kAllGood
                                                                                                 : kFailed;
    const auto master = vesk::ScripMaster::Load(options.scrips);
    if (!master) return Fail(master.Fault().Text());
    MasterScrips scrips(master.Value());
    switch (options.task) {
    case Task::check:
        return Check(options, scrips);
    case Task::importFile:
        return Import(options, scrips);
    default:
        return WriteTemplate(options, master.Value().Scrips(), scrips);
    }
}

} // namespace

int Fail(std::string_view why) {
    std::fprintf(stderr, "planfold-basket: %.*s\n", static_cast<int>(why.size()), why.data());
    return kFailed;
}

} // namespace basket

int main(int count, char** words) {
#ifdef _WIN32
    // The input is read as files are: the byte 26 does not end the text.
    _setmode(_fileno(stdin), _O_BINARY);
#endif
    try {
        return basket::RunCommand(vesk::CommandWords(count, words));
    } catch (const std::exception& fault) {
        return basket::Fail(fault.what());
    }
}
