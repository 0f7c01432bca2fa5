// What each export of the host (HostExports.h) is for: what the dealer misses without it.
#pragma once

#include "sdk/HostExports.h"

#include <algorithm>
#include <iterator>

namespace sdk {

enum class Need : unsigned char {
    always, // without it the plug-in refuses to open a window
    orders, // without it no order can be placed or seen
    comfort // without it something is missing that is not needed for orders
};

struct HostExportUse {
    std::string_view name;
    Need need;
    std::string_view without;
};

inline constexpr HostExportUse kHostExportUses[] = {
    {"pu_get_exe_app", Need::always, "every menu entry is refused: \"Exe is not compatible with ZUP\""},
    {"pu_get_peer_data", Need::always,
     "every menu entry is refused: \"ZUP not compatible with Trader version\""},
    {"pu_is_actionright_enabled", Need::always,
     "every menu entry is refused: \"ZUP not compatible with Trader version\""},
    {"GetKeloRxControl", Need::orders, "nothing is sent or received: no order, no book, no frequencies"},
    {"DestoryKeloRxCOntrol", Need::orders, "nothing is sent or received: no order, no book, no frequencies"},
    {"pu_fill_scrip_combos", Need::orders, "the order form's lists of series and symbols stay empty"},
    {"pu_get_trading_symbol_n_token", Need::comfort,
     "the order form asks pu_get_intersted_scrip_field and pu_get_scrip_details_from_TradSymbol instead"},
    {"pu_load_client_id_combo", Need::orders,
     "a form without the client search (pu_get_entered_text_results) has no clients to choose from"},
    {"pu_get_entered_text_results", Need::comfort,
     "clients are chosen from the list of pu_load_client_id_combo, without a search"},
    {"pu_get_intersted_scrip_field", Need::comfort,
     "a basket finds no scrip by series and symbol; company names are missing"},
    {"pu_get_scrip_details_from_TradSymbol", Need::comfort,
     "a basket finds scrips by series and symbol only; prices count as rupees with two decimals"},
    {"pu_load_product_type_combo", Need::comfort, "the form offers the usual product only"},
    {"pu_add_to_tabbed_log", Need::comfort, "the terminal's log has no line of what was sent and refused"},
    {"pu_get_uuid", Need::comfort, "orders go without an identifier of their own"},
    {"pu_get_ActiveClient", Need::comfort, "forms do not open with the active client"},
    {"pu_get_client_name", Need::comfort, "clients are shown by their codes only"},
    {"pu_is_valid_account", Need::comfort, "unknown clients are not marked or asked about"},
    {"pu_get_all_mappedAccount_ids", Need::comfort, "the book follows the login, not the user's accounts"},
    {"pu_get_client_search_time", Need::comfort, "the client search waits its usual time"},
    {"pu_get_client_overview_status", Need::comfort, "the book follows the login, not the user's accounts"},
    {"pu_clear_FocusFromDropDown", Need::comfort, "the focus stays in a list after a pick"},
    {"pu_get_FontVariation", Need::comfort, "windows keep their own font size"},
    {"pu_resize_EditCtrlForFontChange", Need::comfort, "fields do not fit a changed font by the host's rule"},
    {"register_hotkey", Need::comfort, "the basket looks after its Del key itself"},
    {"pu_InvokeDialog", Need::comfort, "the basket looks after its Del key itself"},
    {"pu_read_settings_from_json", Need::comfort, "the kind of client search is not remembered"},
    {"pu_write_settings_to_json", Need::comfort, "the kind of client search is not remembered"},
    {"pu_get_UserDirectory", Need::comfort,
     "layouts, views and the orders of the day are not kept for the user"},
    {"pu_get_non_trading_dates_map", Need::comfort, "planned dates do not tell days without trading"},
    {"pu_resend_nontradingDate_Request", Need::comfort,
     "days without trading stay as they were when restricted dates change"},
    {"pu_invoke_caution_order_confirmation", Need::comfort,
     "orders go without the question about cautionary scrips"},
    {"pu_build_bskt_caution_order_map", Need::comfort,
     "baskets go without the question about cautionary scrips"},
    {"pu_invoke_bskt_caution_order_confirmation", Need::comfort,
     "baskets go without the question about cautionary scrips"},
    {"pu_get_cautionary_bskt_confirm_state", Need::comfort,
     "baskets go without the question about cautionary scrips"},
    {"pu_free_allocated_memory", Need::comfort, "the host is not told that a new basket begins"},
    {"pu_is_connected", Need::comfort, "the book does not say whether it is live"},
    {"pu_send_mrv_master_request", Need::comfort, "nothing: it is looked up but not called"},
};

#define VESK_ONE(...) +1
static_assert(std::size(kHostExportUses)
              == VESK_HOST_EXPORTS(VESK_ONE) VESK_HOST_EXPORTS_BESIDE_THE_TABLE(VESK_ONE));
#undef VESK_ONE
static_assert(std::ranges::all_of(kHostExportNames, [](std::string_view name) {
    return std::ranges::count(kHostExportUses, name, &HostExportUse::name) == 1;
}));

} // namespace sdk
