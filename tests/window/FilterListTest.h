// A test with the shared list over a real control, in a window of its own.
#pragma once

#include "host/korvexcontrols/resource.h"
#include "sdk/HeapStringManager.h"
#include "sdk/korvex/ListExtras.h"
#include "tests/support/BoxRecorder.h"
#include "tests/support/WindowProbe.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <set>
#include <sstream>

inline constexpr std::uint32_t kNone = UINT32_MAX, kFirstCommand = 5000;
// The list's own commands.
enum Command : std::uint32_t {
    copy,
    selectAll,
    find,
    filterCell,
    filterColumn,
    clearColumn,
    clearAll,
    sortUp,
    sortDown,
    natural,
    exportRows,
    reset,
    findNext,
    findPrevious,
    columns,
    allRows = 20,
    saveView,
    deleteView,
    firstCondition = 30,
    firstView = 60
};
inline constexpr KorvexColumn kColumns[] = {{"Symbol", 120, 0, korvex::ValueType::text},
                                            {"Amount", 80, 1, korvex::ValueType::amount},
                                            {"State", 90, 0, korvex::ValueType::text}};

inline std::string Read(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class FilterList : public testing::Test, public CListOwner {
protected:
    void SetUp() override {
        folder =
            std::filesystem::temp_directory_path() / ("filterlist" + std::to_string(GetCurrentProcessId()));
        std::filesystem::create_directories(folder);
        Remember((folder / "settings.ini").string(), (folder / "dialogs.ini").string());
        SetCursorPos(0, 0);
        Open();
    }
    void TearDown() override {
        Close();
        Remember("", "");
        std::filesystem::remove_all(folder);
        EXPECT_TRUE(probe::TopWindows().empty());
        EXPECT_EQ(boxes.Texts(), "");
    }

    void Remember(const std::string& settings, const std::string& dialogs) {
        PassedString first(settings, strings), second(dialogs, strings);
        CCommonListCtrl::SetRecoveryFiles(first.Hand(), second.Hand());
    }
    void Open() {
        if (!control) control = std::make_unique<CFilterListCtrl>();
        WNDCLASSA type{};
        type.lpfnWndProc = Procedure;
        type.lpszClassName = "FilterListParent";
        RegisterClassA(&type);
        parent = CreateWindowA("FilterListParent", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 420, 320,
                               nullptr, nullptr, nullptr, this);
        list =
            CreateWindowA(WC_LISTVIEWA, "",
                          WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS,
                          0, 0, 400, 280, parent, nullptr, nullptr, nullptr);
        ASSERT_TRUE(control->Attach({list, "Orders", this, kColumns, 3, kFirstCommand}));
        SetFocus(list);
    }
    void Close() {
        DestroyWindow(parent);
        probe::Pump();
        parent = list = nullptr;
    }
    void Fill(std::uint32_t count) {
        control->BeginChanges();
        for (std::uint32_t i = 0; i < count; ++i)
            Insert(i);
        control->EndChanges();
    }
    void Insert(std::uint32_t record) {
        if (record >= cells.size()) cells.resize(record + std::size_t{1});
        char symbol[32];
        std::snprintf(symbol, sizeof symbol, "ARBOR%05u", record * 7919 % 10007);
        cells[record] = {symbol, std::to_string(record * 31 % 1000) + ".50", record % 3 ? "active" : "Paused"};
        control->InsertFront(record);
    }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageA(list, message, wParam, lParam);
    }
    void SetState(int row, UINT state, UINT mask) const { ListView_SetItemState(list, row, state, mask); }
    std::string Cell(int row, int column) const { return probe::Cell(list, row, column); }
    // Reads the control as another program does.
    int Next(UINT flags, int from = -1) const {
        return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(from), flags));
    }
    std::vector<std::string> SelectedSymbols() const {
        std::vector<std::string> symbols;
        for (int row = -1; (row = Next(LVNI_SELECTED, row)) >= 0;)
            symbols.push_back(Cell(row, 0));
        return symbols;
    }
    std::string TopSymbol() const { return Cell(static_cast<int>(Send(LVM_GETTOPINDEX)), 0); }
    int RowHeight() const {
        RECT rect{LVIR_BOUNDS, 0, 0, 0};
        Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&rect));
        return rect.bottom - rect.top;
    }
    HWND Header() const { return reinterpret_cast<HWND>(Send(LVM_GETHEADER)); }
    void ClickHeading(int column) const {
        RECT rect{};
        SendMessageA(Header(), HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&rect));
        const LPARAM place = MAKELPARAM((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
        SendMessageA(Header(), WM_LBUTTONDOWN, MK_LBUTTON, place);
        SendMessageA(Header(), WM_LBUTTONUP, 0, place);
    }
    void Run(Command command) { EXPECT_TRUE(control->HandleCommand(kFirstCommand + command)); }
    KorvexListExtras& Extras() const {
        const FARPROC found = GetProcAddress(GetModuleHandleA("KorvexControls.dll"), kKorvexExtrasOf);
        return *reinterpret_cast<KorvexExtrasOfFunction*>(reinterpret_cast<void*>(found))(control.get());
    }
    // "SIP 2 Rs 31.00/0", of each side.
    std::string Sums(bool selected) const {
        KorvexSide sides[4];
        std::string text;
        const std::int32_t count = Extras().Sums(selected, sides, 4);
        for (std::int32_t i = 0; i < count; ++i)
            text += std::string(sides[i].name.data, sides[i].name.length) + " " + std::to_string(sides[i].rows)
                    + " " + std::to_string(sides[i].paise) + "|";
        return count < 0 ? "not known" : text;
    }
    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override {
        if (count > 100) Sleep(piecesTakeMs);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string& text = cells[records[i]][static_cast<std::size_t>(column)];
            texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
        }
    }
    std::int32_t RowLook(std::uint32_t record) noexcept override {
        return static_cast<std::int32_t>(record % 5);
    }
    void ShownRowsChanged(CFilterListCtrl*) noexcept override {
        ++changes;
        if (onChange) std::exchange(onChange, nullptr)();
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE)
            SetWindowLongPtrA(
                window, GWLP_USERDATA,
                reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
        auto* self = reinterpret_cast<FilterList*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        LRESULT result = 0;
        if (message == WM_NOTIFY && self && self->control
            && self->control->HandleNotify(reinterpret_cast<const NMHDR*>(lParam), &result))
            return result;
        return DefWindowProcA(window, message, wParam, lParam);
    }

    HeapStringManager strings;
    BoxRecorder boxes;
    std::filesystem::path folder;
    std::vector<std::array<std::string, 3>> cells;
    std::unique_ptr<CFilterListCtrl> control;
    HWND parent = nullptr, list = nullptr;
    int changes = 0;
    DWORD piecesTakeMs = 0; // of many cells
    std::function<void()> onChange;
};
