// Finding windows and controls of this program as a user would: by caption, by identifier, by what is open.
#pragma once

#include "framework/Window.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// The windows of this thread that are shown.
std::vector<HWND> TopLevelWindows();

bool IsOfClass(HWND window, std::string_view name);

// A caption that ends with "*" stands for all that begin so.
bool IsCaption(std::string_view text, std::string_view caption);

// The shown window of this thread with this caption: a top-level one, or a pane inside `frame`.
// Null when there is none.
HWND FindWindowByCaption(const std::string& caption, HWND frame);

// The control with this identifier, at any depth below `window`: one that is seen before one that is not, then
// the nearest. Null when there is none.
HWND FindControl(HWND window, int id);

// The open message box, if there is one.
HWND FindMessageBox();
std::string MessageBoxText(HWND box);
// The button for an answer; a box that only tells something has one button, whatever its identifier.
HWND MessageBoxButton(HWND box, int button);

// The popup menu that is open; null when there is none.
HMENU FindOpenMenu(HWND& window);

// Pictures of the screen.
// Saves the whole screen as PNG. The answer is what went wrong, also that the picture is of one colour only;
// empty when all is well.
std::string SaveScreenshot(const std::string& path);

} // namespace vesk
