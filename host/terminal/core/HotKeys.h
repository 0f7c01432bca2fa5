// The hot keys that windows have registered.
#pragma once

#include "host/terminal/script/KeyText.h"
#include "sdk/HostWindow.h"

#include <string>
#include <vector>

namespace vesk {

struct HotKey {
    HostWindow window = nullptr;
    int command = 0;
    KeyStroke stroke;
    std::string group, text, description; // for a list of keys shown to the user
};

class HotKeyTable {
public:
    // A second registration of the same window and command takes the place of the first.
    void Register(HotKey key);
    // The windows that no longer exist are dropped by the caller's test.
    template <class StillThere>
    void Forget(StillThere stillThere) {
        std::erase_if(m_keys, [&](const HotKey& key) { return !stillThere(key.window); });
    }
    // The hot key of `window`, or null.
    const HotKey* Find(HostWindow window, const KeyStroke& stroke) const;

private:
    std::vector<HotKey> m_keys;
};

} // namespace vesk
