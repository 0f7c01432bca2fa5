// The platform's types as they cross the boundary, spelled so that portable code can carry them without
// <windows.h>, of which each is a type of the same name: a HostWindow is an HWND.
//
// Thread: a window is used on the GUI thread. Owner: whoever made it. Failure: null means no window, and
// nothing of the boundary dereferences one.
#pragma once

#include <cstdint>

struct HWND__;
struct HINSTANCE__;
struct HMENU__;
struct tagNMHDR;
struct tagRECT;

// An HWND: a dialog, combo, edit, list, pane or frame.
using HostWindow = HWND__*;
// An HINSTANCE: the library or program that resources are loaded from.
using HostInstance = HINSTANCE__*;
// An HMENU.
using HostMenu = HMENU__*;
// An NMHDR: what a control tells its parent with WM_NOTIFY.
using HostNotification = tagNMHDR;
// A RECT: left, top, right, bottom in pixels.
using HostRect = tagRECT;
// An LRESULT: the answer to a message.
using HostResult = std::intptr_t;
