// Works on loaded images: replaces a function that a library imports, hides a function that this program
// exports.
#pragma once

#include <windows.h>

// Puts `replacement` into the module's import table; gives what stood there, null when it imports no such
// function. The change lasts as long as the module is loaded.
void* ReplaceImport(HMODULE module, const char* library, const char* name, void* replacement);

template <class Function>
Function* ReplaceImport(HMODULE module, const char* library, const char* name, Function* replacement) {
    return reinterpret_cast<Function*>(
        ReplaceImport(module, library, name, reinterpret_cast<void*>(replacement)));
}

// While it lives, GetProcAddress on this program does not find the name.
class HiddenExport {
public:
    explicit HiddenExport(const char* name);
    HiddenExport(const HiddenExport&) = delete;
    HiddenExport& operator=(const HiddenExport&) = delete;
    ~HiddenExport();

private:
    DWORD* m_entry;
    DWORD m_address = 0;
};
