// The file that says what happened in a session, line by line; it is complete up to its last line even when the
// program dies.
#pragma once

#include "host/files/Paths.h"

#include <fstream>
#include <string>

namespace vesk {

class SessionLog {
public:
    // An empty path writes nothing.
    explicit SessionLog(const std::string& path) {
        if (!path.empty()) m_file.open(PathOf(path), std::ios::trunc);
    }

    void Write(const std::string& line) {
        if (m_file.is_open()) m_file << line << std::endl;
    }

private:
    std::ofstream m_file;
};

} // namespace vesk
