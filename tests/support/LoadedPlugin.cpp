#include "tests/support/LoadedPlugin.h"

#include "sdk/Qmx.h"
#include "tests/support/ImageEdit.h"
#include "tests/support/WindowProbe.h"

#include <algorithm>
#include <cstring>
#include <malloc.h>
#include <vector>

Watched LoadedPlugin::watched;

namespace {

Watched& g_watched = LoadedPlugin::watched;

HHOOK WINAPI SetHook(int kind, HOOKPROC procedure, HINSTANCE instance, DWORD thread) {
    const HHOOK hook = SetWindowsHookExA(kind, procedure, instance, thread);
    g_watched.hooksSet += hook != nullptr;
    g_watched.hooksLive += hook != nullptr;
    return hook;
}
BOOL WINAPI RemoveHook(HHOOK hook) {
    const BOOL removed = UnhookWindowsHookEx(hook);
    g_watched.hooksLive -= removed != FALSE;
    return removed;
}

// Only scratch buffers of the agreed size count.
int OpenScratch(void** scratch, std::uint32_t size, QmxError* error) {
    g_watched.scratchOpened += size == 32768;
    return !g_watched.failScratch && qmx_open_scratch(scratch, size, error);
}
int CloseScratch(void** scratch, QmxError* error) {
    ++g_watched.scratchClosed;
    return qmx_close_scratch(scratch, error);
}
int OpenMessage(void** message, QmxError* error) {
    ++g_watched.messagesOpened;
    return qmx_ctor_primecb(message, error);
}
int CloseMessage(void** message, QmxError* error) {
    ++g_watched.messagesClosed;
    return qmx_dtor_primecb(message, error);
}

// Freed memory stays, poisoned, so that a late write shows.
constexpr unsigned char kPoison = 0xDD;
std::vector<std::pair<unsigned char*, std::size_t>> g_freed;

void Keep(void* memory) {
    if (!memory) return;
    const std::size_t bytes = _msize(memory);
    std::memset(memory, kPoison, bytes);
    g_freed.emplace_back(static_cast<unsigned char*>(memory), bytes);
}

HMODULE Load() {
    SetDllDirectoryA(PLANFOLD_DIST);
    HMODULE module = LoadLibraryA(PLANFOLD_DIST "/Vesk Plugins/Planfold.zup");
    if (!module) throw std::runtime_error("Planfold.zup cannot be loaded: " + std::to_string(GetLastError()));
    return module;
}

} // namespace

LoadedPlugin::LoadedPlugin() : m_module(Load()) {
    watched = {};
    ReplaceImport(m_module, "user32.dll", "SetWindowsHookExA", SetHook);
    ReplaceImport(m_module, "user32.dll", "SetWindowsHookExW", SetHook);
    ReplaceImport(m_module, "user32.dll", "UnhookWindowsHookEx", RemoveHook);
    ReplaceImport(m_module, "msvcrt.dll", "free", Keep);
    ReplaceImport(m_module, "connectvesk.dll", "qmx_open_scratch", OpenScratch);
    ReplaceImport(m_module, "connectvesk.dll", "qmx_close_scratch", CloseScratch);
    ReplaceImport(m_module, "connectvesk.dll", "qmx_ctor_primecb", OpenMessage);
    ReplaceImport(m_module, "connectvesk.dll", "qmx_dtor_primecb", CloseMessage);
}

LoadedPlugin::~LoadedPlugin() {
    if (!m_exited) Exit();
    FreeLibrary(m_module);
}

void LoadedPlugin::Pick(std::string_view entry, StringManager& hostStrings, const char* loginId) const {
    PassedString passed(entry, hostStrings);
    Entry<sdk::plugin::InitVeskPlugin>("InitVeskPlugin")(nullptr, loginId, 3, passed.Hand());
    probe::Pump();
}

void LoadedPlugin::Exit() {
    m_exited = true;
    Entry<sdk::plugin::ExitVeskPlugin>("ExitVeskPlugin")();
    probe::Pump();
}

int LoadedPlugin::Activate(std::string_view client, StringManager& hostStrings) const {
    CString text(client, hostStrings);
    return Entry<sdk::plugin::AlertOn_ClientActivation>("AlertOn_ClientActivation")(&text);
}

void LoadedPlugin::ApplyFont() const {
    Entry<sdk::plugin::ApplyFontVarPreference>("ApplyFontVarPreference")(nullptr, nullptr, nullptr, nullptr);
    probe::Pump();
}

int LoadedPlugin::WrittenAfterFree() {
    int written = 0;
    for (const auto& [memory, bytes] : g_freed) {
        written += !std::all_of(memory, memory + bytes, [](unsigned char byte) { return byte == kPoison; });
        std::free(memory);
    }
    g_freed.clear();
    return written;
}
