#include "host/terminal/core/HotKeys.h"

#include <algorithm>

namespace vesk {

void HotKeyTable::Register(HotKey key) {
    std::erase_if(m_keys, [&](const HotKey& known) {
        return known.window == key.window && known.command == key.command;
    });
    m_keys.push_back(std::move(key));
}

const HotKey* HotKeyTable::Find(HostWindow window, const KeyStroke& stroke) const {
    const auto found = std::ranges::find_if(
        m_keys, [&](const HotKey& key) { return key.window == window && key.stroke == stroke; });
    return found == m_keys.end() ? nullptr : &*found;
}

} // namespace vesk
