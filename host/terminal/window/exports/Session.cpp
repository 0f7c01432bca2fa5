// Exports about the session: identity, rights, settings, fonts, keys, the log, and the server's controls.
#include "host/terminal/window/Encoding.h"
#include "host/terminal/window/exports/HostExports.h"

#include <rpc.h>

namespace vesk {
namespace {

std::string NewIdentifier() {
    UUID id{};
    if (const RPC_STATUS status = UuidCreate(&id); status != RPC_S_OK && status != RPC_S_UUID_LOCAL_ONLY)
        return {};
    RPC_CSTR text = nullptr;
    if (UuidToStringA(&id, &text) != RPC_S_OK) return {};
    std::string result(reinterpret_cast<const char*>(text));
    RpcStringFreeA(&text);
    return result;
}

int TextHeight(HWND window) {
    const HDC context = GetDC(window);
    const auto font = reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0));
    const HGDIOBJ before = font ? SelectObject(context, font) : nullptr;
    TEXTMETRICA metrics{};
    GetTextMetricsA(context, &metrics);
    if (before) SelectObject(context, before);
    ReleaseDC(window, context);
    return metrics.tmHeight;
}

} // namespace
} // namespace vesk

using namespace vesk;

VeskApp* pu_get_exe_app() {
    return Serve(static_cast<VeskApp*>(nullptr), [](Application& application) { return application.Record(); });
}

int pu_is_connected() {
    return Serve(0, [](Application& application) { return application.Server().Status().isTrouble ? 0 : 1; });
}

int pu_is_actionright_enabled(InString right) {
    return Serve(0,
                 [&](Application& application) { return application.State().HasRight(Text(right)) ? 1 : 0; });
}

int pu_get_peer_data(OutString peerIdA, OutString peerIdB, OutString other) {
    return Serve(0, [&](Application& application) {
        const TerminalConfig& config = application.State().config;
        Put(peerIdA, config.peerIdA);
        Put(peerIdB, config.peerIdB);
        Put(other, config.loginId);
        return 1;
    });
}

int pu_get_uuid(OutString identifier) {
    return Serve(0, [&](Application&) {
        const std::string made = NewIdentifier();
        Put(identifier, made);
        return made.empty() ? 0 : 1;
    });
}

int pu_get_UserDirectory(OutString directory) {
    return Serve(0, [&](Application& application) {
        Put(directory, FolderForPlugins(application.State().userFolder));
        return 1;
    });
}

int pu_read_settings_from_json(InString section, InString key, OutString value, int) {
    return Serve(0, [&](Application& application) {
        const auto stored = application.State().settings.Read(Text(section), Text(key));
        if (stored) Put(value, *stored);
        return stored ? 1 : 0;
    });
}

int pu_write_settings_to_json(InString section, InString key, InString value, int) {
    return Serve(0, [&](Application& application) {
        return application.State().settings.Write(Text(section), Text(key), Text(value)) ? 1 : 0;
    });
}

int pu_add_to_tabbed_log(ByValueString text) {
    const TakenString taken(text);
    return Serve(0, [&](Application& application) {
        application.LogFromPlugin(taken.View());
        return 1;
    });
}

int pu_get_FontVariation(std::intptr_t* variation, std::intptr_t* size, void*, void*) {
    return Serve(0, [&](Application& application) {
        if (variation) *variation = application.State().config.fontVariation;
        if (size) *size = application.State().config.fontSize;
        return 1;
    });
}

// The focus goes on to the next control, so that keys no longer change the choice that was made.
int pu_clear_FocusFromDropDown(HostWindow combo, HostWindow dialog) {
    return Serve(0, [&](Application&) {
        const HWND focus = GetFocus();
        if (!focus || (focus != combo && !IsChild(combo, focus))) return 0;
        SetFocus(GetNextDlgTabItem(dialog, combo, FALSE));
        return 1;
    });
}

// An edit that has become too low for its text grows about its middle.
int pu_resize_EditCtrlForFontChange(HostWindow edit) {
    return Serve(0, [&](Application&) {
        if (!IsWindow(edit)) return 0;
        RECT rect{}, inside{};
        GetWindowRect(edit, &rect);
        GetClientRect(edit, &inside);
        const int missing = TextHeight(edit) - (inside.bottom - inside.top);
        if (missing <= 0) return 1;
        MapWindowPoints(nullptr, GetParent(edit), reinterpret_cast<POINT*>(&rect), 2);
        rect.top -= missing / 2;
        rect.bottom += missing - missing / 2;
        framework::Window(edit).Move(rect);
        return 1;
    });
}

int register_hotkey(HostWindow window, InString group, int command, InString text, InString description,
                    InString key) {
    return Serve(0, [&](Application& application) {
        const auto stroke = ParseKeyStroke(Text(key));
        if (!stroke || !IsWindow(window)) return 0;
        application.State().hotKeys.Register(
            {window, command, *stroke, TextOf(group), TextOf(text), TextOf(description)});
        application.WatchHotKeys();
        return 1;
    });
}

// The terminal has no dialogs of its own to offer.
int pu_InvokeDialog(int, HostWindow) {
    return 0;
}

const NonTradingDates* pu_get_non_trading_dates_map() {
    return Serve(static_cast<const NonTradingDates*>(nullptr),
                 [](Application& application) { return &application.State().NonTrading(); });
}

int pu_resend_nontradingDate_Request() {
    return Serve(0, [](Application& application) { return application.ReloadCalendar() ? 1 : 0; });
}

RxControl* GetKeloRxControl(int kind, CKeloRxNotifierBase* notifier) {
    return Serve(static_cast<RxControl*>(nullptr),
                 [&](Application& application) { return application.Server().GetControl(kind, notifier); });
}

void DestoryKeloRxCOntrol(RxControl* control) {
    Serve(0, [&](Application& application) {
        application.Server().DestroyControl(control);
        return 0;
    });
}
