// Letters typed over a drop-down list are collected: BAS selects the first entry that begins so, and not one
// that begins with B, then with A, then with S.
#pragma once

#include <functional>
#include <string>

namespace planfold {

class TypeAhead {
public:
    // After it a letter begins anew.
    static constexpr unsigned kPauseMs = 1500;

    // The first entry after `after` that begins with the text, ignoring case, going on from the top at the end
    // of the list; -1 when there is none. `after` is -1 for the top.
    using Find = std::function<int(const std::string& text, int after)>;

    // The entry that a typed character selects, or -1 when none begins so: then nothing is to change. `timeMs`
    // runs on and wraps around; `selected` is -1 for none.
    int OnCharacter(char character, unsigned timeMs, int selected, const Find& find);
    // The next letter begins anew.
    void Forget() { m_typed.clear(); }

private:
    std::string m_typed;
    unsigned m_lastMs = 0;
};

} // namespace planfold
