#include "host/terminal/window/PluginHost.h"

#include "host/files/Files.h"
#include "host/terminal/window/Encoding.h"

#include <algorithm>

namespace vesk {
namespace {

template <class Function>
bool Resolve(HMODULE module, const char* name, Function*& target) {
    target = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return target != nullptr;
}

std::vector<std::string> Texts(const CStringArray& array) {
    std::vector<std::string> texts;
    for (const CString& element : array.Elements())
        texts.emplace_back(element.View());
    return texts;
}

std::vector<std::string> LibrariesIn(const std::string& folder) {
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(PathOf(folder + "\\*.zup").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do
        names.push_back(TextOfPath(found.cFileName));
    while (FindNextFileW(search, &found));
    FindClose(search);
    std::ranges::sort(names);
    return names;
}

} // namespace

class PluginHost::Call {
public:
    explicit Call(PluginHost& host) : m_host(host) { ++m_host.m_depth; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() { --m_host.m_depth; }

private:
    PluginHost& m_host;
};

std::vector<std::string> PluginHost::LoadFolder(const std::string& folder) {
    std::vector<std::string> lines;
    for (const std::string& name : LibrariesIn(folder))
        lines.push_back(LoadOne(folder + '\\' + name, ForScreen(name)));
    if (lines.empty()) lines.push_back("There is no plug-in in \"" + ForScreen(folder) + '"');
    return lines;
}

std::string PluginHost::LoadOne(const std::string& path, const std::string& fileName) {
    Plugin plugin;
    plugin.fileName = fileName;
    plugin.module = LoadLibraryExW(PathOf(path).c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    if (!plugin.module) return fileName + " cannot be loaded, error " + std::to_string(GetLastError());
    if (!Resolve(plugin.module, "GetVeskPluginInfo", plugin.info)
        || !Resolve(plugin.module, "InitVeskPlugin", plugin.init)) {
        FreeLibrary(plugin.module);
        return fileName + " is not a plug-in for this terminal";
    }
    Resolve(plugin.module, "GetOptionalVeskPluginInfo", plugin.optionalInfo);
    Resolve(plugin.module, "AlertOn_ClientActivation", plugin.clientActivated);
    Resolve(plugin.module, "ApplyFontVarPreference", plugin.fontChanged);
    Resolve(plugin.module, "ExitVeskPlugin", plugin.exit);
    AskInfo(plugin);
    m_plugins.push_back(plugin);
    return plugin.name + ' ' + plugin.version + " loaded from " + fileName;
}

// All strings of the two calls are gone when this returns, whoever made them.
void PluginHost::AskInfo(Plugin& plugin) {
    const Call call(*this);
    CString name(m_strings), version(m_strings), rightsRoot(m_strings);
    CStringArray menu, rights;
    std::uint32_t buildStamp = 0, interfaceNumber = 0;
    plugin.info(&name, &version, &menu, &buildStamp, &interfaceNumber);
    plugin.name = name.View();
    plugin.version = version.View();
    plugin.menu = Texts(menu);
    if (plugin.optionalInfo) plugin.optionalInfo(&rightsRoot, &rights, nullptr, nullptr);
    plugin.rightsRoot = rightsRoot.View();
    plugin.rights = Texts(rights);
}

void PluginHost::RefreshInfo() {
    for (Plugin& plugin : m_plugins)
        AskInfo(plugin);
}

void PluginHost::Pick(std::size_t plugin, std::size_t entry, const std::string& loginId, int loginMode) {
    if (plugin >= m_plugins.size() || entry >= m_plugins[plugin].menu.size()) return;
    const Call call(*this);
    const Plugin& picked = m_plugins[plugin];
    PassedString text(picked.menu[entry], m_strings);
    picked.init(nullptr, loginId.c_str(), loginMode, text.Hand());
}

void PluginHost::ActivateClient(const std::string& client) {
    const Call call(*this);
    for (const Plugin& plugin : m_plugins) {
        CString text(client, m_strings);
        if (plugin.clientActivated) plugin.clientActivated(&text);
    }
}

void PluginHost::ApplyFont() {
    const Call call(*this);
    for (const Plugin& plugin : m_plugins)
        if (plugin.fontChanged) plugin.fontChanged(nullptr, nullptr, nullptr, nullptr);
}

void PluginHost::UnloadAll() {
    const Call call(*this);
    for (const Plugin& plugin : m_plugins)
        if (plugin.exit) plugin.exit();
    for (const Plugin& plugin : m_plugins)
        FreeLibrary(plugin.module);
    m_plugins.clear();
}

} // namespace vesk
