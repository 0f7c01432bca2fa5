// Reads and works windows as a user does: controls by identifier, with the notifications that go with it.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace probe {

std::string ClassOf(HWND window);
std::string Text(HWND window);
std::string Text(HWND dialog, int control);
std::vector<std::string> Items(HWND dialog, int combo);
bool IsShown(HWND dialog, int control);

void SetEdit(HWND dialog, int edit, std::string_view text);
// False when the combo has no such entry.
bool Select(HWND dialog, int combo, std::string_view entry);
void Press(HWND dialog, int button);
SYSTEMTIME Date(HWND dialog, int picker);
void SetDate(HWND dialog, int picker, SYSTEMTIME date);

// A key into the window that has the focus; arrives through the message loop.
void PostKey(WPARAM key);

// Top-level windows of this thread, without those of the input method.
std::vector<HWND> TopWindows();
HWND FindDialog(std::string_view title);
std::vector<HWND> Children(HWND parent);

// As the host's loop does: translates and dispatches what waits.
void Pump();
// Pumps until it holds; false after some seconds.
bool PumpUntil(const std::function<bool()>& holds);

} // namespace probe
