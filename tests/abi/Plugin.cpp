#include "Plugin.h"

#include "HostSide.h"
#include "Support.h"

namespace {

template <typename F>
bool Find(HMODULE module, const char* name, F*& function) {
    function = reinterpret_cast<F*>(GetProcAddress(module, name));
    if (!function) Check(false, name);
    return function != nullptr;
}

void CutLastName(char* path) {
    size_t end = Length(path);
    while (end > 0 && path[end - 1] != '\\' && path[end - 1] != '/')
        --end;
    path[end ? end - 1 : 0] = 0;
}

constinit int g_windows = 0;
constinit HWND g_orderEntry = nullptr;

int OnWindow(HWND window, intptr_t) {
    char name[32] = "", title[64] = "";
    GetClassNameA(window, name, sizeof name);
    GetWindowTextA(window, title, sizeof title);
    if (window != Host().mainFrame && !Same(name, "IME") && !Same(name, "MSCTFIME UI")) ++g_windows;
    if (Same(name, "#32770") && Same(title, "Planfold Order Entry")) g_orderEntry = window;
    return 1;
}

void LookAtWindows() {
    g_windows = 0;
    g_orderEntry = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), OnWindow, 0);
}

} // namespace

bool Load(const char* path, Plugin& plugin) {
    char folder[512];
    Copy(folder, sizeof folder, path);
    CutLastName(folder);
    CutLastName(folder);
    SetDllDirectoryA(folder);
    HMODULE module = plugin.module = LoadLibraryA(path);
    if (!module) {
        CheckNumber(GetLastError(), 0, "the plug-in loads; error");
        return false;
    }
    return Find(module, "GetVeskPluginInfo", plugin.info)
           && Find(module, "GetOptionalVeskPluginInfo", plugin.rights)
           && Find(module, "InitVeskPlugin", plugin.init)
           && Find(module, "ProcessVeskPluginMsg", plugin.message)
           && Find(module, "ExitVeskPlugin", plugin.exit)
           && Find(module, "AlertOn_ClientActivation", plugin.activate)
           && Find(module, "ApplyFontVarPreference", plugin.font)
           && Find(module, "GetBCGCBProVersion", plugin.version)
           && Find(module, "vesku_get_formatted_month_in_number", plugin.month);
}

void Unload(Plugin& plugin) {
    Check(FreeLibrary(plugin.module) != 0, "the plug-in can be freed");
    Check(!GetModuleHandleA("Planfold.zup"), "the plug-in is gone after that");
}

void Pump() {
    Message message;
    constexpr unsigned remove = 1;
    while (PeekMessageA(&message, nullptr, 0, 0, remove)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

int WindowCount() {
    LookAtWindows();
    return g_windows;
}

HWND OrderEntry() {
    LookAtWindows();
    return g_orderEntry;
}

void Answer(const Value* values, int count) {
    HMODULE connection = GetModuleHandleA("connectvesk.dll");
    int (*openScratch)(void**, unsigned, QmxError*) = nullptr;
    int (*closeScratch)(void**, QmxError*) = nullptr;
    int (*openMessage)(void**, QmxError*) = nullptr;
    int (*closeMessage)(void**, QmxError*) = nullptr;
    int (*start)(void*, void*, QmxError*) = nullptr;
    int (*add)(void*, unsigned, unsigned, const QmxDatum*, QmxError*) = nullptr;
    if (!Find(connection, "qmx_open_scratch", openScratch)
        || !Find(connection, "qmx_close_scratch", closeScratch)
        || !Find(connection, "qmx_ctor_primecb", openMessage)
        || !Find(connection, "qmx_dtor_primecb", closeMessage) || !Find(connection, "qmx_start_msg", start)
        || !Find(connection, "qmx_add_data", add))
        return;

    static QmxError error;
    void *scratch = nullptr, *message = nullptr;
    bool built =
        openScratch(&scratch, 4096, &error) && openMessage(&message, &error) && start(message, scratch, &error);
    for (int i = 0; i < count && built;) {
        QmxDatum data[8];
        unsigned repeated = 0;
        const unsigned tag = values[i].tag;
        for (; i < count && values[i].tag == tag && repeated < 8; ++i)
            data[repeated++] = {values[i].text, static_cast<unsigned>(Length(values[i].text))};
        built = add(message, tag, repeated, data, &error) != 0;
    }
    Check(built, "the host builds an answer");
    if (built) Host().firstNotifier->OnResponse(nullptr, message, nullptr);
    closeMessage(&message, &error);
    closeScratch(&scratch, &error);
}
