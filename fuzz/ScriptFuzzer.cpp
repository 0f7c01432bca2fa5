// Scripts of any content: a fault with its line, or commands that read back from their own text.

#include "fuzz/Fuzz.h"
#include "host/terminal/core/Keys.h"
#include "host/terminal/script/Script.h"

#include <algorithm>

using fuzz::Demand;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::Text(data, size);
    vesk::ParseKeyStroke(text);
    const auto script = vesk::Script::Parse(text, "folder/test.script");
    if (!script) {
        const vesk::FileFault& fault = script.Fault();
        Demand(fault.file == "test.script" && !fault.what.empty());
        Demand(fault.line >= 1 && fault.line <= static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1);
        return 0;
    }
    std::string written;
    for (const vesk::ScriptCommand& command : script.Value().commands)
        written += command.Text() + '\n';
    const auto again = vesk::Script::Parse(written, "again");
    Demand(static_cast<bool>(again));
    Demand(std::ranges::equal(again.Value().commands, script.Value().commands,
                              [](const vesk::ScriptCommand& a, const vesk::ScriptCommand& b) {
                                  return a.verb == b.verb && a.words == b.words;
                              }));
    return 0;
}
