// A test with the basket's window, whose file dialogs and clock are stood in for.
#pragma once

#include "tests/window/PluginTest.h"

#include <commdlg.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace basket {
inline constexpr const char kName[] = "SIP Basket Entry", kCaption[] = "Planfold Basket Order";
inline constexpr int kDelete = 25002, kFilterCell = 26203, kClearFilters = 26206, kSort = 26207,
                     kNaturalOrder = 26209;
inline constexpr UINT kHotKey = 1217;
// What is asked before a load replaces so many.
inline std::string Replaces(int unsent) {
    return "Orders in the basket that were not sent: " + std::to_string(unsent)
           + ".\nLoad the file in their place?|";
}
} // namespace basket

class BasketWindow : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        folder = std::filesystem::temp_directory_path() / ("basket" + std::to_string(GetCurrentProcessId()));
        std::filesystem::create_directories(folder);
        // No code page of the system holds all of these.
        path = folder / L"\x0937\x0417\x4E16.csv";
        for (const char* name : {"GetOpenFileNameW", "GetSaveFileNameW"})
            ReplaceImport(plugin->Module(), "comdlg32.dll", name, GivePath);
        ReplaceImport(plugin->Module(), "kernel32.dll", "GetTickCount64", SlowClock);
        lookCosts = 0;
        host.validAccounts = {"C001", "C002", "J\xFCrgen"};
        for (int i = 1; i <= 20000; ++i)
            host.validAccounts.insert("C" + std::to_string(i));
        Open();
    }
    void TearDown() override {
        PluginTest::TearDown();
        std::filesystem::remove_all(folder);
    }
    // Picks the menu entry, finds the windows and answers with the usual frequencies.
    void Open() {
        Pick(basket::kName);
        dialog = probe::FindDialog(basket::kCaption);
        list = GetDlgItem(dialog, IDC_BASKET_LIST);
        rejected = GetDlgItem(dialog, IDC_REJECTED_LIST);
        if (dialog) Answer("echoedRequest=get_sip_operation_mode frequency=0");
    }
    // Its control is taken after the order entry's.
    void Answer(const Fields& fields) {
        const Received message(fields);
        const auto first = std::ranges::find_if(host.controls, &FakeControl::live);
        std::next(first)->notifier->OnResponse(nullptr, message.Message(), nullptr);
    }
    void Add(const char* client, const char* amount) {
        FillGoodOrder(dialog, client);
        probe::SetDate(dialog, IDC_START_DATE, DaysFromNow(40));
        probe::SetEdit(dialog, IDC_VALUE, amount);
        probe::Press(dialog, IDC_SUBMIT);
    }
    // A file's line, which is good with this token.
    static std::string Line(const std::string& client, const std::string& token = "1013") {
        return client + ",nse_cm,EQ,ARBORTEX," + token
               + ",ARBORTEX-EQ,CNC,150000,7,monthly,,05/Mar/2037,12,MKT,B,,,,value,\r\n";
    }
    static std::string Lines(int count) {
        std::string text;
        for (int i = 1; i <= count; ++i)
            text += Line("C" + std::to_string(i));
        return text;
    }
    static void Write(const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
    static std::string Read() {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // What is written, to its end.
    void Load(const std::string& text) {
        Write(text);
        probe::Press(dialog, IDC_BASKET_LOAD);
        probe::PumpUntil([] { return !Progress(); });
    }
    void Key(HWND focus, UINT key) const {
        SetFocus(focus);
        probe::PressKey(key);
    }
    // While one key alone is down, or none.
    static void WithKey(int key, bool down, const std::function<void()>& act) {
        BYTE keys[256] = {}, usual[256] = {};
        GetKeyboardState(usual);
        keys[key] = down ? 0x80 : 0;
        SetKeyboardState(keys);
        act();
        SetKeyboardState(usual);
    }
    bool IsEnabled(int control) const { return IsWindowEnabled(GetDlgItem(dialog, control)); }
    void Command(int command) const { SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(command), 0); }
    // The cells from the top, "C2 C1".
    static std::string Column(HWND of, int column) {
        std::string text;
        for (int row = 0; row < Rows(of); ++row)
            text += (row ? " " : "") + probe::Cell(of, row, column);
        return text;
    }
    std::string Column(int column) const { return Column(list, column); }
    void SelectRows(std::initializer_list<int> rows) const {
        ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
        for (const int row : rows)
            ListView_SetItemState(list, row, LVIS_SELECTED, LVIS_SELECTED);
    }

    // What the file dialogs give, the system's own when it is empty, and what they were asked last.
    static inline std::filesystem::path path;
    static inline std::string asked;
    // Milliseconds that each look at the clock takes besides, as with a slow host.
    static inline ULONGLONG lookCosts;

    std::filesystem::path folder;
    HWND dialog = nullptr, list = nullptr, rejected = nullptr;

private:
    static BOOL WINAPI GivePath(OPENFILENAMEW* ask) {
        if (path.empty()) return GetOpenFileNameW(ask);
        std::wstring all = std::wstring(ask->lpstrDefExt) + L" " + ask->lpstrFile
                           + (ask->Flags & OFN_OVERWRITEPROMPT ? L" asks first|" : L"|");
        for (const wchar_t* part = ask->lpstrFilter; *part; part += std::wcslen(part) + 1)
            all.append(part).append(L"|");
        asked.assign(all.begin(), all.end());
        lstrcpynW(ask->lpstrFile, path.c_str(), static_cast<int>(ask->nMaxFile));
        return TRUE;
    }
    static ULONGLONG WINAPI SlowClock() {
        static ULONGLONG spent = 0;
        return GetTickCount64() + (spent += lookCosts);
    }
};
