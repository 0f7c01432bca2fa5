// An entry of a list's menu.
#pragma once

namespace planfold {

struct MenuEntry {
    const char* text;
    int command;
    bool greyed = false;
};

} // namespace planfold
