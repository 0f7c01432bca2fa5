// The shared list over a real control: what a user and other programs see of it while it changes.
#include "host/korvexcontrols/FilterListCtrl.h"
#include "sdk/HeapStringManager.h"
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

namespace {

constexpr std::uint32_t kNone = UINT32_MAX, kFirstCommand = 5000;
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
    reset
};
constexpr int kFilterOperator = 2102, kFilterValue = 2104, kFilterFault = 2107, kFilterClear = 2108;
constexpr int kFindText = 2202, kFindNotice = 2204;
constexpr KorvexColumn kColumns[] = {
    {"Symbol", 120, 0, kKorvexTextValue}, {"Amount", 80, 1, kKorvexAmount}, {"State", 90, 0, kKorvexTextValue}};

std::string Read(const std::filesystem::path& path) {
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
    void SetState(int row, UINT state, UINT mask) const {
        LVITEMA item{};
        item.state = state;
        item.stateMask = mask;
        Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    std::string Cell(int row, int column) const {
        char text[64] = "";
        LVITEMA item{};
        item.iSubItem = column;
        item.pszText = text;
        item.cchTextMax = sizeof text;
        Send(LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
        return text;
    }
    // As another program reads the control.
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
    // The entries that can be picked, in the order of their numbers.
    std::string Possible() const {
        HMENU menu = CreatePopupMenu();
        control->AppendMenuEntries(menu);
        std::string possible;
        for (std::uint32_t command = copy; command <= reset; ++command)
            possible += GetMenuState(menu, kFirstCommand + command, MF_BYCOMMAND) & MF_GRAYED ? '-' : 'x';
        DestroyMenu(menu);
        return possible;
    }

    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override {
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
    std::function<void()> onChange;
};

// Selection, focus and the place on the screen belong to records, in every kind of list.
TEST_F(FilterList, AStreamMovesNothingToAnotherRecord) {
    struct Kind {
        const char* name;
        bool sorted, filtered;
    };
    for (const Kind& kind : {Kind{"plain", false, false},
                             {"filtered", false, true},
                             {"sorted", true, false},
                             {"sorted and filtered", true, true}}) {
        SCOPED_TRACE(kind.name);
        control->RemoveAll();
        Fill(400);
        control->SetOwnerFilter(2, kind.filtered ? "active" : nullptr);
        Run(kind.sorted ? sortUp : sortDown);
        if (!kind.sorted) Run(natural);
        Send(LVM_SCROLL, 0, 50 * RowHeight());
        std::set<std::uint32_t> expected;
        SetState(-1, 0, LVIS_SELECTED);
        for (const int row : {3, 4, 5, 52, 60, 61, 200}) {
            SetState(row, LVIS_SELECTED, LVIS_SELECTED);
            std::array<std::uint32_t, 16> selected{};
            const std::uint32_t count = control->Selected(selected.data(), 16);
            expected.insert(selected.begin(), selected.begin() + count);
        }
        ASSERT_EQ(expected.size(), 7u);
        const std::string top = TopSymbol();
        const auto keeps = [&](std::uint32_t record) {
            return expected.contains(record) || cells[record][0] == top;
        };
        std::mt19937 random(7);
        for (std::uint32_t step = 0; step < 120; ++step) {
            const std::uint32_t record = random() % 500;
            if (random() % 2) {
                if (!control->Contains(record))
                    Insert(record);
                else if (!keeps(record)) {
                    cells[record][0] = "ARBOR" + std::to_string(10000 + random() % 10000);
                    control->Repaint(record);
                }
            } else if (record < cells.size() && !keeps(record)) {
                control->Remove(record);
            }
            std::vector<std::string> wanted;
            for (const std::uint32_t selected : expected)
                wanted.push_back(cells[selected][0]);
            auto symbols = SelectedSymbols();
            std::ranges::sort(wanted);
            std::ranges::sort(symbols);
            ASSERT_EQ(symbols, wanted) << step;
            ASSERT_EQ(control->SelectedCount(), 7u);
            ASSERT_EQ(TopSymbol(), top) << step;
            ASSERT_EQ(Send(LVM_GETITEMCOUNT), static_cast<LRESULT>(control->ShownCount()));
            const int focused = Next(LVNI_FOCUSED);
            const std::uint32_t holder = control->Focused();
            ASSERT_EQ(focused < 0, holder == UINT32_MAX) << step;
            ASSERT_TRUE(focused < 0 || Cell(focused, 0) == cells[holder][0]) << step;
        }
    }
}

TEST_F(FilterList, AnInsertionTakesTheFocusAndNothingElse) {
    Fill(100);
    Insert(100);
    EXPECT_EQ(Send(LVM_GETTOPINDEX), 0) << "new rows show themselves at the top";
    EXPECT_EQ(Next(LVNI_FOCUSED), 0);
    EXPECT_EQ(Next(LVNI_SELECTED), -1);
    control->Remove(100);
    EXPECT_EQ(Next(LVNI_FOCUSED), 0) << "the row now in its place";

    SetState(-1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(control->SelectedCount(), 100u);
    Insert(101);
    EXPECT_EQ(Next(LVNI_SELECTED), 1);
    EXPECT_EQ(Send(LVM_GETSELECTEDCOUNT), 100);
    control->SelectOnly(50);
    EXPECT_EQ(SelectedSymbols(), std::vector{cells[50][0]});
    const auto row50 = static_cast<LRESULT>(control->IndexOf(50)), top = Send(LVM_GETTOPINDEX);
    EXPECT_TRUE(row50 >= top && row50 < top + Send(LVM_GETCOUNTPERPAGE)) << top;
    control->Deselect(50);
    EXPECT_EQ(Send(LVM_GETSELECTEDCOUNT), 0);

    Send(LVM_SCROLL, 0, -100 * RowHeight());
    RECT row{LVIR_BOUNDS, 0, 0, 0};
    Send(LVM_GETITEMRECT, 3, reinterpret_cast<LPARAM>(&row));
    POINT place{20, (row.top + row.bottom) / 2};
    ClientToScreen(list, &place);
    SetCursorPos(place.x, place.y);
    const std::string under = Cell(3, 0);
    Insert(102);
    EXPECT_EQ(Cell(3 + static_cast<int>(Send(LVM_GETTOPINDEX)), 0), under)
        << "the row under the mouse stays there";
    EXPECT_EQ(changes, 104) << "of each row that came or went";
}

TEST_F(FilterList, TheLineOfTheOnlyRowIsPaintedAnewWhenItGoes) {
    MoveWindow(list, 0, 0, 400, 60, TRUE);
    for (const bool selected : {false, true}) {
        Fill(1);
        if (selected) control->SelectOnly(0);
        RECT row{LVIR_BOUNDS, 0, 0, 0}, painted{};
        Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
        ValidateRect(list, nullptr);
        control->Remove(0);
        EXPECT_EQ(Send(LVM_GETITEMCOUNT), 0);
        GetUpdateRect(list, &painted, FALSE);
        EXPECT_GE(painted.bottom, row.bottom) << selected;
        EXPECT_LE(painted.top, row.top) << selected;
    }
}

TEST_F(FilterList, ARowHiddenByAFilterComesBackSelectedUnlessTheUserSelectedAnew) {
    Fill(9);
    for (const bool again : {true, false}) {
        control->SetOwnerFilter(0, nullptr);
        control->SelectOnly(3); // "Paused"
        control->SetOwnerFilter(2, "active");
        EXPECT_EQ(control->SelectedCount(), 0u);
        if (!again) SetState(0, LVIS_SELECTED, LVIS_SELECTED);
        control->SetOwnerFilter(0, nullptr);
        EXPECT_EQ(SelectedSymbols() == std::vector{cells[3][0]}, again);
    }
}

TEST_F(FilterList, HeadingsSortAndStayAsTheyWere) {
    Fill(50);
    struct Click {
        int column, arrow;
        const char *first, *last;
    };
    std::vector<std::string> natural;
    for (int row = 0; row < 50; ++row)
        natural.push_back(Cell(row, 1));
    const Click clicks[] = {{1, HDF_SORTUP, "0.50", "992.50"},
                            {1, HDF_SORTDOWN, "992.50", "0.50"},
                            {1, 0, natural.front().c_str(), natural.back().c_str()}};
    for (const Click& click : clicks) {
        ClickHeading(click.column);
        EXPECT_EQ(Cell(0, 1), click.first);
        EXPECT_EQ(Cell(49, 1), click.last);
        HDITEMA item{};
        item.mask = HDI_FORMAT;
        SendMessageA(Header(), HDM_GETITEMA, 1, reinterpret_cast<LPARAM>(&item));
        EXPECT_EQ(item.fmt & (HDF_SORTUP | HDF_SORTDOWN), click.arrow);
        char text[32] = "";
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_FMT | LVCF_WIDTH;
        column.pszText = text;
        column.cchTextMax = sizeof text;
        Send(LVM_GETCOLUMNA, 1, reinterpret_cast<LPARAM>(&column));
        EXPECT_STREQ(text, "Amount");
        EXPECT_EQ(column.fmt & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
        EXPECT_EQ(column.cx, 80);
    }
}

TEST_F(FilterList, MenuEntriesCanBePickedWhenTheyDoSomething) {
    struct State {
        const char* name;
        std::function<void()> reach;
        std::string possible;
    };
    const State states[] = {
        {"empty", [] {}, "--x-x--xx--x"},
        {"rows, one focused", [&] { Fill(9); }, "-xxxx--xx-xx"},
        {"selected", [&] { control->SelectOnly(1); }, "xxxxx--xx-xx"},
        {"owner's filter", [&] { control->SetOwnerFilter(2, "active"); }, "xxxxx--xx-xx"},
        {"filter by the cell", [&] { Run(filterCell); }, "xxxxxxxxx-xx"},
        {"sorted", [&] { Run(sortDown); }, "xxxxxxxxxxxx"},
        {"all filters cleared", [&] { Run(clearAll); }, "xxxxx--xxxxx"},
        {"natural", [&] { Run(natural); }, "xxxxx--xx-xx"},
    };
    for (const State& state : states) {
        state.reach();
        EXPECT_EQ(Possible(), state.possible) << state.name;
    }
    EXPECT_EQ(control->ShownCount(), 6u) << "the owner's filter stays";
    EXPECT_FALSE(control->HandleCommand(kFirstCommand + reset + 1));
    EXPECT_FALSE(control->HandleCommand(kFirstCommand - 1));
}

TEST_F(FilterList, TheFilterBoxJudgesWhatIsTyped) {
    Fill(100);
    ClickHeading(1); // sorted by amount
    RECT cell{0, LVIR_BOUNDS, 0, 0};
    cell.top = 1;
    Send(LVM_GETSUBITEMRECT, 2, reinterpret_cast<LPARAM>(&cell));
    for (const UINT message : {WM_RBUTTONDOWN, WM_RBUTTONUP})
        PostMessageA(list, message, 0, MAKELPARAM(cell.left + 3, cell.top + 3));
    probe::Pump();
    Run(filterColumn);
    HWND box = probe::FindDialog("Filter: Amount");
    ASSERT_TRUE(box);
    ASSERT_TRUE(probe::Select(box, kFilterOperator, ">="));
    probe::SetEdit(box, kFilterValue, "lots");
    probe::Press(box, IDOK);
    EXPECT_EQ(probe::Text(box, kFilterFault), "\"lots\" is not a number.");
    HDC screen = GetDC(nullptr);
    EXPECT_NE(SendMessageA(box, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(screen),
                           reinterpret_cast<LPARAM>(GetDlgItem(box, kFilterFault))),
              0);
    EXPECT_EQ(GetTextColor(screen), RGB(150, 20, 20)) << "told in red";
    ReleaseDC(nullptr, screen);
    EXPECT_EQ(control->ShownCount(), 100u);
    probe::SetEdit(box, kFilterValue, "500.5");
    SetFocus(GetDlgItem(box, kFilterValue));
    probe::PostKey(VK_RETURN);
    EXPECT_TRUE(probe::PumpUntil([&] { return !IsWindow(box); })) << "the default button by keyboard";
    EXPECT_EQ(Cell(0, 1), "511.50");
    Run(filterColumn);
    box = probe::FindDialog("Filter: Amount");
    EXPECT_EQ(probe::Text(box, kFilterValue), "500.5");
    probe::Press(box, kFilterClear);
    EXPECT_EQ(control->ShownCount(), 100u);
}

TEST_F(FilterList, FindGoesAroundAndTypingFindsByTheFirstColumn) {
    Fill(30);
    cells[4][2] = cells[20][2] = "Expired";
    Run(find);
    HWND box = probe::FindDialog("Find");
    ASSERT_TRUE(box);
    probe::SetEdit(box, kFindText, "expIRED");
    for (const std::uint32_t record : {20u, 4u, 20u}) {
        probe::Press(box, IDOK);
        EXPECT_EQ(control->Focused(), record);
        EXPECT_EQ(SelectedSymbols(), std::vector{cells[record][0]});
    }
    probe::SetEdit(box, kFindText, "nowhere");
    probe::Press(box, IDOK);
    EXPECT_EQ(probe::Text(box, kFindNotice), "Not found");
    SetFocus(GetDlgItem(box, kFindText));
    probe::PostKey(VK_ESCAPE);
    EXPECT_TRUE(probe::PumpUntil([&] { return !IsWindow(box); }));
    LVFINDINFOA typed{};
    typed.flags = LVFI_STRING | LVFI_PARTIAL | LVFI_WRAP;
    const std::string start = cells[7][0];
    typed.psz = start.c_str();
    EXPECT_EQ(Send(LVM_FINDITEMA, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&typed)),
              static_cast<LRESULT>(control->IndexOf(7)));
}

TEST_F(FilterList, ColumnsComeBackAsTheUserLeftThem) {
    struct Kept {
        const char* line; // written into the file; null: left by the list itself
        std::array<int, 3> order, widths;
    };
    const Kept table[] = {
        {nullptr, {2, 0, 1}, {0, 133, 90}},
        {"Amount;no numbers", {0, 1, 2}, {120, 80, 90}},
        {"0,1,1;10,20,30", {0, 1, 2}, {120, 80, 90}},
        {"1,0,2;10,20,30", {1, 0, 2}, {10, 20, 30}},
    };
    std::array<int, 3> order{2, 0, 1};
    Send(LVM_SETCOLUMNORDERARRAY, 3, reinterpret_cast<LPARAM>(order.data()));
    Send(LVM_SETCOLUMNWIDTH, 0, 0);
    Send(LVM_SETCOLUMNWIDTH, 1, 133);
    const std::string settings = (folder / "settings.ini").string();
    Fill(5);
    for (const Kept& kept : table) {
        Close();
        if (kept.line) WritePrivateProfileStringA("Lists", "Orders", kept.line, settings.c_str());
        Open();
        Send(LVM_GETCOLUMNORDERARRAY, 3, reinterpret_cast<LPARAM>(order.data()));
        EXPECT_EQ(order, kept.order);
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)),
                      kept.widths[static_cast<std::size_t>(column)]);
        EXPECT_EQ(Send(LVM_GETITEMCOUNT), 5) << "the rows outlive the window";
    }
    Run(reset);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 120);
}

