// Keeps what the plug-in frees, poisoned: a read after the free sees rubbish, a write is found.
#pragma once

#include <windows.h>

namespace freed {

// To be called right after the plug-in was loaded.
void Watch(HMODULE plugin);
// Blocks that were written after they had been freed. Lets go of all that was kept.
int WrittenBlocks();

} // namespace freed
