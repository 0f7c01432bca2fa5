#include "host/veskserver/InputLines.h"

#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vesk {
namespace {

constexpr std::size_t kLongestLine = 4096; // what is behind stands in the next one

// Past the library's own reading, which would still hold its lock when the program ends.
int ReadSome(char* into, unsigned size) {
#ifdef _WIN32
    return _read(0, into, size);
#else
    return static_cast<int>(::read(0, into, size));
#endif
}

// Held by both threads, whichever ends last.
struct Shared {
    std::mutex mutex;
    InputLines come;
};

void ReadAll(const std::shared_ptr<Shared>& shared) noexcept {
    std::string line;
    char part[256];
    int got = 0;
    while ((got = ReadSome(part, sizeof part)) > 0) {
        const std::lock_guard lock(shared->mutex);
        for (const char byte : std::string_view(part, static_cast<std::size_t>(got))) {
            const bool isEnd = byte == '\n' || line.size() == kLongestLine;
            if (isEnd) shared->come.lines.push_back(std::exchange(line, {}));
            if (byte != '\n') line += byte;
        }
    }
    const std::lock_guard lock(shared->mutex);
    if (!line.empty()) shared->come.lines.push_back(std::move(line));
    shared->come.isOver = true;
}

} // namespace

std::function<InputLines()> ReadInput() {
    auto shared = std::make_shared<Shared>();
    std::thread(ReadAll, shared).detach();
    return [shared] {
        const std::lock_guard lock(shared->mutex);
        return InputLines{std::exchange(shared->come.lines, {}), shared->come.isOver};
    };
}

} // namespace vesk
