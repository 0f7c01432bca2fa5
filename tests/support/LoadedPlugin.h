// The plug-in, loaded for one test, and what it does to the libraries it imports while it lives.
#pragma once

#include "sdk/PluginExports.h"

#include <windows.h>

#include <stdexcept>
#include <string>
#include <string_view>

// Since the plug-in was loaded.
struct Watched {
    int scratchOpened = 0, scratchClosed = 0, messagesOpened = 0, messagesClosed = 0;
    int hooksSet = 0, hooksLive = 0;
    bool failScratch = false;
};

class LoadedPlugin {
public:
    // Throws when the library or one of its entry points is missing.
    LoadedPlugin();
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;
    // Exits, if that was not done, and frees the library.
    ~LoadedPlugin();

    template <class Function>
    Function* Entry(const char* name) const {
        const FARPROC entry = GetProcAddress(m_module, name);
        if (!entry) throw std::runtime_error(std::string(name) + " is missing");
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(entry));
    }
    HMODULE Module() const { return m_module; }
    // One pick of a menu entry, and what it left in the message queue.
    void Pick(std::string_view entry, StringManager& hostStrings, const char* loginId = "LOGIN") const;
    void Exit();
    int Activate(std::string_view client, StringManager& hostStrings) const;
    void ApplyFont() const;

    static Watched watched;
    // Counts the plug-in's own memory; it is asked for once that is gone.
    static int WrittenAfterFree();

private:
    HMODULE m_module;
    bool m_exited = false;
};
