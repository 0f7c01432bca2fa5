// A plug-in that only tries out the host: it calls the exports and logs what they answer, so that a script can
// compare. It holds its windows in plain globals; nothing of it is delivered.
#include "framework/KeyboardHook.h"
#include "sdk/HeapStringManager.h"
#include "sdk/HostExports.h"
#include "sdk/PluginExports.h"

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>

#include <optional>
#include <string>

namespace {

HeapStringManager g_strings;
HWND g_dialog = nullptr;
HWND g_pane = nullptr;
HINSTANCE g_module = nullptr;
std::optional<framework::KeyboardHook> g_keys;

template <class Function>
Function* Host(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(nullptr), name)));
}
#define HOST(name) Host<sdk::fn::name>(#name)

// A boundary string of this module.
struct Str : CString {
    Str(std::string_view text = {}) : CString(text, g_strings) {}
};

void Log(const std::string& text) {
    PassedString line(text, g_strings);
    HOST(pu_add_to_tabbed_log)(line.Hand());
}

void LogNames() {
    std::string missing;
#define LOOK_UP(name, ...)                                                                                     \
    if (!HOST(name)) missing += " " #name;
    VESK_HOST_EXPORTS(LOOK_UP)
    VESK_HOST_EXPORTS_BESIDE_THE_TABLE(LOOK_UP)
#undef LOOK_UP
    Log("missing exports:" + missing + ".");
}

void LogScrips() {
    Str f[6];
    const int found =
        HOST(pu_get_intersted_scrip_field)(&static_cast<CString&>(f[0] = Str("nse_cm|EQ|ALPHATEX")), 0, 6,
                                           &f[0], &f[1], &f[2], &f[3], &f[4], &f[5]);
    std::string line = "fields " + std::to_string(found);
    for (const Str& field : f)
        line += '|' + std::string(field.View());
    Log(line);
    for (const char* exchange : {"nse_cm", "NSE", "nse"}) {
        ScripDetails details{};
        const Str code(exchange), symbol("ALPHATEX-EQ");
        const bool known = HOST(pu_get_scrip_details_from_TradSymbol)(&code, &symbol, &details) == &details;
        Log(std::string("details ") + exchange + ' ' + (known ? details.token : "none"));
    }
}

void LogClients() {
    const struct {
        int mode;
        const char* text;
    } searches[] = {{1, "CL100("}, {2, "cl10"}, {3, "CL10"}};
    for (const auto& search : searches) {
        int count = -1;
        const Str text(search.text);
        const ClientResult* results = HOST(pu_get_entered_text_results)(search.mode, &count, &text, 1);
        Log(std::string("search ") + search.text + ": " + std::to_string(count) + ' '
            + (results ? results[0].clientId : "none"));
    }
    CStringArray accounts;
    HOST(pu_get_all_mappedAccount_ids)(&accounts);
    const Str valid("cl100"), invalid("CL1");
    Str name, active;
    HOST(pu_get_client_name)(&name, &valid);
    HOST(pu_get_ActiveClient)(&active);
    Log("accounts " + std::to_string(accounts.Elements().size()) + ", valid "
        + std::to_string(HOST(pu_is_valid_account)(&valid))
        + std::to_string(HOST(pu_is_valid_account)(&invalid)) + ", name " + std::string(name.View())
        + ", active " + std::string(active.View()));
}

void LogSession() {
    Str first, second, value("before");
    HOST(pu_get_uuid)(&first);
    HOST(pu_get_uuid)(&second);
    const Str section("Probe"), key("a key"), written("a value"), right("QV: Planfold"), unknown("QV: Nothing");
    const int missing = HOST(pu_read_settings_from_json)(&section, &unknown, &value, 1);
    HOST(pu_write_settings_to_json)(&section, &key, &written, 1);
    const int found = HOST(pu_read_settings_from_json)(&section, &key, &value, 1);
    std::intptr_t variation = -1, size = -1;
    HOST(pu_get_FontVariation)(&variation, &size, nullptr, nullptr);
    const NonTradingDates* dates = HOST(pu_get_non_trading_dates_map)();
    const VeskApp* app = HOST(pu_get_exe_app)();
    Log("uuid differ " + std::to_string(first.View() != second.View() && first.Length() == 36) + ", settings "
        + std::to_string(missing) + std::to_string(found) + ' ' + std::string(value.View()) + ", rights "
        + std::to_string(HOST(pu_is_actionright_enabled)(&right))
        + std::to_string(HOST(pu_is_actionright_enabled)(&unknown)) + ", font " + std::to_string(variation)
        + '/' + std::to_string(size) + ", dates " + std::to_string(dates->count > 0) + ", frame "
        + std::to_string(app->size == sizeof *app && IsWindow(app->mainFrame)));
}

