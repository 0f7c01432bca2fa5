// What the terminal is told when it is started.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vesk {

// Paths are UTF-8; an empty one means: beside the program.
struct StartOptions {
    std::string dataFolder;
    std::string userFolder;
    std::string journal;    // the embedded server's file
    std::string serverHost; // of a server of its own instead; empty for the embedded one
    std::uint16_t serverPort = 0;
    std::string scriptFile; // a session to play; empty for none
    std::string logFile;    // what happened, line by line; empty for none
    std::string outFolder;  // for screenshots
    std::string fault;      // what is wrong with the command line; empty when nothing is
};

// Without the program's name.
StartOptions ParseCommandLine(std::span<const std::string> words);

} // namespace vesk
