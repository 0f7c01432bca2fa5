// The host's exported functions and request controls, with what the plug-in did to them.
#pragma once

#include "Boundary.h"

struct HostState {
    HWND mainFrame;
    bool mayUse;           // "QV: Planfold"
    bool mayRestrictDates; // "QV: Planfold: SIP Set Restricted Date"
    bool hasMainFrame;

    int liveControls;
    int wrongSlots; // reserved operations called
    char kinds[16]; // one digit a control, in the order taken
    CKeloRxNotifierBase* firstNotifier;
    int requests;

    char log[1024]; // the last line
    int logLines;
    char caution[256]; // the arguments of the last confirmation, each closed by ";"
    intptr_t fontArguments[2];
};
HostState& Host();

inline constexpr int kLineRoom = 256;
