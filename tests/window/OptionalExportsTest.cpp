// A host that lacks one of the optional exports: one order is placed, and only what needs the export may
// differ.
#include "tests/window/PluginTest.h"

namespace {

struct Change {
    std::string_view from, to;
};
struct LackRow {
    const char* name;
    std::vector<Change> changes;
    const char* hiddenToo = nullptr;
};

constexpr std::string_view kTextStart = "opening: ", kSubmitStart = "submit: ", kLogStart = "log: ";
constexpr std::string_view kRequest =
    "0=add_sip_orders;63001=nse_cm;10100=2901;63100=BYTEFIN-EQ;12003=B;12008=MKT;64030=CNC;54152=value;53063="
    "123450;"
    "10012=monthly;49165=DATE;63415=12;31003=LOGIN;54056=C;54001=C002;12005=DAY;64056=PEERA;64053=PEERB;"
    "54158=UUID-1;53405=N;64756=TWS;";
constexpr std::string_view kLogLine =
    "NSE BUY SIP Order : Status : Trigger Pending CNC BYTEFIN-EQ at 1234.50 DAY monthly for period : 12 Months "
    "Client ID : C002 by LOGIN|";

// All that one order leaves behind, as text.
std::string Dump(std::string_view opening, std::string_view request, std::string_view log,
                 std::string_view submit) {
    std::string text;
    for (const auto& [start, part] :
         {std::pair(kTextStart, opening), {"request: ", request}, {kLogStart, log}, {kSubmitStart, submit}})
        text.append(start).append(part).append("\n");
    return text;
}

std::string Changed(const LackRow& row) {
    std::string text = Dump("", kRequest, kLogLine, "");
    for (const auto& [from, to] : row.changes) {
        const auto at = text.find(from);
        if (at == text.npos) return "no such part: " + std::string(from);
        text.replace(at, from.size(), to);
    }
    return text;
}

constexpr std::string_view kNoControlAtOpening = "opening: Sending Request add_sip_orders Failed|";
constexpr std::string_view kNoControlAtSubmit = "submit: Sending Request add_sip_orders Failed|";

const LackRow kLacks[] = {
    {"pu_get_uuid", {{"54158=UUID-1;", ""}}},
    {"pu_invoke_caution_order_confirmation", {{"53405=N;", ""}}},
    {"pu_add_to_tabbed_log", {{kLogLine, ""}}},
    {"pu_get_trading_symbol_n_token",
     {{kLogStart,
       "log: SIP OrderDetails Get Trading Symbol -Exng : nse_cm,Series : EQ,Symbol : BYTEFIN,TradingSymbol : "
       "BYTEFIN-EQ |SIP OrderDetails Get Token -Exng : NSE,Trading Symbol : BYTEFIN-EQ,Token : 2901 |"}}},
    {"pu_fill_scrip_combos",
     {{"63001=nse_cm;10100=2901;63100=BYTEFIN-EQ;", "63001=null;10100=null;63100=null;"},
      {"CNC BYTEFIN-EQ at", "CNC  at"}}},
    {"pu_load_client_id_combo",
     {{"54001=C002", "54001=null"}, {"Client ID : C002", "Client ID : "}},
     "pu_get_entered_text_results"},
    {"GetKeloRxControl",
     {{kTextStart, kNoControlAtOpening},
      {kRequest, "(none)"},
      {kLogLine, ""},
      {kSubmitStart, kNoControlAtSubmit}}},
    {"DestoryKeloRxCOntrol",
     {{kTextStart, kNoControlAtOpening},
      {kRequest, "(none)"},
      {kLogLine, ""},
      {kSubmitStart, kNoControlAtSubmit}}},
    // What order entry does not need makes no difference.
    {"pu_get_intersted_scrip_field", {}},
    {"pu_get_scrip_details_from_TradSymbol", {}},
    {"register_hotkey", {}},
    {"pu_InvokeDialog", {}},
    {"pu_get_client_search_time", {}},
    {"pu_get_ActiveClient", {}},
    {"pu_get_FontVariation", {}},
    {"pu_clear_FocusFromDropDown", {}},
    {"pu_resize_EditCtrlForFontChange", {}},
    {"pu_is_valid_account", {}},
    {"pu_get_entered_text_results", {}},
    {"pu_read_settings_from_json", {}},
    {"pu_write_settings_to_json", {}},
    {"pu_get_client_name", {}},
    {"pu_get_client_overview_status", {}},
    {"pu_get_all_mappedAccount_ids", {}},
    {"pu_get_non_trading_dates_map", {}},
    {"pu_resend_nontradingDate_Request", {}},
    {"pu_get_UserDirectory", {}},
    {"pu_build_bskt_caution_order_map", {}},
    {"pu_invoke_bskt_caution_order_confirmation", {}},
    {"pu_get_cautionary_bskt_confirm_state", {}},
    {"pu_free_allocated_memory", {}},
    {"pu_send_mrv_master_request", {}},
    {"pu_load_product_type_combo", {}},
};
// Every optional export is tried: the table's, without the one that is required, and one beside the table.
static_assert(std::size(kLacks) == sdk::kHostExportNames.size() - 1 + 1);

// Told once by each window that takes controls; how many there are is not this test's business.
constexpr std::string_view kIncompatible = "Exe is not compatible with the plugin|";

std::string WithoutIncompatible(std::string texts, int& count) {
    for (count = 0; texts.starts_with(kIncompatible); ++count)
        texts.erase(0, kIncompatible.size());
    return texts;
}

class OptionalExports : public PluginTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(OptionalExports, OnlyWhatNeedsItIsGone) {
    const LackRow& row = kLacks[GetParam()];
    const HiddenExport hidden(row.name);
    std::optional<HiddenExport> hiddenToo;
    if (row.hiddenToo) hiddenToo.emplace(row.hiddenToo);
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    int incompatible = 0;
    const std::string opening = WithoutIncompatible(boxes.Texts(), incompatible);
    const bool takesControls = std::string_view(row.name).find("KeloRx") == std::string_view::npos;
    EXPECT_EQ(incompatible == 0, takesControls) << incompatible;

    if (!host.controls.empty()) AnswerDefaults();
    probe::Select(dialog, order::kSymbol, "BYTEFIN");
    if (!row.hiddenToo) ChooseClient(dialog, "C002");
    probe::Select(dialog, order::kFrequency, "monthly");
    probe::SetEdit(dialog, order::kValue, "1234.5");
    probe::SetEdit(dialog, order::kPeriod, "12");
    boxes.Clear();
    probe::Press(dialog, order::kSubmit);

    std::string log;
    for (const std::string& line : host.log)
        log += line + "|";
    EXPECT_EQ(Dump(opening, WithoutDate(host.LastRequest()), log, boxes.Texts()), Changed(row));
    EXPECT_EQ(plugin->Activate("C001"), 1);
    plugin->ApplyFont();
    for (const char* entry : {"SIP Basket Entry", "SIP Registration Book", "SIP Set Restricted Date"})
        plugin->Pick(entry);
    EXPECT_EQ(boxes.Texts().find(kIncompatible), std::string::npos) << "told at the construction only";
}

INSTANTIATE_TEST_SUITE_P(All, OptionalExports, testing::Range<std::size_t>(0, std::size(kLacks)),
                         [](const auto& row) { return std::string(kLacks[row.param].name); });

} // namespace
