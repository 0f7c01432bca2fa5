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

// X(name, function type), in the order of the callback table.
//
// pu_fill_scrip_combos: flag 0 refills the series combo (1005) for the exchange selected in 1003, then the
//   symbols (1008); flag 1 the symbols only. The host selects nothing.
// pu_get_trading_symbol_n_token: the second text is exchange code, "|", token; non-zero when found.
// pu_get_intersted_scrip_field: key "exchange code|series|symbol"; the six texts are exchange code, series,
//   symbol, token, trading symbol, company name; non-zero when found.
// pu_get_scrip_details_from_TradSymbol: the exchange as code or as shown; null when unknown.
// pu_get_FontVariation: points to add (may be negative), then size in points, 0 for the template's own.
// pu_invoke_caution_order_confirmation: client, invest type, product, amount or quantity, trading symbol,
//   exchange code; 1 cautionary, 0 not, anything else undecided. May ask the user and run a message loop.
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
