#include "host/terminal/core/Keys.h"

#include "base/Text.h"

#include <algorithm>
#include <string>

namespace vesk {

namespace {

struct KeyName {
    std::string_view name;
    int key;
};
constexpr KeyName kKeys[] = {
    {"backspace", 0x08}, {"tab", 0x09},   {"enter", 0x0D},  {"return", 0x0D}, {"esc", 0x1B},
    {"escape", 0x1B},    {"space", 0x20}, {"pgup", 0x21},   {"pgdn", 0x22},   {"end", 0x23},
    {"home", 0x24},      {"left", 0x25},  {"up", 0x26},     {"right", 0x27},  {"down", 0x28},
    {"ins", 0x2D},       {"del", 0x2E},   {"delete", 0x2E}, {"apps", 0x5D},
};
constexpr int kF1 = 0x70;
constexpr int kF24 = 0x87;

struct ModifierName {
    std::string_view name;
    bool KeyStroke::*member;
};
constexpr ModifierName kModifiers[] = {
    {"ctrl", &KeyStroke::ctrl},
    {"alt", &KeyStroke::alt},
    {"shift", &KeyStroke::shift},
};

int KeyCode(std::string_view name) {
    for (const KeyName& known : kKeys)
        if (name == known.name) return known.key;
    if (name.size() == 1 && ((name[0] >= 'a' && name[0] <= 'z'))) return name[0] - 'a' + 'A';
    if (name.size() == 1 && name[0] >= '0' && name[0] <= '9') return name[0];
    if (name.size() >= 2 && name[0] == 'f')
        if (const auto number = base::ReadNumber<long long>(name.substr(1));
            number && *number >= 1 && *number <= 24)
            return kF1 + static_cast<int>(*number) - 1;
    return 0;
}

} // namespace

std::optional<KeyStroke> ParseKeyStroke(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    KeyStroke stroke;
    std::string_view rest = lower;
    for (std::size_t plus; (plus = rest.find('+')) != std::string_view::npos; rest.remove_prefix(plus + 1)) {
        const auto* known = std::ranges::find(kModifiers, rest.substr(0, plus), &ModifierName::name);
        if (known == std::end(kModifiers)) return std::nullopt;
        stroke.*(known->member) = true;
    }
    stroke.key = KeyCode(rest);
    if (!stroke.key) return std::nullopt;
    return stroke;
}

bool IsEditingKey(const KeyStroke& stroke) {
    return !stroke.ctrl && !stroke.alt && !(stroke.key >= kF1 && stroke.key <= kF24);
}

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
