// The lines of standard input, read beside the program's own work.
//
// Thread: one that takes. Failure: what cannot be read is the end.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vesk {

// Starts to read, on a thread that lasts as long as the program. Each call of the answer takes what has come
// since: the lines without their ends, and whether that was all.
struct InputLines {
    std::vector<std::string> lines;
    bool isOver = false;
};
std::function<InputLines()> ReadInput();

} // namespace vesk
