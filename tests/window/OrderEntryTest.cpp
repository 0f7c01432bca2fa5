// The order entry window: its start state, what follows a change of a control, Submit and answers.
#include "tests/window/PluginTest.h"

#include <filesystem>

namespace {

using probe::Items;
using probe::Text;

class OrderEntryWindow : public PluginTest {
protected:
    void ExpectStartState(HWND dialog) {
        SYSTEMTIME now{};
        GetLocalTime(&now);
        struct Row {
            int control;
            const char* text;
            Texts items;
        };
        const Row rows[] = {
            {order::kExchange, "NSE", {"NSE", "BSE"}},
            {order::kSeries, "EQ", {"EQ", "BE"}},
            {order::kSymbol, "ARBORTEX", {"ARBORTEX", "BYTEFIN"}},
            {order::kAction, "SIP", {"SIP", "SWP"}},
            {order::kOrderType, "MARKET", {"MARKET"}},
            {order::kProduct, "CNC", {"CNC"}},
            {order::kInvestBy, "Amount", {"Amount", "Quantity"}},
            {order::kFrequency, "", {}},
        };
        for (const Row& row : rows) {
            EXPECT_EQ(Text(dialog, row.control), row.text) << row.control;
            EXPECT_EQ(Items(dialog, row.control), row.items) << row.control;
        }
        EXPECT_EQ(Text(dialog, order::kPeriod) + "|" + Text(dialog, order::kValue), "1|");
        EXPECT_EQ(Text(dialog, order::kPeriodHint), "Minimum SIP Period : 1 Month");
        for (const char* label :
             {"Exhg-Seg", "Inst Name", "Symbol", "Action", "Order Type", "Product Type", "Invest By", "Amount",
              "Frequency", "Start Date", "Total Period ( < 60 )", " Client ID", "Submit"})
            EXPECT_TRUE(HasChildWithText(dialog, label)) << label;
        const SYSTEMTIME start = probe::Date(dialog, order::kStartDate);
        EXPECT_EQ(WireDate(start), WireDate(DaysFromNow(1)));
        EXPECT_NEAR(start.wHour * 60 + start.wMinute, now.wHour * 60 + now.wMinute, 1) << "the time here";
        // What stands between differs from system to system.
        SYSTEMTIME fifth{};
        fifth.wYear = 2027;
        fifth.wMonth = 3;
        fifth.wDay = 5;
        probe::SetDate(dialog, order::kStartDate, fifth);
        const std::string shown = Text(dialog, order::kStartDate);
        EXPECT_TRUE(shown.starts_with("05/") && shown.ends_with("/2027")) << shown;
        for (const int hidden : {order::kCancel, 1006, 1048, 1049, 1050, 1054, 1056})
            EXPECT_FALSE(probe::IsShown(dialog, hidden)) << hidden;
        EXPECT_EQ(boxes.Texts(), "");
    }
    static COLORREF ColourOf(HWND dialog, int label) {
        const HDC screen = GetDC(dialog);
        SetTextColor(screen, GetSysColor(COLOR_WINDOWTEXT));
        SendMessageA(dialog, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(screen),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, label)));
        const COLORREF colour = GetTextColor(screen);
        ReleaseDC(dialog, screen);
        return colour;
    }
};

TEST_F(OrderEntryWindow, OpensAndReopensInItsStartState) {
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(IsWindowVisible(dialog));
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
    ExpectStartState(dialog);
    host.Answer("echoedRequest=get_sip_operation_mode frequency=yearly minimumPeriods=2");
    EXPECT_EQ(Text(dialog, order::kFrequency), "yearly");
    EXPECT_TRUE(HasChildWithText(dialog, "SIP Periods"));
    for (const int hidden : {order::kPeriodHint, order::kPeriodIcons[0], order::kPeriodIcons[1]})
        EXPECT_FALSE(probe::IsShown(dialog, hidden)) << hidden;
    Pick("Order Entry"); // which forgets the least periods of the server
    FillGoodOrder(dialog);
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(host.requests.size(), 2u);
    probe::Select(dialog, order::kInvestBy, "Quantity");
    probe::Select(dialog, order::kExchange, "BSE");
    Close(dialog);
    ExpectStartState(OpenOrderEntry());
    EXPECT_EQ(host.requests.back(), "get_sip_operation_mode");
    // The answers of two openings fill the frequencies once.
    Close(OrderEntry());
    OpenOrderEntry();
    AnswerDefaults();
    AnswerDefaults();
    EXPECT_EQ(Items(OrderEntry(), order::kFrequency), (Texts{"daily", "weekly", "monthly"}));
}