// Types the name into the box that asks for it.
void CALLBACK NameTheExport(HWND, UINT, UINT_PTR timer, DWORD);
std::string g_exportName;

TEST_F(FilterList, AnExportIsWholeOrNotThere) {
    Fill(3);
    cells[1] = {"=1+1", "-5.50", "a,\"b\""};
    const auto good = folder / "rows.csv", bad = folder / "refused.csv", inTheWay = folder / "refused.csv.new";
    std::filesystem::create_directories(inTheWay);
    for (const auto& path : {good, bad}) {
        g_exportName = path.string();
        SetTimer(nullptr, 0, 10, NameTheExport);
        Run(exportRows);
    }
    EXPECT_EQ(Read(good), "Symbol,Amount,State\r\n" + cells[2][0]
                              + ",62.50,active\r\n'=1+1,-5.50,\"a,\"\"b\"\"\"\r\n" + cells[0][0]
                              + ",0.50,Paused\r\n");
    EXPECT_NE(boxes.Texts().find("could not be written"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(bad));
    EXPECT_FALSE(std::filesystem::exists(folder / "rows.csv.new"));

    control->SelectOnly(1);
    Run(copy);
    ASSERT_TRUE(OpenClipboard(parent));
    const HANDLE memory = GetClipboardData(CF_TEXT);
    EXPECT_STREQ(static_cast<const char*>(GlobalLock(memory)),
                 "Symbol\tAmount\tState\r\n'=1+1\t-5.50\ta,\"b\"\r\n");
    GlobalUnlock(memory);
    CloseClipboard();
}

void CALLBACK NameTheExport(HWND, UINT, UINT_PTR timer, DWORD) {
    constexpr int fileName = 0x47C, fileCombo = 0x480;
    HWND box = probe::FindDialog("Export");
    if (!box) return;
    KillTimer(nullptr, timer);
    for (HWND child : probe::Children(box)) {
        const int id = GetDlgCtrlID(child);

        if (id == fileName || id == fileCombo) SetWindowTextA(child, g_exportName.c_str());
    }
    PostMessageA(box, WM_COMMAND, IDOK, 0);
}

// Whatever is open or under way, the window and even the list may go.
TEST_F(FilterList, MayEndAtAnyTime) {
    Fill(10);
    Run(find);
    Run(filterColumn);
    Close();
    control->InsertFront(3);
    control->Remove(4);
    control->SelectOnly(5);
    EXPECT_FALSE(control->HandleCommand(kFirstCommand + find));
    EXPECT_EQ(control->ShownCount(), 9u);

    Open();
    EXPECT_EQ(Send(LVM_GETITEMCOUNT), 9);
    EXPECT_EQ(SelectedSymbols(), std::vector{cells[5][0]});
    onChange = [&] { Close(); };
    Run(filterCell);
    Open();
    Run(filterColumn);
    onChange = [&] { control.reset(); };
    probe::Press(probe::FindDialog("Filter: Symbol"), kFilterClear);
    EXPECT_FALSE(control);
    EXPECT_TRUE(IsWindow(list));
    Send(WM_KEYDOWN, VK_DOWN);
}

} // namespace
