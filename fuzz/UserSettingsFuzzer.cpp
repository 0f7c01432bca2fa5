// The user's settings file of any content: put aside as it was, or read, and whole again after a change.

#include "fuzz/Fuzz.h"
#include "host/terminal/core/Settings.h"

#include <filesystem>
#include <unistd.h>

using fuzz::Demand;

namespace {

// One a process: fuzzers run side by side.
const std::string& Path() {
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("user-settings-" + std::to_string(getpid()))).string();
    static const struct Remove {
        ~Remove() {
            std::filesystem::remove(path);
            std::filesystem::remove(path + ".bad");
        }
    } atExit;
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::Text(data, size);
    const std::string& path = Path();
    Demand(vesk::WriteWholeFile(path, text));
    vesk::UserSettings settings;
    if (const auto fault = settings.Open(path)) {
        Demand(!fault->what.empty() && !std::filesystem::exists(path));
        const auto kept = vesk::ReadWholeFile(path + ".bad");
        Demand(kept && kept.Value() == text);
    }
    const std::optional<std::string> before = settings.Read("Client_Search", "Planfold Order Entry");
    Demand(settings.Write("Window", "place", "12 \"34\""));
    vesk::UserSettings again;
    Demand(!again.Open(path));
    Demand(again.Read("Window", "place") == "12 \"34\"");
    Demand(again.Read("Client_Search", "Planfold Order Entry") == before);
    return 0;
}