TEST_F(OrderEntryWindow, OffersTheClientsInAComboWithoutASearch) {
    const HiddenExport hidden("pu_get_entered_text_results");
    HWND dialog = OpenOrderEntry();
    EXPECT_TRUE(probe::IsShown(dialog, order::kClient));
    EXPECT_FALSE(probe::IsShown(dialog, order::kClientSearch));
    EXPECT_EQ(Items(dialog, order::kClient), (Texts{"C001", "C002"}));
    EXPECT_EQ(Text(dialog, order::kClient), "C001");
    EXPECT_TRUE(host.settings.empty());
}

TEST_F(OrderEntryWindow, CompletesATypedClientAndSettlesOnItAfterAPause) {
    const HiddenExport hidden("pu_get_entered_text_results");
    host.searchTimes = {90};
    HWND dialog = OpenOrderEntry(), combo = GetDlgItem(dialog, order::kClient);
    HWND edit = FindWindowExA(combo, nullptr, "EDIT", nullptr);
    SetFocus(edit);
    SendMessageA(edit, EM_SETSEL, 0, -1);
    struct Row {
        WPARAM character;
        const char* text;
        WPARAM selectedFrom;
    };
    for (const Row& row :
         {Row{'c', "C001", 1}, {'0', "C001", 2}, {'\b', "C0", 2}, {'0', "C001", 3}, {'2', "C002", 4}}) {
        SendMessageA(edit, WM_CHAR, row.character, 1);
        EXPECT_EQ(Text(edit), row.text);
        EXPECT_EQ(LOWORD(SendMessageA(edit, EM_GETSEL, 0, 0)), row.selectedFrom);
    }
    EXPECT_TRUE(probe::PumpUntil([&] { return SendMessageA(combo, CB_GETCURSEL, 0, 0) == 1; }));
    SendMessageA(edit, WM_CHAR, 'x', 1); // the timer goes with the window
}

TEST_F(OrderEntryWindow, ExchangeAndSeriesRefillWhatDependsOnThem) {
    HWND dialog = OpenOrderEntry();
    ASSERT_TRUE(probe::Select(dialog, order::kExchange, "BSE"));
    EXPECT_EQ(Text(dialog, order::kSeries) + " " + Text(dialog, order::kSymbol), "EQ INFOCAR");
    ASSERT_TRUE(probe::Select(dialog, order::kExchange, "NSE"));
    ASSERT_TRUE(probe::Select(dialog, order::kSeries, "BE"));
    EXPECT_EQ(Text(dialog, order::kSeries) + " " + Text(dialog, order::kSymbol), "BE LUMENBANK");
    EXPECT_EQ(host.calls.end()[-2], "pu_fill_scrip_combos(1003,1005,1008,1048,1049,1050,1)");
    EXPECT_EQ(host.calls.back(), "pu_get_intersted_scrip_field(nse_cm|BE|LUMENBANK,0,6)");
    EXPECT_EQ(Text(dialog, order::kSummary), "Lumen Bank");
}

// The settings file lies beside the program that is the host.
TEST_F(OrderEntryWindow, OffersCustomProductsOfTheSettingsFile) {
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, sizeof program);
    const auto folder = std::filesystem::path(program).parent_path() / "Vesk Plugins";
    std::filesystem::create_directory(folder);
    WritePrivateProfileStringA("SIP CUSTOM LIST", "CUSTOM PRODUCTS", "MIS,CNC,UNKNOWN,NRML",
                               (folder / "Planfold.ini").string().c_str());
    host.rights.insert("QV: Planfold: Custom");
    HWND dialog = OpenOrderEntry();
    EXPECT_EQ(Items(dialog, order::kProduct), (Texts{"CNC", "MIS", "NRML"}));
    EXPECT_EQ(Text(dialog, order::kProduct), "CNC");
    AnswerDefaults();
    FillGoodOrder(dialog);
    ASSERT_TRUE(probe::Select(dialog, order::kProduct, "NRML"));
    // The login of the last pick counts.
    plugin->Pick("Order Entry", host.strings, "OTHER");
    probe::Press(dialog, order::kSubmit);
    EXPECT_NE(host.LastRequest().find(" product=NRML "), std::string::npos);
    EXPECT_NE(host.LastRequest().find(" loginId=OTHER "), std::string::npos);
    Close(dialog);
    std::filesystem::remove_all(folder);
    EXPECT_EQ(Items(OpenOrderEntry(), order::kProduct), Texts{"CNC"}) << "without a settings file";
}

