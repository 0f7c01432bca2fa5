#include "plugin/controls/TypeAhead.h"

#include <algorithm>
#include <utility>

namespace planfold {

int TypeAhead::OnCharacter(char character, unsigned timeMs, int selected, const Find& find) {
    if (timeMs - std::exchange(m_lastMs, timeMs) > kPauseMs) m_typed.clear();
    m_typed.push_back(character);
    // A first letter goes on to the next entry; further ones may keep the selected entry.
    if (m_typed.size() == 1) return find(m_typed, selected);
    const int found = find(m_typed, selected > 0 ? selected - 1 : -1);
    const bool oneLetter = std::ranges::count(m_typed, character) == std::ssize(m_typed);
    return found < 0 && oneLetter ? find(std::string(1, character), selected) : found;
}

} // namespace planfold
