// The shared list control. So far: where all lists keep the user's columns and the dialogs' positions.
//
// Thread: the GUI thread. Strings passed by value are destroyed here.
#pragma once

#include "sdk/CString.h"

#ifdef KORVEX_BUILDING
#define KORVEX_API __declspec(dllexport)
#else
#define KORVEX_API __declspec(dllimport)
#endif

class KORVEX_API CCommonListCtrl {
public:
    // Full paths of the files in which lists keep their columns and dialogs their places; an empty path
    // keeps nothing.
    static void SetRecoveryFiles(CString* userSettings, CString* dialogPositions) noexcept;
};
