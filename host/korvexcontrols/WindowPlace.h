// Where a window stands, and how large it is when the user can change that, remembered by a name from one
// session to the next.
#pragma once

#include <windows.h>

#include <string>

namespace korvex {

void RememberPlace(HWND window, const std::string& name);
// Nothing where none is kept. A place on a monitor that is no longer there is not taken.
void RestorePlace(HWND window, const std::string& name);

// The same size in pixels at another DPI.
SIZE Rescaled(const SIZE& size, UINT fromDpi, UINT toDpi);
// Of a window that is neither minimised nor maximised, or will be when it is restored.
SIZE NormalSize(HWND window);

} // namespace korvex