int Caution(const char* symbol) {
    const Str client("CL100"), type("value"), product("CNC"), value("100"), name(symbol), exchange("nse_cm");
    return HOST(pu_invoke_caution_order_confirmation)(&client, &type, &product, &value, &name, &exchange);
}

void FillDialog(HWND dialog) {
    const HWND exchange = GetDlgItem(dialog, 1003);
    for (const char* shown : {"NSE", "BSE"})
        SendMessageA(exchange, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(shown));
    SendMessageA(exchange, CB_SETCURSEL, 0, 0);
    HOST(pu_fill_scrip_combos)(dialog, 1003, 1005, 1008, 1048, 1049, 1050, 0);
    const Str group("Probe"), text("Ask"), key("F6"), del("del");
    HOST(register_hotkey)(dialog, &group, 193, &text, &text, &key);
    HOST(register_hotkey)(dialog, &group, 194, &text, &text, &del);
}

void Ask(HWND dialog) {
    const int answer = MessageBoxA(dialog, "Probe question", "Probe", MB_YESNO);
    Log(answer == IDYES ? "probe answered yes" : "probe answered no");
}

void FillList(HWND list) {
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.cx = 100;
    LVITEMA item{};
    item.mask = LVIF_TEXT;
    for (const char* heading : {"First", "Second"}) {
        column.pszText = const_cast<char*>(heading);
        SendMessageA(list, LVM_INSERTCOLUMNA, 1, reinterpret_cast<LPARAM>(&column));
    }
    for (const char* text : {"lower", "upper"}) {
        item.iSubItem = 0;
        item.pszText = const_cast<char*>(text);
        SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
        item.iSubItem = 1;
        SendMessageA(list, LVM_SETITEMTEXTA, 0, reinterpret_cast<LPARAM>(&item));
    }
}

void ShowContextMenu(HWND dialog) {
    const HMENU menu = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 25001, "First");
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(menu, MF_STRING | MF_GRAYED, 25003, "Greyed");
    AppendMenuA(menu, MF_STRING, 25002, "Delete\tDel");
    TrackPopupMenu(menu, 0, 300, 300, 0, dialog, nullptr);
    DestroyMenu(menu);
}

void OpenFile(HWND dialog) {
    char path[MAX_PATH] = "";
    OPENFILENAMEA open{};
    open.lStructSize = sizeof open;
    open.hwndOwner = dialog;
    open.lpstrFile = path;
    open.nMaxFile = sizeof path;
    open.lpstrFilter = "All Files (*.*)\0*.*\0";
    Log(GetOpenFileNameA(&open) ? std::string("opened ") + path : "nothing opened");
}

void OnCommand(HWND dialog, int id, int notification) {
    const auto fill = [&](int flag) {
        HOST(pu_fill_scrip_combos)(dialog, 1003, 1005, 1008, 1048, 1049, 1050, flag);
    };
    if (id == 1003 && notification == CBN_SELCHANGE) fill(0);
    if (id == 1005 && notification == CBN_SELCHANGE) fill(1);
    if (id == 1008 && notification == CBN_SELCHANGE) {
        Str symbol, token;
        HOST(pu_get_trading_symbol_n_token)(dialog, 1003, 1005, 1008, 1048, 1049, 1050, &symbol, &token);
        Log("picked " + std::string(symbol.View()) + ' ' + std::string(token.View()));
    }
    if (id == 1034) Ask(dialog);
    if (id == 1036) OpenFile(dialog);
    if (id == 25001 || id == 25002)
        Log("command " + std::to_string(id) + " for row "
            + std::to_string(ListView_GetNextItem(GetDlgItem(dialog, 1100), -1, LVNI_SELECTED)));
    if (id == 1035)
        Log("caution " + std::to_string(Caution("ALPHATEX-EQ")) + std::to_string(Caution("NOWHERE-EQ"))
            + std::to_string(Caution("ARBORTOOLS-EQ")));
    if (id == IDCANCEL) DestroyWindow(dialog);
}

INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        FillDialog(dialog);
        FillList(GetDlgItem(dialog, 1100));
        framework::KeyboardHook::Enroll(dialog);
        return TRUE;
    case WM_COMMAND:
        OnCommand(dialog, LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_CONTEXTMENU:
        ShowContextMenu(dialog);
        return TRUE;
    case WM_USER + 193:
    case WM_USER + 194:
        Log("hot key " + std::to_string(wParam));
        return TRUE;
    case WM_DESTROY:
        g_dialog = nullptr;
        return TRUE;
    default:
        return FALSE;
    }
}

LRESULT CALLBACK PaneProcedure(HWND pane, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    if (message == 1214) Log(std::string("pane is told ") + reinterpret_cast<const char*>(lParam));
    return DefSubclassProc(pane, message, wParam, lParam);
}

void ShowPane() {
    const HWND frame = HOST(pu_get_exe_app)()->mainFrame;
    if (!g_pane) {
        g_pane = CreateWindowExA(0, "STATIC", "Probe Pane", WS_CHILD | WS_BORDER, 0, 0, 200, 200, frame,
                                 reinterpret_cast<HMENU>(INT_PTR{104}), g_module, nullptr);
        SetWindowSubclass(g_pane, PaneProcedure, 1, 0);
        SendMessageA(frame, 1933, reinterpret_cast<WPARAM>(g_pane), 0);
    }
    ShowWindow(g_pane, IsWindowVisible(g_pane) ? SW_HIDE : SW_SHOW);
}

void LogPane() {
    RECT pane{}, frame{};
    GetClientRect(g_pane, &pane);
    GetClientRect(GetParent(g_pane), &frame);
    Log("pane width differs by " + std::to_string(frame.right - pane.right) + ", visible "
        + std::to_string(IsWindowVisible(g_pane)));
}

struct Entry {
    const char* text;
    void (*run)();
};
const Entry kEntries[] = {
    {"Exports",
     [] {
         LogNames();
         LogScrips();
         LogClients();
         LogSession();
     }},
    {"Dialog",
     [] {
         if (!g_keys) g_keys.emplace();
         if (!g_dialog)
             g_dialog = CreateDialogParamA(g_module, MAKEINTRESOURCEA(1007), nullptr, DialogProcedure, 0);
     }},
    {"Pane", ShowPane},
    {"Pane Size", LogPane},
    {"Destroy Pane",
     [] {
         DestroyWindow(g_pane);
         g_pane = nullptr;
     }},
    {"Box", [] { Ask(nullptr); }},
};

} // namespace

extern "C" {

__declspec(dllexport) int GetVeskPluginInfo(CString* name, CString* version, CStringArray* menu,
                                            std::uint32_t* buildStamp, std::uint32_t* interfaceNumber) {
    // A shared buffer of this module's own manager: the host must let go of it before it unloads the module.
    *name = static_cast<const CString&>(Str("Probe"));
    *version = std::string_view("1.0");
    for (const Entry& entry : kEntries)
        menu->Append(entry.text, g_strings);
    *buildStamp = *interfaceNumber = 1;
    return 1;
}

__declspec(dllexport) void InitVeskPlugin(void*, const char* loginId, std::int32_t loginMode,
                                          CString* menuEntry) {
    const TakenString entry(menuEntry);
    Log(std::string("picked by ") + loginId + " in mode " + std::to_string(loginMode));
    for (const Entry& known : kEntries)
        if (entry.View() == known.text) known.run();
}

__declspec(dllexport) int AlertOn_ClientActivation(CString* client) {
    Log("activated " + std::string(client->View()));
    return 1;
}

__declspec(dllexport) void ApplyFontVarPreference(void*, void*, void*, void*) {
    Log("font changed");
}

__declspec(dllexport) std::intptr_t ExitVeskPlugin() {
    g_keys.reset();
    if (g_dialog) DestroyWindow(g_dialog);
    Log("probe strings live at exit: " + std::to_string(g_strings.LiveBuffers()));
    return 0;
}

BOOL WINAPI DllMain(HINSTANCE module, DWORD, void*) {
    g_module = module;
    return TRUE;
}
}
