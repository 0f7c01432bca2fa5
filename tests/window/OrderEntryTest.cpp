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
        EXPECT_EQ(Text(dialog, IDC_EXCHANGE) + Text(dialog, IDC_SYMBOL) + Text(dialog, IDC_INVEST_BY),
                  "NSEARBORTEXAmount");
        EXPECT_EQ(Text(dialog, IDC_PERIOD) + "|" + Text(dialog, IDC_VALUE), "1|");
        EXPECT_EQ(Text(dialog, IDC_PERIOD_HINT), "Minimum SIP Period : 1 Month");
        const SYSTEMTIME start = probe::Date(dialog, IDC_START_DATE);
        const SYSTEMTIME tomorrow = DaysFromNow(1);
        EXPECT_TRUE(start.wDay == tomorrow.wDay && start.wMonth == tomorrow.wMonth
                    && start.wYear == tomorrow.wYear);
        EXPECT_NEAR(start.wHour * 60 + start.wMinute, now.wHour * 60 + now.wMinute, 1) << "the time here";
        // What stands between differs from system to system.
        SYSTEMTIME fifth{};
        fifth.wYear = 2027;
        fifth.wMonth = 3;
        fifth.wDay = 5;
        probe::SetDate(dialog, IDC_START_DATE, fifth);
        const std::string shown = Text(dialog, IDC_START_DATE);
        EXPECT_TRUE(shown.starts_with("05/") && shown.ends_with("/2027")) << shown;
        for (const int hidden : {IDCANCEL, IDC_HOST_PRODUCTS, IDC_HOST_SCRIP_1, IDC_HOST_SCRIP_2,
                                 IDC_HOST_SCRIP_3, IDC_HIDDEN_COMBO, IDC_CLIENT_NAME})
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
    EXPECT_EQ(Text(dialog, IDC_FREQUENCY), "yearly");
    EXPECT_EQ(Text(dialog, IDC_PERIOD_LABEL), "SIP Periods");
    for (const int hidden : {IDC_PERIOD_HINT, IDC_PERIOD_ICON_1, IDC_PERIOD_ICON_2})
        EXPECT_FALSE(probe::IsShown(dialog, hidden)) << hidden;
    Pick("Order Entry"); // which forgets the least periods of the server
    FillGoodOrder(dialog);
    probe::Press(dialog, IDC_SUBMIT);
    EXPECT_EQ(host.requests.size(), 2u);
    probe::Select(dialog, IDC_INVEST_BY, "Quantity");
    probe::Select(dialog, IDC_EXCHANGE, "BSE");
    Close(dialog);
    ExpectStartState(OpenOrderEntry());
    EXPECT_EQ(host.requests.back(), "get_sip_operation_mode");
    // The answers of two openings fill the frequencies once.
    Close(OrderEntry());
    OpenOrderEntry();
    AnswerDefaults();
    AnswerDefaults();
    EXPECT_EQ(Items(OrderEntry(), IDC_FREQUENCY), (Texts{"daily", "weekly", "monthly"}));
}

TEST_F(OrderEntryWindow, CompletesATypedClientAndSettlesOnItAfterAPause) {
    const HiddenExport hidden("pu_get_entered_text_results");
    host.searchTimes = {90};
    HWND dialog = OpenOrderEntry(), combo = GetDlgItem(dialog, IDC_CLIENT_COMBO);
    HWND edit = FindWindowExA(combo, nullptr, "EDIT", nullptr);
    SetFocus(edit);
    SendMessageA(edit, EM_SETSEL, 0, -1);
    for (const auto& [character, text, selectedFrom] :
         {std::tuple{'c', "C001", 1}, {'0', "C001", 2}, {'0', "C001", 3}, {'2', "C002", 4}}) {
        SendMessageA(edit, WM_CHAR, static_cast<WPARAM>(character), 1);
        EXPECT_EQ(Text(edit), text);
        EXPECT_EQ(LOWORD(SendMessageA(edit, EM_GETSEL, 0, 0)), selectedFrom);
    }
    EXPECT_TRUE(probe::PumpUntil([&] { return SendMessageA(combo, CB_GETCURSEL, 0, 0) == 1; }));
    SendMessageA(edit, WM_CHAR, 'x', 1); // the timer goes with the window
}

