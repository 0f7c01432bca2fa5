// What is to be told to the user while a message box is already open: kept by owner, told together.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace framework {

template <class Owner>
class PendingTexts {
public:
    struct Box {
        Owner owner;
        std::string text;
    };
    // A box stays readable: this many lines, then the number of the others.
    static constexpr std::size_t kMostLines = 30;

    void Add(Owner owner, std::string_view text) { m_waiting.push_back({owner, std::string(text)}); }

    // The next box: all texts of the owner that waits longest, each on its own line. Empty when none waits.
    std::optional<Box> TakeNext() {
        if (m_waiting.empty()) return std::nullopt;
        Box box{m_waiting.front().owner, {}};
        std::size_t lines = 0;
        for (auto it = m_waiting.begin(); it != m_waiting.end();) {
            if (it->owner != box.owner) {
                ++it;
                continue;
            }
            if (++lines <= kMostLines) {
                if (lines > 1) box.text += '\n';
                box.text += it->text;
            }
            it = m_waiting.erase(it);
        }
        if (lines > kMostLines) box.text += "\n... and " + std::to_string(lines - kMostLines) + " more";
        return box;
    }

private:
    std::deque<Box> m_waiting;
};

} // namespace framework
