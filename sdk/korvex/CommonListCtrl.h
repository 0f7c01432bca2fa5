// What all shared lists, splitters and boxes have in common: the two files in which they remember, from one
// session to the next, what the user made of them.
//
// Thread:   the GUI thread.
// Owner:    a string passed by value is destroyed by the callee, as everywhere at the boundary
// (`PassedString`). Failure:  a file that cannot be written keeps nothing; nobody is told.
//
// Example, once at the start, before the first list is attached:
//
//     PassedString settings(folder + "\\UserSetting.ini", strings);
//     PassedString positions(folder + "\\DialogPos.ini", strings);
//     CCommonListCtrl::SetRecoveryFiles(settings.Hand(), positions.Hand());
#pragma once

#include "sdk/CString.h"

#if defined(_WIN32) && defined(KORVEX_BUILDING)
#define KORVEX_API __declspec(dllexport)
#elif defined(_WIN32)
#define KORVEX_API __declspec(dllimport)
#else
#define KORVEX_API
#endif

class KORVEX_API CCommonListCtrl {
public:
    // Full paths in the ANSI code page: where lists keep the order and widths of their columns, and where boxes
    // and splitters keep their places. An empty path keeps nothing. Both hold for every list of the process,
    // from the next one that is attached.
    static void SetRecoveryFiles(CString* userSettings, CString* dialogPositions) noexcept;
};
