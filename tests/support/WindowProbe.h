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

std::string Cell(HWND list, int row, int column);
RECT PlaceOf(HWND window);
SIZE SizeOf(HWND window);
std::string OnClipboard();
// Each entry as "Text 25001", greyed "(Text 25001)", a separator "-", joined by "|".
std::string Entries(HMENU menu);

// A key into the window that has the focus; arrives through the message loop.
void PostKey(WPARAM key);
// The same, until all has arrived.
void PressKey(WPARAM key);
void DoubleClick(HWND list, int row);

// Top-level windows of this thread, without those of the input method.
std::vector<HWND> TopWindows();
HWND FindDialog(std::string_view title);
std::vector<HWND> Children(HWND parent);

// Translates and dispatches what waits, as the host's loop does.
void Pump();
// Pumps until it holds; false after some seconds.
bool PumpUntil(const std::function<bool()>& holds);

// While it lives: does something once, in whatever message loop runs, as soon as the window is there.
class WhenShown {
public:
    WhenShown(std::function<HWND()> find, std::function<void(HWND)> act);
    WhenShown(const WhenShown&) = delete;
    WhenShown& operator=(const WhenShown&) = delete;
    ~WhenShown();
    bool Seen() const { return m_seen; }

private:
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD);

    std::function<HWND()> m_find;
    std::function<void(HWND)> m_act;
    UINT_PTR m_timer;
    bool m_seen = false;
};

// The menu that is open; null when none is.
HWND OpenMenu();
HMENU MenuOf(HWND openMenu);

} // namespace probe
