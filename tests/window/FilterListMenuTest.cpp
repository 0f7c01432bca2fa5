// What the shared list offers by menus and keys: filters, find, columns, export; and its end under any of them.
#include "tests/window/FilterListTest.h"

namespace {

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
        HMENU menu = CreatePopupMenu();
        control->AppendMenuEntries(menu);
        std::string possible; // in the order of their numbers
        for (std::uint32_t command = copy; command <= reset; ++command)
            possible += GetMenuState(menu, kFirstCommand + command, MF_BYCOMMAND) & MF_GRAYED ? '-' : 'x';
        DestroyMenu(menu);
        EXPECT_EQ(possible, state.possible) << state.name;
    }
    EXPECT_EQ(control->ShownCount(), 6u) << "the owner's filter stays";
    EXPECT_FALSE(control->HandleCommand(kFirstCommand + 99));
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
    ASSERT_TRUE(probe::Select(box, IDC_FILTER_OPERATOR, ">="));
    probe::SetEdit(box, IDC_FILTER_VALUE, "lots");
    probe::Press(box, IDOK);
    EXPECT_EQ(probe::Text(box, IDC_FILTER_FAULT), "\"lots\" is not a number.");
    HDC screen = GetDC(nullptr);
    EXPECT_NE(SendMessageA(box, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(screen),
                           reinterpret_cast<LPARAM>(GetDlgItem(box, IDC_FILTER_FAULT))),
              0);
    EXPECT_EQ(GetTextColor(screen), RGB(150, 20, 20)) << "told in red";
    ReleaseDC(nullptr, screen);
    EXPECT_EQ(control->ShownCount(), 100u);
    probe::SetEdit(box, IDC_FILTER_VALUE, "500.5");
    SetFocus(GetDlgItem(box, IDC_FILTER_VALUE));
    probe::PostKey(VK_RETURN);
    EXPECT_TRUE(probe::PumpUntil([&] { return !IsWindow(box); })) << "the default button by keyboard";
    EXPECT_EQ(Cell(0, 1), "511.50");
    Run(filterColumn);
    box = probe::FindDialog("Filter: Amount");
    EXPECT_EQ(probe::Text(box, IDC_FILTER_VALUE), "500.5");
    probe::Press(box, IDC_FILTER_CLEAR);
    EXPECT_EQ(control->ShownCount(), 100u);
}

TEST_F(FilterList, FindGoesAroundAndTypingFindsByTheFirstColumn) {
    Fill(30);
    cells[4][2] = cells[20][2] = "Expired";
    Run(find);
    HWND box = probe::FindDialog("Find");
    ASSERT_TRUE(box);
    probe::SetEdit(box, IDC_FIND_TEXT, "expIRED");
    for (const std::uint32_t record : {20u, 4u, 20u}) {
        probe::Press(box, IDOK);
        EXPECT_EQ(control->Focused(), record);
        EXPECT_EQ(SelectedSymbols(), std::vector{cells[record][0]});
    }
    probe::SetEdit(box, IDC_FIND_TEXT, "nowhere");
    probe::Press(box, IDOK);
    EXPECT_EQ(probe::Text(box, IDC_FIND_NOTICE), "Not found");
    SetFocus(GetDlgItem(box, IDC_FIND_TEXT));
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

TEST_F(FilterList, AnExportIsWholeOrNotThere) {
    Fill(3);
    cells[1] = {"=1+1", "-5.50", "a,\"b\""};
    const auto good = folder / "rows.csv", bad = folder / "refused.csv", inTheWay = folder / "refused.csv.new";
    std::filesystem::create_directories(inTheWay);
    for (const auto& path : {good, bad}) {
        const probe::WhenShown asked([] { return probe::FindDialog("Export"); },
                                     [&](HWND box) {
                                         for (HWND child : probe::Children(box))
                                             if (const int id = GetDlgCtrlID(child); id == 0x47C || id == 0x480)
                                                 SetWindowTextA(child, path.string().c_str());
                                         PostMessageA(box, WM_COMMAND, IDOK, 0);
                                     });
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
    EXPECT_EQ(probe::OnClipboard(), "Symbol\tAmount\tState\r\n'=1+1\t-5.50\ta,\"b\"\r\n");
}

TEST_F(FilterList, ALongCopyShowsHowFarItIsAndCanBeStopped) {
    enum Way { stop, end, again, close };
    constexpr std::uint32_t rows = 20000;
    Fill(rows);
    const auto progress = [] { return probe::FindDialog("Rows of the List"); };
    for (const Way way : {stop, end, again, close}) {
        control->SelectOnly(0);
        Run(copy);
        const std::string one = probe::OnClipboard();
        Run(selectAll);
        piecesTakeMs = 30;
        const probe::WhenShown shown(
            [&] {
                const HWND box = progress();
                return IsWindowVisible(box) ? box : nullptr;
            },
            [&](HWND box) {
                EXPECT_TRUE(IsWindowEnabled(parent));
                EXPECT_EQ(GetFocus(), list);
                piecesTakeMs = 1;
                if (way == stop) probe::Press(box, IDCANCEL);
                if (way == again) Run(copy);
                if (way == close) DestroyWindow(parent);
            });
        Run(copy);
        EXPECT_TRUE(probe::PumpUntil([&] { return !progress(); }));
        EXPECT_TRUE(shown.Seen()) << way;
        const std::string now = probe::OnClipboard();
        if (way == stop)
            EXPECT_EQ(now, one);
        else
            EXPECT_EQ(std::ranges::count(now, '\n'), rows + 1) << way;
    }
}

TEST_F(FilterList, FindGoesOnFromTheHitWhateverComesAndStandsBesideIt) {
    Fill(60);
    for (const std::uint32_t record : {50u, 30u, 10u})
        cells[record][2] = "Expired";
    Run(find);
    HWND box = probe::FindDialog("Find");
    probe::SetEdit(box, IDC_FIND_TEXT, "Expired");
    for (const std::uint32_t record : {50u, 30u, 10u}) {
        probe::Press(box, IDOK);
        EXPECT_EQ(SelectedSymbols(), std::vector{cells[record][0]});
        RECT row{0, LVIR_BOUNDS, 0, 0}, both{};
        row.left = LVIR_BOUNDS;
        Send(LVM_GETITEMRECT, static_cast<WPARAM>(control->IndexOf(record)), reinterpret_cast<LPARAM>(&row));
        MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&row), 2);
        const RECT place = probe::PlaceOf(box);
        EXPECT_FALSE(IntersectRect(&both, &row, &place)) << record;
        Insert(60 + record); // takes the focus
    }
    SetState(5, LVIS_FOCUSED, LVIS_FOCUSED);
    PostMessageA(list, WM_KEYDOWN, VK_DOWN, 0); // the user has gone elsewhere
    probe::Pump();
    Run(findNext);
    EXPECT_EQ(SelectedSymbols(), std::vector{cells[50][0]});
}

