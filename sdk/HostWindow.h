// A window of the host or the plug-in as it crosses the boundary: the platform's HWND, spelled so
// that portable code can carry one without <windows.h>. Never dereferenced; null means no window.
#pragma once

struct HWND__;
struct HINSTANCE__;

using HostWindow = HWND__*;
using HostInstance = HINSTANCE__*;
