// The user's settings: texts by section and key, kept in one JSON file that is rewritten at each change.
#pragma once

#include "host/files/FileFault.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

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