TEST_F(OrderEntryWindow, ExchangeAndSeriesRefillWhatDependsOnThem) {
    HWND dialog = OpenOrderEntry();
    ASSERT_TRUE(probe::Select(dialog, IDC_EXCHANGE, "BSE"));
    EXPECT_EQ(Text(dialog, IDC_SERIES) + " " + Text(dialog, IDC_SYMBOL), "EQ INFOCAR");
    ASSERT_TRUE(probe::Select(dialog, IDC_EXCHANGE, "NSE"));
    ASSERT_TRUE(probe::Select(dialog, IDC_SERIES, "BE"));
    EXPECT_EQ(Text(dialog, IDC_SERIES) + " " + Text(dialog, IDC_SYMBOL), "BE LUMENBANK");
    EXPECT_EQ(host.calls.end()[-2], "pu_fill_scrip_combos(1003,1005,1008,1048,1049,1050,1)");
    EXPECT_EQ(host.calls.back(), "pu_get_intersted_scrip_field(nse_cm|BE|LUMENBANK,0,6)");
    EXPECT_EQ(Text(dialog, IDC_PLAN_SUMMARY), "Lumen Bank");
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
    EXPECT_EQ(Items(dialog, IDC_PRODUCT), (Texts{"CNC", "MIS", "NRML"}));
    AnswerDefaults();
    FillGoodOrder(dialog);
    ASSERT_TRUE(probe::Select(dialog, IDC_PRODUCT, "NRML"));
    // The login of the last pick counts.
    plugin->Pick("Order Entry", host.strings, "OTHER");
    probe::Press(dialog, IDC_SUBMIT);
    EXPECT_NE(host.LastRequest().find(" product=NRML "), std::string::npos);
    EXPECT_NE(host.LastRequest().find(" loginId=OTHER "), std::string::npos);
    Close(dialog);
    std::filesystem::remove_all(folder);
    EXPECT_EQ(Items(OpenOrderEntry(), IDC_PRODUCT), Texts{"CNC"}) << "without a settings file";
}

TEST_F(OrderEntryWindow, WhatIsLongerThanAMessageIsToldAndTheNextOneGoesOut) {
    HWND dialog = OpenWithDefaults();
    FillGoodOrder(dialog, std::string(33000, 'x'));
    probe::Press(dialog, IDC_SUBMIT);
    EXPECT_EQ(boxes.Texts(), "The terminal knows no client " + std::string(60, 'x')
                                 + ".\nPlace the order all the same?|Failed to add Account ID|");
    EXPECT_EQ(host.requests.size(), 1u);
    FillGoodOrder(dialog);
    probe::Press(dialog, IDC_SUBMIT);
    EXPECT_EQ(host.requests.size(), 2u) << "the next one goes out";
}

TEST_F(OrderEntryWindow, ARefusedOrderIsToldInRedAndComesBackWithAKey) {
    HWND dialog = OpenWithDefaults();
    FillGoodOrder(dialog);
    EXPECT_EQ(ColourOf(dialog, IDC_PLAN_SUMMARY), GetSysColor(COLOR_WINDOWTEXT));
    probe::Press(dialog, IDC_SUBMIT);
    host.Answer({{tag::echoedRequest, {"add_sip_orders"}},
                 {tag::errorCode, {"104"}},
                 {tag::userText, {"too & short"}}});
    EXPECT_EQ(boxes.Texts(), "");
    EXPECT_TRUE(
        Text(dialog, IDC_PLAN_SUMMARY)
            .starts_with("Byte Finance for C002 (Second Client)\nRefused: too & short (code 104). F3 "));
    EXPECT_NE(ColourOf(dialog, IDC_PLAN_SUMMARY), GetSysColor(COLOR_WINDOWTEXT));
    SetForegroundWindow(dialog);
    probe::PressKey(VK_F3);
    EXPECT_EQ(SelectedAt(dialog, IDC_VALUE), "0-6 focus");
    EXPECT_EQ(ColourOf(dialog, IDC_PLAN_SUMMARY), GetSysColor(COLOR_WINDOWTEXT));
    probe::SetEdit(dialog, IDC_CLIENT_SEARCH, "C00");
    EXPECT_TRUE(Text(dialog, IDC_PLAN_SUMMARY).starts_with("Byte Finance for C00 (unknown client)\n"));
    EXPECT_NE(ColourOf(dialog, IDC_PLAN_SUMMARY), GetSysColor(COLOR_WINDOWTEXT));
    boxes.toQuestions = IDNO;
    const auto sent = host.requests.size();
    probe::Press(dialog, IDC_SUBMIT);
    EXPECT_EQ(host.requests.size(), sent);
    EXPECT_EQ(SelectedAt(dialog, IDC_CLIENT_SEARCH), "0-3 focus");
}

} // namespace
