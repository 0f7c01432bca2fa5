// Keys written as text: "del", "Ctrl+F7", "Shift+Tab". Used by hot keys and by scripts.
#pragma once

#include <optional>
#include <string_view>

namespace vesk {

struct KeyStroke {
    int key = 0; // the platform's virtual-key code
    bool ctrl = false;
    bool alt = false;
    bool shift = false;

    bool operator==(const KeyStroke&) const = default;
};

// Nothing for a text that names no key. Case does not matter.
std::optional<KeyStroke> ParseKeyStroke(std::string_view text);

// True for keys that an edit control needs for itself: without Ctrl or Alt, and not a function key.
bool IsEditingKey(const KeyStroke& stroke);

} // namespace vesk
