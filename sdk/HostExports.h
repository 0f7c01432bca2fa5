// Every function that the plug-in looks for in the host executable, as one list.
//
// Thread:   all are called on the GUI thread.
// Owner:    strings passed as `const CString*` stay the caller's; those passed as `CString*` are filled by
//           the host; `ByValueString` is a temporary that the callee destroys (PassedString).
// Lifetime: returned records belong to the host. Search results live until the next search from any
//           window; the non-trading dates' record lives as long as the host, its contents until the next
//           call; scrip details are copied into the caller's record.
// Failure:  0 or null unless said otherwise. Each export may be missing: its pointer is then null and only
//           the behaviour that needs it is gone.
#pragma once

#include "sdk/CString.h"
#include "sdk/CStringArray.h"
#include "sdk/HostRecords.h"
#include "sdk/HostWindow.h"
#include "sdk/RxControl.h"

#include <array>
#include <cstddef>
#include <string_view>

using InString = const CString*;
using OutString = CString*;
using ByValueString = CString*;

// X(name, function type), in the order of the callback table. All results are 0 or null for "no", "not found"
// or "failed", unless said otherwise.
//
// Scrips and the order forms. `dialog` is a form of the plug-in; the numbers are identifiers of its controls.
//   pu_fill_scrip_combos(dialog, 1003, 1005, 1008, 1048, 1049, 1050, flag): flag 0 refills the series combo
//   (1005) for
//     the exchange that is selected in 1003, with "EQ" first, then the symbols (1008); flag 1 the symbols only.
//     The host never fills 1003 and selects nothing; 1048 to 1050 stay empty for equities.
//   pu_get_trading_symbol_n_token(dialog, the same six, symbol, exchangeAndToken): of the scrip that the form
//   shows:
//     "BASALTAGRO-EQ" and "nse_cm|1045". Non-zero when found.
//   pu_get_intersted_scrip_field(key, 0, 6, f0..f5): `key` is "exchange code|series|symbol"; the texts become
//   exchange
//     code, series, symbol, token, trading symbol and company name. Non-zero when found.
//   pu_get_scrip_details_from_TradSymbol(exchange, tradingSymbol, out): the exchange as code ("nse_cm") or as
//   shown
//     ("NSE"). Fills `out` and returns it; null when the scrip is unknown.
//   pu_resize_EditCtrlForFontChange(edit), pu_clear_FocusFromDropDown(combo, dialog): the host fits the edit to
//   a new
//     font, and takes the focus from a drop-down list once a pick closed it. Both may change the window.
//
// Clients.
//   pu_load_client_id_combo(dialog, combo), pu_load_product_type_combo(dialog, combo): add the user's clients,
//   or the
//     products, to the combo.
//   pu_is_valid_account(account): non-zero when it is one of the user's accounts.
//   pu_get_entered_text_results(mode, count, text, 1): the matches of a search; mode 1 all, 2 identifiers, 3
//   names.
//     The array and its texts are the host's until the next search of any window: copy what is to be kept.
//   pu_get_client_name(name, client): the name of the client. Non-zero when the client is known.
//   pu_get_ActiveClient(client): the client that is active in the host; empty for none.
//   pu_get_all_mappedAccount_ids(accounts): appends every account of the user to an empty array.
//   pu_get_client_overview_status(0): a yes or no in the low byte; the rest is undefined.
//   pu_get_client_search_time(): milliseconds from the last typed letter to the search; 0 for the usual 3000.
//
// Controls, identity and rights.
//   GetKeloRxControl(kind, notifier): a control of this RxControlKind, which calls the notifier until it is
//   given back;
//     null when there is none. DestoryKeloRxCOntrol(control) gives it back; a stream is stopped before.
//   pu_get_peer_data(peerIdA, peerIdB, other): broker and branch of the login.
//   pu_get_uuid(identifier): a new unique identifier for one order; 0 when there is none, and the order goes
//   without. pu_is_actionright_enabled(right): non-zero when the user holds the right, such as "QV: Planfold".
//   pu_get_exe_app(): the host application; null when it has none.
//
// Questions to the user. Each may open a box and run a message loop: everything may have changed when it
// returns.
//   pu_invoke_caution_order_confirmation(client, investType, product, value, tradingSymbol, exchangeCode):
//   `value` in
//     paise or shares. 1 the order is sent with the cautionary flag "Y", 0 with "N", anything else without one.
//   pu_build_bskt_caution_order_map(the same six, row): describes one row of a basket, from 0. Then, once for
//   all,
//     pu_invoke_bskt_caution_order_confirmation(): 1 the user confirmed. Then, a row,
//     pu_get_cautionary_bskt_confirm_state(tradingSymbol, exchangeCode, row): 1 the row carries the flag of
//     that answer, 0 the row is not sent at all, anything else it is sent without a flag.
//   pu_free_allocated_memory(): forgets the rows of a basket; called before the next one.
//
// The terminal.
//   pu_add_to_tabbed_log(text): adds a line to the log. The text is passed by value.
//   register_hotkey(window, group, command, text, description, key): pressing `key` posts WM_USER + command to
//   the
//     window. pu_InvokeDialog is only tested for: with both, the host owns the key.
//   pu_read_settings_from_json(section, key, value, 1), pu_write_settings_to_json(section, key, value, 1): a
//   setting of
//     the user, as text. Non-zero when it was read or written.
//   pu_get_FontVariation(variation, size, third, fourth): points to add, which may be negative, and the size in
//   points,
//     0 for the windows' own. The last two are what the host itself passed to ApplyFontVarPreference.
//   pu_get_UserDirectory(directory): the full path in which the user's files are kept, without a closing
//   backslash. pu_get_non_trading_dates_map(): days without trading (HostRecords.h); null when the host knows
//   none. pu_resend_nontradingDate_Request(): asks the host to fetch them again.
//   pu_send_mrv_master_request(exchange, number): part of the table; not called.
//   pu_is_connected(): non-zero while the host has its connection to the server. Hosts may do without it.
//
// Example, with a pointer that was found by name (HostLookup of the plug-in, or GetProcAddress):
//
//     sdk::fn::pu_get_uuid* getUuid = ...;
//     CString identifier(strings);
//     if (getUuid && getUuid(&identifier)) Send(identifier.View());
#define VESK_HOST_EXPORTS(X)                                                                                   \
    X(pu_fill_scrip_combos, int(HostWindow dialog, int, int, int, int, int, int, int flag))                    \
    X(pu_get_trading_symbol_n_token,                                                                           \
      int(HostWindow dialog, int, int, int, int, int, int, OutString symbol, OutString exchangeAndToken))      \
    X(pu_get_intersted_scrip_field,                                                                            \
      int(InString key, int zero, int six, OutString, OutString, OutString, OutString, OutString, OutString))  \
    X(pu_get_scrip_details_from_TradSymbol,                                                                    \
      ScripDetails*(InString exchange, InString tradingSymbol, ScripDetails * out))                            \
    X(register_hotkey,                                                                                         \
      int(HostWindow window, InString group, int command, InString text, InString description, InString key))  \
    X(pu_InvokeDialog, int(int dialog, HostWindow caller))                                                     \
    X(GetKeloRxControl, RxControl*(int kind, CKeloRxNotifierBase* notifier))                                   \
    X(DestoryKeloRxCOntrol, void(RxControl * control))                                                         \
    X(pu_get_client_search_time, int())                                                                        \
    X(pu_add_to_tabbed_log, int(ByValueString text))                                                           \
    X(pu_load_client_id_combo, int(HostWindow dialog, int combo))                                              \
    X(pu_get_peer_data, int(OutString peerIdA, OutString peerIdB, OutString other))                            \
    X(pu_get_uuid, int(OutString identifier))                                                                  \
    X(pu_get_ActiveClient, int(OutString client))                                                              \
    X(pu_get_FontVariation, int(std::intptr_t * variation, std::intptr_t * size, void*, void*))                \
    X(pu_clear_FocusFromDropDown, int(HostWindow combo, HostWindow dialog))                                    \
    X(pu_resize_EditCtrlForFontChange, int(HostWindow edit))                                                   \
    X(pu_is_valid_account, int(InString account))                                                              \
    X(pu_get_entered_text_results, const ClientResult*(int mode, int* count, InString text, int one))          \
    X(pu_read_settings_from_json, int(InString section, InString key, OutString value, int one))               \
    X(pu_write_settings_to_json, int(InString section, InString key, InString value, int one))                 \
    X(pu_get_client_name, int(OutString name, InString client))                                                \
    X(pu_get_client_overview_status, int(int zero))                                                            \
    X(pu_get_all_mappedAccount_ids, int(CStringArray * accounts))                                              \
    X(pu_get_non_trading_dates_map, const NonTradingDates*())                                                  \
    X(pu_resend_nontradingDate_Request, int())                                                                 \
    X(pu_get_UserDirectory, int(OutString directory))                                                          \
    X(pu_invoke_caution_order_confirmation, int(InString client, InString investType, InString product,        \
                                                InString value, InString symbol, InString exchange))           \
    X(pu_build_bskt_caution_order_map, int(InString client, InString investType, InString product,             \
                                           InString value, InString symbol, InString exchange, int row))       \
    X(pu_invoke_bskt_caution_order_confirmation, int())                                                        \
    X(pu_get_cautionary_bskt_confirm_state, int(InString symbol, InString exchange, int row))                  \
    X(pu_free_allocated_memory, int())                                                                         \
    X(pu_send_mrv_master_request, int(InString exchange, int))

