// Reads a dialog resource (the extended template), so that its layout can be made anew for another
// font or DPI. Positions are dialog units: quarters and eighths of the font's average character.
#pragma once

#include "framework/Handle.h"
#include "framework/Window.h"

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

// What the task bar leaves of the monitor that the window is on.
RECT WorkArea(HWND window);

// Gives the window this size, as far as its monitor has room, and moves it back where it would leave that.
void ResizeOnScreen(HWND window, SIZE size);

// `points` in logical points, `dpi` of the monitor.
Font MakeFont(const std::wstring& face, int points, UINT dpi);

// A dialog unit in pixels is x / 4 and y / 8.
SIZE BaseUnits(HFONT font);

// Lays a dialog out for a font size and DPI, from the dialog units of its own template: every control and
// the dialog itself grow with the text.
class DialogLayout {
public:
    DialogLayout(HINSTANCE module, int resource) : m_template(ReadDialogTemplate(module, resource)) {}

    int TemplatePointSize() const { return m_template.pointSize; }

    // Sets the font and every position. The top left corner stays; it is moved back only when the new size
    // would leave the monitor. A font in which the dialog has no room there is made smaller, point by point.
    void Apply(HWND dialog, int points, UINT dpi);

private:
    Font LargestFont(HWND dialog, int points, UINT dpi) const;
    SIZE FrameSize(HWND dialog, SIZE base, UINT dpi) const;

    DialogTemplate m_template;
    Font m_font; // in use by the controls until the next one is
};

} // namespace framework