TEST_F(OrderEntryWindow, SubmitSendsWhatTheControlsShow) {
    HWND dialog = OpenWithDefaults();
    for (const auto& [control, entry] : {std::pair(order::kExchange, "BSE"),
                                         {order::kAction, "SWP"},
                                         {order::kInvestBy, "Quantity"},
                                         {order::kFrequency, "daily"}})
        ASSERT_TRUE(probe::Select(dialog, control, entry)) << entry;
    EXPECT_TRUE(GetWindowLongA(GetDlgItem(dialog, order::kValue), GWL_STYLE) & ES_NUMBER);
    probe::SetEdit(dialog, order::kValue, "15");
    probe::SetEdit(dialog, order::kPeriod, "60");
    probe::SetEdit(dialog, order::kClientSearch, "C001");
    probe::SetDate(dialog, order::kStartDate, DaysFromNow(3));
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(
        host.LastRequest(),
        TextOf(Order(
            "exchange=bse_cm token=500100 tradingSymbol=INFOCAR side=S investType=qty amountOrQuantity=15 "
            "frequency=daily totalPeriod=60 loginId=LOGIN peerIdA=PEERA peerIdB=PEERB startDate="
            + WireDate(DaysFromNow(3))))
            + " orderId=UUID-1 cautionaryFlag=N orderSource=TWS");
    EXPECT_EQ(host.log.size(), 1u);
    EXPECT_EQ(boxes.Texts() + Text(dialog, order::kValue) + Text(dialog, order::kPeriod), "");
}

TEST_F(OrderEntryWindow, RefusalIsToldAndTheFormKeepsWhatWasTyped) {
    HWND dialog = OpenWithDefaults();
    FillGoodOrder(dialog);
    probe::SetEdit(dialog, order::kPeriod, "61");
    for (const auto& [days, text] : {std::pair(-1, "Start Date Cannot be less that today's Date|"),
                                     {740, "Start Date Cannot be more than 2 years from today's Date|"},
                                     {1, "Month Should be Between 1 and 60|"}}) {
        probe::SetDate(dialog, order::kStartDate, DaysFromNow(days));
        probe::Press(dialog, order::kSubmit);
        EXPECT_EQ(boxes.Texts(), text);
        EXPECT_EQ(boxes.lastOwner, dialog);
    }
    EXPECT_EQ(Text(dialog, order::kValue) + " " + Text(dialog, order::kPeriod), "1234.5 61");
    EXPECT_EQ(SelectedAt(dialog, order::kPeriod), "0-2 focus") << "to be typed over";
    probe::SetEdit(dialog, order::kValue, "0.00");
    probe::SetEdit(dialog, order::kPeriod, "60");
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(boxes.Texts(), "Enter valid Amount|");
    EXPECT_EQ(SelectedAt(dialog, order::kValue), "0-4 focus");
    FillGoodOrder(dialog, std::string(33000, 'x'));
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(boxes.Texts(), "The terminal knows no client " + std::string(60, 'x')
                                 + ".\nPlace the order all the same?|Failed to add Account ID|");
    EXPECT_EQ(host.requests.size(), 1u);
    FillGoodOrder(dialog);
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(host.requests.size(), 2u) << "the next one goes out";
}

TEST_F(OrderEntryWindow, ARefusedOrderIsToldInRedAndComesBackWithAKey) {
    HWND dialog = OpenWithDefaults();
    FillGoodOrder(dialog);
    EXPECT_EQ(ColourOf(dialog, order::kSummary), GetSysColor(COLOR_WINDOWTEXT));
    probe::Press(dialog, order::kSubmit);
    host.Answer({{tag::echoedRequest, {"add_sip_orders"}},
                 {tag::errorCode, {"104"}},
                 {tag::userText, {"too & short"}}});
    EXPECT_EQ(boxes.Texts(), "");
    EXPECT_EQ(
        Text(dialog, order::kSummary),
        "Byte Finance for C002 (Second Client)\nRefused: too & short (code 104). F3 brings the order back "
        "(C002 BYTEFIN 1234.5).");
    EXPECT_NE(ColourOf(dialog, order::kSummary), GetSysColor(COLOR_WINDOWTEXT));
    SetForegroundWindow(dialog);
    probe::Select(dialog, order::kSymbol, "ARBORTEX");
    probe::Select(dialog, order::kInvestBy, "Quantity");
    probe::PostKey(VK_F3);
    probe::Pump();
    EXPECT_EQ(Text(dialog, order::kSymbol) + Text(dialog, order::kInvestBy), "BYTEFINAmount");
    EXPECT_EQ(Text(dialog, order::kValue) + " " + Text(dialog, order::kPeriod), "1234.5 12");
    EXPECT_EQ(SelectedAt(dialog, order::kValue), "0-6 focus");
    EXPECT_EQ(ColourOf(dialog, order::kSummary), GetSysColor(COLOR_WINDOWTEXT));
    probe::SetEdit(dialog, order::kClientSearch, "C00");
    EXPECT_TRUE(Text(dialog, order::kSummary).starts_with("Byte Finance for C00 (unknown client)\n"));
    EXPECT_NE(ColourOf(dialog, order::kSummary), GetSysColor(COLOR_WINDOWTEXT));
    boxes.toQuestions = IDNO;
    const auto sent = host.requests.size();
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(host.requests.size(), sent);
    EXPECT_EQ(SelectedAt(dialog, order::kClientSearch), "0-3 focus");
}

} // namespace
