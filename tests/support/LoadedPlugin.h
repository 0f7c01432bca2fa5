// The plug-in, loaded for one test and watched while it lives.
#pragma once

#include "sdk/PluginExports.h"
#include "tests/support/QuarantineStringManager.h"

#include <windows.h>

#include <string_view>

class LoadedPlugin {
public:
    // Throws when the library or one of its entry points is missing.
    explicit LoadedPlugin(StringManager& hostStrings);
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;
    // Exits, if that was not done, and frees the library.
    ~LoadedPlugin();

    // One pick of a menu entry, and what it left in the message queue.
    void Pick(std::string_view entry, std::int32_t loginMode = 3);
    void Exit();
    int Activate(std::string_view client);
    void ApplyFont();
    // Window hooks set and not removed.
    static int LiveHooks();

private:
    template <class Function>
    Function* Entry(const char* name) const;

    StringManager& m_strings;
    HMODULE m_module;
    bool m_exited = false;
};
