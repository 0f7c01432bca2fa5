// Reads a dialog resource (the extended template), so that its layout can be made anew for another
// font or DPI. Positions are dialog units: quarters and eighths of the font's average character.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace framework {

struct DialogTemplate {
    struct Item {
        int id;
        RECT units;
    };

    int pointSize = 8;
    std::wstring face = L"MS Shell Dlg";
    SIZE units{};
    std::vector<Item> items; // in tab order
};

// Throws std::runtime_error when the module has no such resource or it is not an extended template.
DialogTemplate ReadDialogTemplate(HINSTANCE module, int resource);

} // namespace framework
