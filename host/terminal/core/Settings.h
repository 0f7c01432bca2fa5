// What the terminal is told when it is started.
#pragma once

#include "host/files/Files.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

// Paths are UTF-8; an empty one means: beside the program.
struct StartOptions {
    std::string dataFolder;
    std::string userFolder;
    std::string journal;    // the embedded server's file
    std::string serverHost; // of a server of its own instead; empty for the embedded one
    std::uint16_t serverPort = 0;
    std::string secretsFile; // what proves the login to that server; empty: the one beside the journal
    std::string scriptFile;  // a session to play; empty for none
    std::string logFile;     // what happened, line by line; empty for none
    std::string outFolder;   // for screenshots
    std::string fault;       // what is wrong with the command line; empty when nothing is
};

// `words` are without the program's name.
StartOptions ParseCommandLine(std::span<const std::string> words);

// The user's settings: texts by section and key, kept in one JSON file that is rewritten at each change.
class UserSettings {
public:
    // Reads the file; a missing one is an empty set. A file that cannot be understood is put aside as
    // "<path>.bad", so that the next write does not destroy it, and the fault returned.
    std::optional<FileFault> Open(const std::string& path);

    std::optional<std::string> Read(std::string_view section, std::string_view key) const;
    // False when the file cannot be written; the value then holds for this session only.
    bool Write(std::string_view section, std::string_view key, std::string_view value);

private:
    using Section = std::map<std::string, std::string, std::less<>>;
    using Sections = std::map<std::string, Section, std::less<>>;
    static Loaded<Sections> Load(const std::string& path);

    std::string m_path;
    Sections m_sections;
};

} // namespace vesk
