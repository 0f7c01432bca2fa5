// The few platform functions this host needs. Declared here, because the headers at hand belong to another
// compiler and this host must be laid out by its own.
#pragma once

#include <stddef.h>
#include <stdint.h>

struct HWND__;
struct HINSTANCE__;
using HWND = HWND__*;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;
using WindowProc = intptr_t (*)(HWND, unsigned, uintptr_t, intptr_t);
using HookProc = intptr_t (*)(int, uintptr_t, intptr_t);
using EnumProc = int (*)(HWND, intptr_t);

struct WindowClass {
    unsigned style;
    WindowProc proc;
    int classExtra, windowExtra;
    HINSTANCE instance;
    void *icon, *cursor, *background;
    const char *menu, *name;
};
struct Message {
    HWND window;
    unsigned id;
    uintptr_t wParam;
    intptr_t lParam;
    unsigned time;
    int x, y;
};

inline constexpr unsigned kWmSetText = 0x000C, kWmCommand = 0x0111, kWmClose = 0x0010, kWmDestroy = 0x0002;
inline constexpr unsigned kCbAddString = 0x0143, kCbGetCount = 0x0146, kCbGetCurSel = 0x0147,
                          kCbGetLbText = 0x0148;
inline constexpr unsigned kCbResetContent = 0x014B, kCbSetCurSel = 0x014E;
inline constexpr int kWhCbt = 5, kHcbtActivate = 5, kHcbtDestroyWindow = 4;
inline constexpr int kOk = 1;

#define PLATFORM extern "C" __declspec(dllimport)
PLATFORM void* GetProcessHeap();
PLATFORM void* HeapAlloc(void* heap, unsigned flags, size_t bytes);
PLATFORM int HeapFree(void* heap, unsigned flags, void* memory);
PLATFORM void* GetStdHandle(unsigned which);
PLATFORM int WriteFile(void* file, const void* bytes, unsigned count, unsigned* written, void*);
[[noreturn]] PLATFORM void ExitProcess(unsigned code);
PLATFORM const char* GetCommandLineA();
PLATFORM HMODULE LoadLibraryA(const char* path);
PLATFORM int FreeLibrary(HMODULE module);
PLATFORM HMODULE GetModuleHandleA(const char* name);
PLATFORM void* GetProcAddress(HMODULE module, const char* name);
PLATFORM int SetDllDirectoryA(const char* path);
PLATFORM unsigned GetLastError();
PLATFORM unsigned GetCurrentThreadId();
PLATFORM int VirtualProtect(void* memory, size_t bytes, unsigned access, unsigned* before);
PLATFORM uint16_t RegisterClassA(const WindowClass*);
PLATFORM HWND CreateWindowExA(unsigned extended, const char* cls, const char* text, unsigned style, int x,
                              int y, int width, int height, HWND parent, void* menu, HINSTANCE, void*);
PLATFORM intptr_t DefWindowProcA(HWND, unsigned, uintptr_t, intptr_t);
PLATFORM int DestroyWindow(HWND);
PLATFORM intptr_t SendMessageA(HWND, unsigned, uintptr_t, intptr_t);
PLATFORM int PostMessageA(HWND, unsigned, uintptr_t, intptr_t);
PLATFORM int PeekMessageA(Message*, HWND, unsigned, unsigned, unsigned);
PLATFORM int TranslateMessage(const Message*);
PLATFORM intptr_t DispatchMessageA(const Message*);
PLATFORM HWND GetDlgItem(HWND, int identifier);
PLATFORM HWND FindWindowExA(HWND parent, HWND after, const char* cls, const char* text);
PLATFORM int GetWindowTextA(HWND, char* text, int room);
PLATFORM int GetClassNameA(HWND, char* text, int room);
PLATFORM int IsWindowVisible(HWND);
PLATFORM int EnumThreadWindows(unsigned thread, EnumProc, intptr_t);
PLATFORM void* SetWindowsHookExA(int kind, HookProc, HINSTANCE, unsigned thread);
PLATFORM int UnhookWindowsHookEx(void* hook);
PLATFORM intptr_t CallNextHookEx(void* hook, int code, uintptr_t, intptr_t);
#undef PLATFORM
