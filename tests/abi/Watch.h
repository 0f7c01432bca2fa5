// Watches what the plug-in does to the libraries it imports: connection handles, the fields of the request
// being built, window hooks, and the blocks on the process heap that both sides may free.
#pragma once

#include "Platform.h"

namespace watch {

struct Counts {
    int scratchOpened, scratchClosed, messageOpened, messageClosed;
    int hooksSet, hooksRemoved;
    int heapBlocks;     // of the plug-in, not yet freed by anyone seen here
    int heapFaults;     // freed twice
    char request[2048]; // "tag=value;" in the order added
};
Counts& Seen();

// Memory that the host takes for, or gives back from, what both sides grow.
void AllocatedByHost(const void* memory);
void FreedByHost(const void* memory);

// To be called right after the plug-in was loaded.
void Install(HMODULE plugin);

} // namespace watch
