// Keys written as text, as hot keys and scripts have them: "del", "Ctrl+F7", "Shift+Tab".
#pragma once

#include "sdk/HostWindow.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct KeyStroke {
    int key = 0; // the platform's virtual-key code
    bool ctrl = false;
    bool alt = false;
    bool shift = false;

    bool operator==(const KeyStroke&) const = default;
};

// A text that names no key gives nothing. Case does not matter.
std::optional<KeyStroke> ParseKeyStroke(std::string_view text);

// True for keys that an edit control needs for itself: without Ctrl or Alt, and not a function key.
bool IsEditingKey(const KeyStroke& stroke);

// The hot keys that windows have registered.
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