TEST_F(FilterList, SumsFollowRowsAndSelectionWhenNothingElseWaits) {
    Fill(7);
    Extras().SumBy(2, 1, 0);
    EXPECT_EQ(Sums(false), "not known");
    const auto become = [&](bool selected, const std::string& text) {
        probe::PumpUntil([&] { return Sums(selected) == text; });
        EXPECT_EQ(Sums(selected), text);
    };
    // Record n has n * 31 and a half; each third one is paused.
    become(false, "Paused 3 28050|active 4 37400|");
    Run(filterCell);
    control->Remove(6);
    control->SetOwnerFilter(2, "active");
    Run(clearAll);
    become(false, "active 4 37400|");
    Run(selectAll);
    become(true, "active 4 37400|");
    control->Deselect(5);
    become(true, "active 3 21850|");
    control->SelectOnly(1);
    become(true, "");
}

struct Watcher final : KorvexListWatcher {
    void ListSaysMore(CFilterListCtrl*) noexcept override { ++told; }
    std::int32_t Meets(std::uint32_t record, std::int32_t condition) noexcept override {
        return condition == 0 ? record < 3 : record % 2;
    }
    int told = 0;
};

TEST_F(FilterList, WhatIsSeenOfTheRowsComesBackAndViewsAreNamed) {
    constexpr KorvexCondition conditions[] = {{"Early", 0, 1}, {"Odd Only", 1, 1}, {"Never", 0, 0}};
    Watcher watcher;
    const auto watch = [&] {
        Extras().Watch(&watcher);
        Extras().SetConditions(conditions, 3);
    };
    Fill(9);
    watch();
    ClickHeading(0);
    Run(static_cast<Command>(firstCondition + 2));
    EXPECT_EQ(control->ShownCount(), 9u) << "greyed";
    Run(static_cast<Command>(firstCondition));
    EXPECT_EQ(control->ShownCount(), 3u);
    Run(static_cast<Command>(firstCondition + 1));
    EXPECT_EQ(std::string(Extras().ViewName()), "Early, Odd Only");
    Run(saveView);
    HWND box = probe::FindDialog("Save View");
    ASSERT_TRUE(box);
    probe::SetEdit(box, IDC_VIEW_NAME, "  A=B; ");
    probe::Press(box, IDOK);
    EXPECT_EQ(std::string(Extras().ViewName()), "A-B;, Odd Only");

    HMENU menu = CreatePopupMenu();
    control->AppendMenuEntries(menu);
    HMENU views = nullptr;
    for (int i = 0; i < GetMenuItemCount(menu) && !views; ++i)
        views = GetSubMenu(menu, i);
    std::string entries;
    for (int i = 0; i < GetMenuItemCount(views); ++i) {
        char text[64] = "";
        GetMenuStringA(views, static_cast<UINT>(i), text, sizeof text, MF_BYPOSITION);
        const UINT state = GetMenuState(views, static_cast<UINT>(i), MF_BYPOSITION);
        const char* mark = state & MF_GRAYED ? "~" : state & MF_CHECKED ? "*" : "";
        entries += std::string(*text ? mark : "-") + text + "|";
    }
    DestroyMenu(menu);
    EXPECT_EQ(entries, "All Rows|-|*Early|~Never|-|*Odd Only|-|*A-B;|-|Save View...|Delete \"A-B;\"|");

    // Another session of the same user.
    Close();
    control.reset();
    Open();
    Fill(9);
    EXPECT_EQ(control->ShownCount(), 9u) << "nobody knows the conditions yet";
    watch();
    EXPECT_EQ(control->ShownCount(), 1u);
    EXPECT_EQ(control->RecordAt(0), 8u);
    Run(allRows);
    EXPECT_EQ(control->ShownCount(), 9u);
    EXPECT_NE(Cell(0, 0), cells[8][0]) << "still sorted";
    Run(reset);
    EXPECT_EQ(Cell(0, 0), cells[8][0]);
    Run(firstView);
    EXPECT_EQ(control->ShownCount(), 1u);
    Run(deleteView);
    EXPECT_FALSE(control->HandleCommand(kFirstCommand + firstView));
    EXPECT_GT(watcher.told, 3);
    Extras().Watch(nullptr);
}

