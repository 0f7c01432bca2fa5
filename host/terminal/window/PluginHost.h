// The plug-ins: every *.zup of one folder, what each answered about itself, and the calls into them.
#pragma once

#include "sdk/HeapStringManager.h"
#include "sdk/PluginExports.h"

#include <windows.h>

#include <string>
#include <vector>

namespace vesk {

struct Plugin {
    HMODULE module = nullptr;
    std::string fileName, name, version, rightsRoot;
    std::vector<std::string> menu, rights;
    sdk::plugin::InitVeskPlugin* init = nullptr;
    sdk::plugin::GetVeskPluginInfo* info = nullptr;
    sdk::plugin::GetOptionalVeskPluginInfo* optionalInfo = nullptr;
    sdk::plugin::AlertOn_ClientActivation* clientActivated = nullptr;
    sdk::plugin::ApplyFontVarPreference* fontChanged = nullptr;
    sdk::plugin::ExitVeskPlugin* exit = nullptr;
};

class PluginHost {
public:
    explicit PluginHost(HeapStringManager& strings) : m_strings(strings) {}
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;
    ~PluginHost() { UnloadAll(); }

    // The answer has a line for each library, for the log.
    std::vector<std::string> LoadFolder(const std::string& folder);
    const std::vector<Plugin>& Plugins() const { return m_plugins; }
    // What the plug-ins offer depends on the user's rights: asks them all again.
    void RefreshInfo();

    // What the menu no longer has by now is not picked.
    void Pick(std::size_t plugin, std::size_t entry, const std::string& loginId, int loginMode);
    void ActivateClient(const std::string& client);
    void ApplyFont();
    void UnloadAll();

    // A call into a plug-in is on the stack.
    bool Busy() const { return m_depth != 0; }

private:
    class Call;

    std::string LoadOne(const std::string& path, const std::string& fileName);
    void AskInfo(Plugin& plugin);

    HeapStringManager& m_strings;
    std::vector<Plugin> m_plugins;
    int m_depth = 0;
};

} // namespace vesk
