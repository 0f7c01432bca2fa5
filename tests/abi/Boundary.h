// What the two compilers of this program tell each other, in C alone.
#pragma once

#include <stddef.h>

extern "C" {

// What the plug-in did to the host of the other compiler.
struct HostSeen {
    char log[512];     // the last line
    char caution[256]; // the arguments of the last confirmation, each closed by ";"
    int logLines, liveControls, wrongCalls;
    int fontArguments;
};
extern struct HostSeen host_seen;
extern void* host_frame;

// Made by the test: memory that shows a second free, a late write and an overrun, and the controls' contents.
void* watched_allocate(size_t bytes);
void watched_free(void* memory);
void* heap_allocate(size_t bytes);
void heap_free(void* memory);
void sent(void* message);
void fill_combo(void* dialog, int combo, const char* item);

// Made by the host: calls of the plug-in's functions.
// Name, version, menu entries, rights' root and rights, each closed by "|".
void call_information(void* information, void* rights, char* text, unsigned* stamp, unsigned* number);
void call_init(void* function, const char* entry);
int call_activate(void* function, const char* client);
// Goes to the notifier of the first control.
void give_answer(void* message);
void give_broadcast(void* message);
}
