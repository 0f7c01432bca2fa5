// A host that lacks one of the optional exports: one order is placed, and only what needs the export may
// differ.
#include "tests/window/PluginTest.h"

namespace {

struct LackRow {
    const char* name;
    std::vector<std::pair<std::string_view, std::string_view>> changes; // from, to
    const char* hiddenToo = nullptr;
};

constexpr std::string_view kOpening = "opening: \n", kSubmit = "submit: \n", kLogStart = "log: ";
const std::string kRequest =
    TextOf(Order("token=2901 tradingSymbol=BYTEFIN-EQ startDate=DATE loginId=LOGIN account=C002 "
                 "peerIdA=PEERA peerIdB=PEERB"))
    + " orderId=UUID-1 cautionaryFlag=N orderSource=TWS";
constexpr std::string_view kLogLine =
    "NSE BUY SIP Order : Status : Trigger Pending CNC BYTEFIN-EQ at 1234.50 DAY monthly for period : 12 Months "
    "Client ID : C002 by LOGIN|";

const std::vector<std::pair<std::string_view, std::string_view>> kNoControl{
    {kOpening, "opening: Sending Request add_sip_orders Failed|\n"},
    {kRequest, "(none)"},
    {kLogLine, ""},
    {kSubmit, "submit: Sending Request add_sip_orders Failed|\n"},
};
const LackRow kLacks[] = {
    {"pu_get_uuid", {{"orderId=UUID-1 ", ""}}},
    {"pu_invoke_caution_order_confirmation", {{"cautionaryFlag=N ", ""}}},
    {"pu_add_to_tabbed_log", {{kLogLine, ""}}},
    {"pu_get_trading_symbol_n_token",
     {{kLogStart,
       "log: SIP OrderDetails Get Trading Symbol -Exng : nse_cm,Series : EQ,Symbol : BYTEFIN,TradingSymbol : "
       "BYTEFIN-EQ |SIP OrderDetails Get Token -Exng : NSE,Trading Symbol : BYTEFIN-EQ,Token : 2901 |"}}},
    {"pu_fill_scrip_combos",
     {{"exchange=nse_cm token=2901 tradingSymbol=BYTEFIN-EQ ", "exchange= token= tradingSymbol= "},
      {"CNC BYTEFIN-EQ at", "CNC  at"}}},
    {"pu_load_client_id_combo",
     {{"account=C002", "account="},
      {"Client ID : C002", "Client ID : "},
      {kSubmit, "submit: The order names no client.\nPlace the order all the same?|\n"}},
     "pu_get_entered_text_results"},
    {"GetKeloRxControl", kNoControl},
    {"DestoryKeloRxCOntrol", kNoControl},
};

// Says all that one order leaves behind.
std::string Dump(std::string_view opening, std::string request, const Texts& log, std::string_view submit) {
    constexpr std::string_view tag = " startDate=";
    if (const auto from = request.find(tag); from != request.npos) {
        const auto value = from + tag.size();
        request.replace(value, request.find(' ', value) - value, "DATE");
    }
    std::string text = "opening: " + std::string(opening) + "\nrequest: " + request + "\nlog: ";
    for (const std::string& line : log)
        text += line + "|";
    return text + "\nsubmit: " + std::string(submit) + "\n";
}

std::string Changed(const LackRow& row) {
    std::string text = Dump("", kRequest, {std::string(kLogLine, 0, kLogLine.size() - 1)}, "");
    for (const auto& [from, to] : row.changes)
        text.replace(text.find(from), from.size(), to);
    return text;
}

TEST_F(PluginTest, EachMissingOptionalExportTakesOnlyWhatNeedsItAway) {
    // Told once by each window that takes controls; how many there are is not this test's business.
    constexpr std::string_view incompatible = "Exe is not compatible with the plugin|";
    for (const std::string_view name : sdk::kHostExportNames) {
        if (name == "pu_get_peer_data") continue; // required
        SCOPED_TRACE(name);
        LackRow row{name.data(), {}};
        for (const LackRow& known : kLacks)
            if (name == known.name) row = known;
        const HiddenExport hidden(row.name);
        // Without a record nobody asks about the same order again.
        const HiddenExport noFolder("pu_get_UserDirectory");
        std::optional<HiddenExport> hiddenToo;
        if (row.hiddenToo) hiddenToo.emplace(row.hiddenToo);
        host.requests.clear();
        host.log.clear();
        HWND dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        std::string opening = boxes.Texts();
        const bool takesControls = name.find("KeloRx") == name.npos;
        EXPECT_EQ(!opening.starts_with(incompatible), takesControls);
        while (opening.starts_with(incompatible))
            opening.erase(0, incompatible.size());

        if (takesControls) AnswerDefaults();
        FillGoodOrder(dialog, row.hiddenToo ? "" : "C002");
        // Frequencies that no answer brought cannot be selected; the rest is as far as it goes.
        probe::Press(dialog, IDC_SUBMIT);
        EXPECT_EQ(Dump(opening, host.LastRequest(), host.log, boxes.Texts()), Changed(row));
        EXPECT_EQ(plugin->Activate("C001", host.strings), 1);
        plugin->ApplyFont();
        Pick("SIP Basket Entry");
        EXPECT_EQ(boxes.Texts().find(incompatible), std::string::npos) << "told at the construction only";
        plugin->Exit();
    }
    const HiddenExport hidden("pu_load_product_type_combo");
    EXPECT_NE(OpenOrderEntry(), nullptr);
}

} // namespace
