// Works on loaded images: replaces a function that a library imports, hides a function that this host exports.
#pragma once

#include "Platform.h"

namespace image {

// The function that was imported; null when `module` does not import `name` from `library`.
void* ReplaceImport(HMODULE module, const char* library, const char* name, void* replacement);

// While it lives, looking the name up in this process's main module fails.
class HiddenExport {
public:
    explicit HiddenExport(const char* name);
    HiddenExport(const HiddenExport&) = delete;
    ~HiddenExport();

private:
    unsigned* m_entry;
    unsigned m_address = 0;
};

} // namespace image
