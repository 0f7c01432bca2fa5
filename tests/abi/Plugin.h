// The plug-in as this host sees it: a library and its entry points.
#pragma once

#include "Boundary.h"

struct Plugin {
    HMODULE module;
    int (*info)(CString* name, CString* version, CStringArray* menu, unsigned* stamp,
                unsigned* interfaceNumber);
    void (*rights)(CString* root, CStringArray* names, void*, void*);
    void (*init)(void*, const char* loginId, int loginMode, CString menuEntry);
    int (*message)(void*);
    intptr_t (*exit)();
    int (*activate)(CString* client);
    void (*font)(void*, void*, void*, void*);
    int (*version)();
    int (*month)(const char*);
};

// Loads the library, with its two companions from the folder above; false when it or an entry point is missing.
bool Load(const char* path, Plugin& plugin);
void Unload(Plugin& plugin);

// Handles every message that is waiting.
void Pump();
// The thread's windows, the main frame and the input method's left out.
int WindowCount();
HWND OrderEntry();

// Gives an answer to the order entry window: each value under its tag, in order.
struct Value {
    unsigned tag;
    const char* text;
};
void Answer(const Value* values, int count);