TEST_F(FilterList, ColumnsAreChosenOrderedAndFitted) {
    Fill(3);
    cells[1][1] = "1234567890123456.00";
    Run(columns);
    HWND box = probe::FindDialog("Columns");
    ASSERT_TRUE(box);
    HWND known = GetDlgItem(box, IDC_COLUMNS_LIST);
    ListView_SetCheckState(known, 0, FALSE);
    ListView_SetItemState(known, 1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    probe::Press(box, IDC_COLUMNS_FIT);
    probe::Press(box, IDC_COLUMNS_DOWN);
    probe::Press(box, IDOK);
    std::array<int, 3> order{};
    Send(LVM_GETCOLUMNORDERARRAY, 3, reinterpret_cast<LPARAM>(order.data()));
    EXPECT_EQ(order, (std::array<int, 3>{0, 2, 1}));
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 0);
    EXPECT_GT(Send(LVM_GETCOLUMNWIDTH, 1),
              Send(LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(cells[1][1].c_str())));
    Run(columns);
    box = probe::FindDialog("Columns");
    probe::Press(box, IDC_COLUMNS_RESET);
    for (int row = 0; row < 3; ++row)
        ListView_SetCheckState(GetDlgItem(box, IDC_COLUMNS_LIST), row, FALSE);
    probe::Press(box, IDOK);
    EXPECT_EQ(probe::Text(box, IDC_COLUMNS_FAULT), "Show at least one column.");
    ListView_SetCheckState(GetDlgItem(box, IDC_COLUMNS_LIST), 2, TRUE);
    probe::Press(box, IDOK);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 2), 90);
    Extras().StretchLastText(1);
    RECT client{};
    GetClientRect(list, &client);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 2), client.right);
    Run(reset);
    Extras().StretchLastText(0);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 120);
}

TEST_F(FilterList, TheFilterKeyAsksForTheColumnWhenNoneIsCurrent) {
    Fill(4);
    cells[2][2] = "05-Mar-2027";
    BYTE keys[256] = {}, usual[256] = {};
    GetKeyboardState(usual);
    keys[VK_CONTROL] = keys[VK_SHIFT] = 0x80;
    SetKeyboardState(keys);
    Send(WM_KEYDOWN, 'L');
    SetKeyboardState(usual);
    HWND box = probe::FindDialog("Filter");
    ASSERT_TRUE(box);
    probe::Press(box, IDOK);
    EXPECT_EQ(probe::Text(box, IDC_FILTER_FAULT), "Choose the column.");
    ASSERT_TRUE(probe::Select(box, IDC_FILTER_COLUMN, "State"));
    probe::SetEdit(box, IDC_FILTER_VALUE, "05-");
    probe::Press(box, IDOK);
    EXPECT_EQ(control->ShownCount(), 1u);
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
    probe::Press(probe::FindDialog("Filter: Symbol"), IDC_FILTER_CLEAR);
    EXPECT_FALSE(control);
    EXPECT_TRUE(IsWindow(list));
    Send(WM_KEYDOWN, VK_DOWN);
}

} // namespace