// Looked up where they are used, not part of the table.
#define VESK_HOST_EXPORTS_BESIDE_THE_TABLE(X)                                                                  \
    X(pu_is_actionright_enabled, int(InString right))                                                          \
    X(pu_get_exe_app, VeskApp*())                                                                              \
    X(pu_is_connected, int())                                                                                  \
    X(pu_load_product_type_combo, int(HostWindow dialog, int combo))

namespace sdk {

enum class HostExport : int {
#define VESK_ENUMERATOR(name, ...) name,
    VESK_HOST_EXPORTS(VESK_ENUMERATOR)
#undef VESK_ENUMERATOR
        count
};

inline constexpr std::array kHostExportNames{
#define VESK_NAME(name, ...) std::string_view(#name),
    VESK_HOST_EXPORTS(VESK_NAME)
#undef VESK_NAME
};
static_assert(kHostExportNames.size() == static_cast<std::size_t>(HostExport::count));
static_assert(kHostExportNames.size() == 33);

// Function types by name, for the plug-in's pointers and the host's definitions alike:
// `sdk::fn::pu_get_uuid* pointer`.
namespace fn {
#define VESK_TYPE(name, ...) using name = __VA_ARGS__;
VESK_HOST_EXPORTS(VESK_TYPE)
VESK_HOST_EXPORTS_BESIDE_THE_TABLE(VESK_TYPE)
#undef VESK_TYPE
} // namespace fn

} // namespace sdk
