#include "tests/window/PluginTest.h"

#include <ctime>

void PluginTest::TearDown() {
    plugin->Exit();
    EXPECT_TRUE(PluginWindows().empty()) << "windows left, the first: " << probe::Text(PluginWindows().front());
    EXPECT_EQ(LoadedPlugin::watched.hooksLive, 0);
    EXPECT_EQ(host.LiveControls(), 0);
    EXPECT_EQ(host.misuses, Texts{});
    EXPECT_FALSE(boxes.anyNested);
    plugin.reset();
    EXPECT_EQ(GetModuleHandleA("Planfold.zup"), nullptr);
    EXPECT_EQ(LoadedPlugin::WrittenAfterFree(), 0);
    EXPECT_EQ(host.strings.Live(), 0);
    EXPECT_EQ(host.strings.Faults(), 0);
}

HWND PluginTest::OpenOrderEntry() {
    Pick("Order Entry");
    return OrderEntry();
}

HWND PluginTest::OpenWithDefaults() {
    HWND dialog = OpenOrderEntry();
    EXPECT_NE(dialog, nullptr);
    AnswerDefaults();
    return dialog;
}

void PluginTest::FillGoodOrder(HWND dialog, std::string_view client) {
    const bool search = probe::IsShown(dialog, IDC_CLIENT_SEARCH);
    probe::Select(dialog, IDC_SYMBOL, "BYTEFIN");
    probe::SetEdit(dialog, search ? IDC_CLIENT_SEARCH : IDC_CLIENT_COMBO, client);
    probe::Select(dialog, IDC_FREQUENCY, "monthly");
    probe::SetEdit(dialog, IDC_VALUE, "1234.5");
    probe::SetEdit(dialog, IDC_PERIOD, "12");
}

std::vector<HWND> PluginTest::PluginWindows() const {
    std::vector<HWND> windows = probe::TopWindows();
    std::erase(windows, host.mainFrame);
    return windows;
}

HWND PluginTest::Progress() {
    for (HWND window : probe::TopWindows())
        if (GetDlgItem(window, IDC_RUN_BAR)) return window;
    return nullptr;
}

std::string PluginTest::SelectedAt(HWND dialog, int edit) {
    HWND window = GetDlgItem(dialog, edit);
    const auto range = static_cast<DWORD>(SendMessageA(window, EM_GETSEL, 0, 0));
    return std::to_string(LOWORD(range)) + "-" + std::to_string(HIWORD(range))
           + (GetFocus() == window ? " focus" : "");
}

std::string PluginTest::MenuOf(HWND list, LPARAM at) {
    std::string entries = "(none)";
    const WhenShown menu(probe::OpenMenu, [&](HWND open) {
        entries = probe::Entries(probe::MenuOf(open));
        EndMenu();
    });
    SendMessageA(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), at);
    return entries;
}

Fields Told(const char* text) {
    return {{tag::echoedRequest, {"add_sip_orders"}}, {tag::userText, {text}}};
}

SYSTEMTIME DaysFromNow(int days) {
    const std::time_t then = std::time(nullptr) + days * std::time_t{86400};
    const std::tm local = *std::localtime(&then);
    SYSTEMTIME date{};
    date.wYear = static_cast<WORD>(local.tm_year + 1900);
    date.wMonth = static_cast<WORD>(local.tm_mon + 1);
    date.wDay = static_cast<WORD>(local.tm_mday);
    return date;
}
