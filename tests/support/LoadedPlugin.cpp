#include "tests/support/LoadedPlugin.h"

#include "tests/support/Connection.h"
#include "tests/support/FreedMemory.h"
#include "tests/support/ImageEdit.h"
#include "tests/support/WindowProbe.h"

#include <stdexcept>

namespace {

int g_liveHooks = 0;

HHOOK WINAPI SetHook(int kind, HOOKPROC procedure, HINSTANCE instance, DWORD thread) {
    const HHOOK hook = SetWindowsHookExA(kind, procedure, instance, thread);
    g_liveHooks += hook != nullptr;
    return hook;
}

BOOL WINAPI RemoveHook(HHOOK hook) {
    const BOOL removed = UnhookWindowsHookEx(hook);
    g_liveHooks -= removed != FALSE;
    return removed;
}

HMODULE Load() {
    SetDllDirectoryA(PLANFOLD_DIST);
    HMODULE module = LoadLibraryA(PLANFOLD_DIST "/Vesk Plugins/Planfold.zup");
    if (!module)
        throw std::runtime_error("Planfold.zup cannot be loaded, error " + std::to_string(GetLastError()));
    return module;
}

} // namespace

LoadedPlugin::LoadedPlugin(StringManager& hostStrings) : m_strings(hostStrings), m_module(Load()) {
    g_liveHooks = 0;
    ReplaceImport(m_module, "user32.dll", "SetWindowsHookExA", SetHook);
    ReplaceImport(m_module, "user32.dll", "SetWindowsHookExW", SetHook);
    ReplaceImport(m_module, "user32.dll", "UnhookWindowsHookEx", RemoveHook);
    ConnectionWatch::Install(m_module);
    freed::Watch(m_module);
}

LoadedPlugin::~LoadedPlugin() {
    if (!m_exited) Exit();
    FreeLibrary(m_module);
}

template <class Function>
Function* LoadedPlugin::Entry(const char* name) const {
    const FARPROC entry = GetProcAddress(m_module, name);
    if (!entry) throw std::runtime_error(std::string(name) + " is missing");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(entry));
}

void LoadedPlugin::Pick(std::string_view entry, std::int32_t loginMode) {
    PassedString passed(entry, m_strings);
    Entry<sdk::plugin::InitVeskPlugin>("InitVeskPlugin")(nullptr, "LOGIN", loginMode, passed.Hand());
    probe::Pump();
}

void LoadedPlugin::Exit() {
    m_exited = true;
    Entry<sdk::plugin::ExitVeskPlugin>("ExitVeskPlugin")();
    probe::Pump();
}

int LoadedPlugin::Activate(std::string_view client) {
    CString text(client, m_strings);
    return Entry<sdk::plugin::AlertOn_ClientActivation>("AlertOn_ClientActivation")(&text);
}

void LoadedPlugin::ApplyFont() {
    Entry<sdk::plugin::ApplyFontVarPreference>("ApplyFontVarPreference")(nullptr, nullptr, nullptr, nullptr);
    probe::Pump();
}

int LoadedPlugin::LiveHooks() {
    return g_liveHooks;
}
