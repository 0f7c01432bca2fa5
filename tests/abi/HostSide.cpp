#include "HostSide.h"

#include "Support.h"

#define EXPORTED extern "C" __declspec(dllexport)

namespace {

constinit HostState g_host = {};
constinit VeskApp g_app = {};

class RequestControl final : public RxControl {
public:
    void Slot0() override { ++g_host.wrongSlots; }
    void Slot1() override { ++g_host.wrongSlots; }
    void Slot2() override { ++g_host.wrongSlots; }
    void Slot3() override { ++g_host.wrongSlots; }
    int SendRequest(uint64_t* number, void* message, int zero, QmxError* error) override {
        g_host.wrongSlots += !message || zero != 0 || !error;
        if (number) *number = static_cast<uint64_t>(++g_host.requests);
        return 1;
    }
    int Subscribe(uint64_t*, const unsigned* tags, const QmxDatum* values, unsigned count, RxControl* self,
                  int a, int b, int one, QmxError* error) override {
        g_host.wrongSlots += !tags || !values || !count || self != this || a || b || one != 1 || !error;
        return 1;
    }
    void Slot6() override { ++g_host.wrongSlots; }
    void Slot7() override { ++g_host.wrongSlots; }
    void Slot8() override { ++g_host.wrongSlots; }
    void Slot9() override { ++g_host.wrongSlots; }
    void Slot10() override { ++g_host.wrongSlots; }
    void Slot11() override { ++g_host.wrongSlots; }
    void Slot12() override { ++g_host.wrongSlots; }
    void Slot13() override { ++g_host.wrongSlots; }
    void Slot14() override { ++g_host.wrongSlots; }
    int Stop(int zero) override {
        g_host.wrongSlots += zero != 0;
        return 1;
    }
};
constinit RequestControl g_controls[16];

void AddItem(HWND dialog, int combo, const char* text) {
    SendMessageA(GetDlgItem(dialog, combo), kCbAddString, 0, reinterpret_cast<intptr_t>(text));
}

void Clear(HWND dialog, int combo) {
    SendMessageA(GetDlgItem(dialog, combo), kCbResetContent, 0, 0);
}

} // namespace

HostState& Host() {
    return g_host;
}

EXPORTED VeskApp* pu_get_exe_app() {
    g_app = {sizeof g_app, 0, g_host.hasMainFrame ? g_host.mainFrame : nullptr, GetModuleHandleA(nullptr)};
    return &g_app;
}

EXPORTED int pu_is_actionright_enabled(const CString* right) {
    if (Same(right->Text(), "QV: Planfold")) return g_host.mayUse;
    if (Same(right->Text(), "QV: Planfold: SIP Set Restricted Date")) return g_host.mayRestrictDates;
    return 0;
}

EXPORTED int pu_get_peer_data(CString* a, CString* b, CString* other) {
    *a = "PEERA";
    *b = "PEERB";
    *other = "";
    return 1;
}

EXPORTED int pu_get_uuid(CString* identifier) {
    *identifier = "an identifier that is longer than any text the plug-in had in this string before";
    return 1;
}

EXPORTED RxControl* GetKeloRxControl(int kind, CKeloRxNotifierBase* notifier) {
    const size_t taken = Length(g_host.kinds);
    if (taken + 1 == sizeof g_host.kinds) return nullptr;
    AppendNumber(g_host.kinds, sizeof g_host.kinds, kind);
    if (taken == 0) g_host.firstNotifier = notifier;
    ++g_host.liveControls;
    return &g_controls[taken];
}

EXPORTED void DestoryKeloRxCOntrol(RxControl* control) {
    if (control) --g_host.liveControls;
}

// By value: this compiler lets this function, the callee, destroy the plug-in's string.
EXPORTED int pu_add_to_tabbed_log(CString text) {
    Copy(g_host.log, sizeof g_host.log, text.Text());
    ++g_host.logLines;
    return 1;
}

EXPORTED int pu_fill_scrip_combos(HWND dialog, int, int series, int symbols, int, int, int, int flag) {
    if (flag == 0) {
        Clear(dialog, series);
        AddItem(dialog, series, "EQ");
    }
    Clear(dialog, symbols);
    AddItem(dialog, symbols, "ARBORTEX");
    return 1;
}

EXPORTED int pu_get_trading_symbol_n_token(HWND, int, int, int, int, int, int, CString* symbol,
                                           CString* token) {
    *symbol = "ARBORTEX-EQ";
    *token = "nse_cm|1013";
    return 1;
}

EXPORTED int pu_load_client_id_combo(HWND dialog, int combo) {
    AddItem(dialog, combo, "C001");
    return 1;
}

EXPORTED int pu_load_product_type_combo(HWND dialog, int combo) {
    AddItem(dialog, combo, "CNC");
    return 1;
}

EXPORTED int pu_invoke_caution_order_confirmation(const CString* client, const CString* investType,
                                                  const CString* product, const CString* value,
                                                  const CString* symbol, const CString* exchange) {
    auto& caution = g_host.caution;
    caution[0] = 0;
    const CString* const texts[] = {client, investType, product, value, symbol, exchange};
    for (const CString* text : texts) {
        Append(caution, sizeof caution, text->Text());
        Append(caution, sizeof caution, ";");
    }
    return 0;
}

EXPORTED int pu_get_FontVariation(intptr_t* variation, intptr_t* size, void* third, void* fourth) {
    *variation = 2;
    *size = 0;
    g_host.fontArguments[0] = reinterpret_cast<intptr_t>(third);
    g_host.fontArguments[1] = reinterpret_cast<intptr_t>(fourth);
    return 1;
}

EXPORTED int pu_get_UserDirectory(CString*) {
    return 0;
}

EXPORTED const NonTradingDates* pu_get_non_trading_dates_map() {
    static const NonTradingDates none = {};
    return &none;
}
