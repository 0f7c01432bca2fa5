// The basket's window: its controls and keys, files behind the system's dialogs, long runs, and what comes in
// the middle of them.
#include "tests/window/PluginTest.h"

#include <commdlg.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace basket {
constexpr const char kName[] = "SIP Basket Entry", kCaption[] = "Planfold Basket Order";
constexpr int kClientMode = 1058, kQuantity = 1027, kProducts = 1006;
constexpr int kList = 1100, kPlace = 1101, kLoad = 1102, kExport = 1103, kRejected = 1104;
constexpr int kCopyRejected = 1171, kRunBar = 1702;
constexpr int kDelete = 25002, kFilterCell = 26203, kSort = 26207;
constexpr UINT kHotKey = 1217;
} // namespace basket

// The path that the file dialogs give, the system's own when it is empty; what they were asked last.
std::string g_path, g_asked;

BOOL WINAPI GivePath(OPENFILENAMEA* ask) {
    if (g_path.empty()) return GetOpenFileNameA(ask);
    g_asked = std::string(ask->lpstrDefExt) + " " + ask->lpstrFile
              + (ask->Flags & OFN_OVERWRITEPROMPT ? " asks first|" : "|");
    for (const char* part = ask->lpstrFilter; *part; part += std::strlen(part) + 1)
        g_asked += std::string(part) + "|";
    lstrcpynA(ask->lpstrFile, g_path.c_str(), static_cast<int>(ask->nMaxFile));
    return TRUE;
}

// Each look at the clock costs this besides, as with a host that takes its time.
ULONGLONG g_lookCosts = 0;
ULONGLONG WINAPI SlowClock() {
    static ULONGLONG spent = 0;
    return GetTickCount64() + (spent += g_lookCosts);
}

std::string Line(const std::string& client, const std::string& token = "1013") {
    return client + ",nse_cm,EQ,ARBORTEX," + token
           + ",ARBORTEX-EQ,CNC,150000,7,monthly,,05/Mar/2037,12,MKT,B,,,,value,\r\n";
}
std::string Lines(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += Line("C" + std::to_string(i));
    return text;
}

class BasketWindow : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        folder = std::filesystem::temp_directory_path() / ("basket" + std::to_string(GetCurrentProcessId()));
        std::filesystem::create_directories(folder);
        g_path = (folder / "orders.csv").string();
        for (const char* name : {"GetOpenFileNameA", "GetSaveFileNameA"})
            ReplaceImport(plugin->Module(), "comdlg32.dll", name, GivePath);
        ReplaceImport(plugin->Module(), "kernel32.dll", "GetTickCount64", SlowClock);
        g_lookCosts = 0;
        Open();
    }
    void TearDown() override {
        PluginTest::TearDown();
        std::filesystem::remove_all(folder);
    }

    void Open() {
        Pick(basket::kName);
        dialog = probe::FindDialog(basket::kCaption);
        list = GetDlgItem(dialog, basket::kList);
        rejected = GetDlgItem(dialog, basket::kRejected);
        if (dialog) Answer({{32767, {"get_sip_operation_mode"}}, {10012, {"0"}}});
    }
    // Its control is taken after the order entry's.
    void Answer(const Fields& fields) {
        const Received message(fields);
        const auto first = std::ranges::find_if(host.controls, &FakeControl::live);
        std::next(first)->notifier->OnResponse(nullptr, message.Message(), nullptr);
    }
    void Add(const char* client, const char* amount) {
        FillGoodOrder(dialog, client);
        probe::SetDate(dialog, order::kStartDate, DaysFromNow(40));
        probe::SetEdit(dialog, order::kValue, amount);
        probe::Press(dialog, order::kSubmit);
    }
    void Write(const std::string& text) const {
        std::ofstream(g_path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
    }
    std::string Read() const {
        std::ifstream file(g_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void Load(const std::string& text) {
        Write(text);
        probe::Press(dialog, basket::kLoad);
        probe::PumpUntil([] { return !Progress(); });
    }
    static HWND Progress() {
        for (HWND window : probe::TopWindows())
            if (GetDlgItem(window, basket::kRunBar)) return window;
        return nullptr;
    }
    HWND FileDialog() const {
        for (HWND window : probe::TopWindows())
            if (window != dialog && GetWindow(window, GW_OWNER) == dialog && probe::ClassOf(window) == "#32770"
                && IsWindowVisible(window))
                return window;
        return nullptr;
    }
    void Key(HWND focus, UINT key) const {
        SetFocus(focus);
        probe::PostKey(key);
        probe::Pump();
    }
    bool IsEnabled(int control) const { return IsWindowEnabled(GetDlgItem(dialog, control)); }
    void Command(int command) const { SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(command), 0); }
    // The column's cells from the top, "C2 C1".
    std::string Column(int column, HWND of = nullptr) const {
        std::string text;
        for (int row = 0; row < Rows(of ? of : list); ++row)
            text += (row ? " " : "") + probe::Cell(of ? of : list, row, column);
        return text;
    }
    void SelectRows(std::initializer_list<int> rows) const {
        ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
        for (const int row : rows)
            ListView_SetItemState(list, row, LVIS_SELECTED, LVIS_SELECTED);
    }
    static SIZE SizeOf(HWND window) {
        RECT place{};
        GetWindowRect(window, &place);
        return {place.right - place.left, place.bottom - place.top};
    }

    std::filesystem::path folder;
    HWND dialog = nullptr, list = nullptr, rejected = nullptr;
};

TEST_F(BasketWindow, StandsAloneWithEveryControlAndItsRowsOutliveIt) {
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
    EXPECT_EQ(GetParent(dialog), nullptr);
    EXPECT_EQ(probe::ClassOf(dialog), "#32770");
    const std::pair<const char*, std::vector<int>> controls[] = {
        {"ComboBox",
         {order::kExchange, order::kSeries, order::kSymbol, 1048, 1049, 1050, order::kAction, order::kOrderType,
          order::kClient, order::kProduct, basket::kProducts, order::kInvestBy, order::kFrequency}},
        {"Edit", {order::kClientSearch, order::kValue, basket::kQuantity, order::kPeriod}},
        {"Button", {basket::kClientMode, order::kSubmit, basket::kPlace, basket::kLoad, basket::kExport}},
        {"SysDateTimePick32", {order::kStartDate}},
        {"SysListView32", {basket::kList, basket::kRejected}},
    };
    for (const auto& [name, ids] : controls)
        for (const int id : ids)
            EXPECT_EQ(probe::ClassOf(GetDlgItem(dialog, id)), name) << id;
    std::string headings;
    for (int i = 0; i < 13; ++i)
        headings += HeadingAt(list, i);
    EXPECT_EQ(headings, "Client ID 50|Exchange 50|Series 50|Symbol 100|Product 50|Amount 70 right|"
                        "Quantity 70 right|Frequency 50|Start Date 150|Total Period 50|Order Type 50|Action 50|"
                        "Remarks 50|");
    EXPECT_FALSE(IsEnabled(basket::kPlace));

    Load(Lines(2));
    const HWND first = dialog;
    Open();
    EXPECT_EQ(dialog, first);
    for (const bool escape : {true, false}) {
        if (escape)
            Key(list, VK_ESCAPE);
        else
            Close(dialog);
        EXPECT_TRUE(PluginWindows().empty());
        Open();
        EXPECT_EQ(Column(0), "C2 C1");
        EXPECT_TRUE(IsEnabled(basket::kPlace));
    }
    Answer({{32767, {"add_sip_orders"}}, {32760, {"2"}}, {20008, {"registered"}}});
    EXPECT_EQ(Column(12), "registered NA") << "answers find the rows of the window before";

    const HiddenExport hidden("pu_get_entered_text_results");
    plugin->Exit();
    Open();
    EXPECT_TRUE(probe::IsShown(dialog, order::kClient));
    EXPECT_FALSE(probe::IsShown(dialog, order::kClientSearch));
    EXPECT_EQ(probe::Items(dialog, order::kClient), (Texts{"C001", "C002"}));
}

TEST_F(BasketWindow, KeepsWhatTheUserMadeItLargerByInEveryFont) {
    const auto scrolls = [&] { return (GetWindowLongPtrA(list, GWL_STYLE) & WS_HSCROLL) != 0; };
    EXPECT_FALSE(scrolls()) << "every column is seen at first";
    SetWindowPos(dialog, nullptr, 0, 0, 10, 10, SWP_NOMOVE);
    EXPECT_TRUE(scrolls());
    const SIZE least = SizeOf(dialog);
    SetWindowPos(dialog, nullptr, 0, 0, least.cx + 60, least.cy + 40, SWP_NOMOVE);
    for (const int points : {12, 8}) {
        host.fontSize = points;
        host.calls.clear();
        plugin->ApplyFont();
        EXPECT_EQ(SizeOf(dialog).cx > least.cx + 60, points > 8);
        EXPECT_EQ(SizeOf(dialog).cy == least.cy + 40, points == 8);
        EXPECT_EQ(HeadingAt(rejected, 1), "Reason 220|");
        for (const char* edit : {"(#1025)", "(#1037)"})
            EXPECT_EQ(std::ranges::count(host.calls, "pu_resize_EditCtrlForFontChange" + std::string(edit)), 1);
    }
}

TEST_F(BasketWindow, RowsAreAddedAndModifiedByKeyboardAndMouse) {
    Add("C001", "100");
    Add("C002", "200");
    probe::Select(dialog, order::kInvestBy, "Quantity");
    EXPECT_FALSE(IsEnabled(order::kValue));
    probe::SetEdit(dialog, basket::kQuantity, "7");
    Key(GetDlgItem(dialog, basket::kQuantity), VK_RETURN);
    EXPECT_EQ(boxes.Texts(), "");
    EXPECT_EQ(Column(0) + Column(5) + Column(6), "C002 C002 C0010.00 200.00 100.007 0 0");
    std::string cells;
    for (int column = 0; column < 13; ++column)
        cells += column == 8 ? "" : probe::Cell(list, 2, column) + "|";
    EXPECT_EQ(cells, "C001|nse_cm|EQ|BYTEFIN|CNC|100.00|0|monthly|12|MKT|SIP|NA|");
    EXPECT_EQ(Next(list, LVNI_FOCUSED), 0);
    EXPECT_EQ(Next(list, LVNI_SELECTED), -1) << "the new row is not selected";
    EXPECT_TRUE(IsEnabled(basket::kPlace));

    const auto modify = [&](const char* amount) {
        EXPECT_EQ(probe::Text(dialog, order::kSubmit), "&Modify");
        EXPECT_EQ(Rows(list), 3) << "nothing was added";
        probe::SetEdit(dialog, order::kValue, amount);
        probe::Press(dialog, order::kSubmit);
        EXPECT_EQ(probe::Text(dialog, order::kSubmit) + probe::Text(dialog, order::kPeriod), "Add");
    };
    SelectRows({2});
    Key(list, VK_RETURN);
    EXPECT_EQ(probe::Text(dialog, order::kClientSearch) + probe::Text(dialog, order::kValue), "C001100.00");
    modify("150.5");
    RECT row{LVIR_LABEL, 0, 0, 0};
    SendMessageA(list, LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&row));
    const LPARAM place = MAKELPARAM(row.left + 4, row.top + 4);
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageA(list, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, place);
    probe::Pump();
    modify("250.5");
    EXPECT_EQ(Column(5), "0.00 250.50 150.50");
    // Enter on a row that has only the focus chooses it.
    SelectRows({});
    ListView_SetItemState(list, 0, LVIS_FOCUSED, LVIS_FOCUSED);
    Key(list, VK_RETURN);
    EXPECT_EQ(probe::Text(dialog, basket::kQuantity) + probe::Text(dialog, order::kSubmit), "7&Modify");
    EXPECT_EQ(Next(list, LVNI_SELECTED), 0);
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(BasketWindow, DeletesWhatIsShownAndSelected) {
    Load(Lines(6));
    struct Row {
        const char* way;
        std::initializer_list<int> selected;
        std::function<void()> deletes;
        const char* left;
        int focused;
    };
    const Row rows[] = {
        {"command", {1, 3}, [&] { Command(basket::kDelete); }, "C6 C4 C2 C1", 2},
        {"key, which the host sends", {0}, [&] { Key(list, VK_DELETE); }, "C6 C4 C2 C1", 2},
        {"the host's message", {0}, [&] { SendMessageA(dialog, basket::kHotKey, 193, 0); }, "C4 C2 C1", 0},
        {"nothing selected", {}, [&] { Command(basket::kDelete); }, "C4 C2 C1", 0},
        {"last row", {2}, [&] { Command(basket::kDelete); }, "C4 C2", -1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.way);
        SelectRows(row.selected);
        row.deletes();
        EXPECT_EQ(Column(0), row.left);
        EXPECT_TRUE(row.focused < 0 || Next(list, LVNI_FOCUSED) == row.focused);
    }
    Load(Line("C1") + Line("C2") + Line("C1"));
    Command(basket::kFilterCell);
    EXPECT_EQ(Column(0), "C1 C1");
    const HiddenExport hidden("pu_InvokeDialog");
    Close(dialog);
    Open();
    EXPECT_EQ(Rows(list), 2) << "the filter is there again";
    SelectRows({0, 1});
    Key(list, VK_DELETE);
    EXPECT_EQ(Rows(list), 0);
    probe::Press(dialog, basket::kPlace);
    EXPECT_EQ(boxes.Texts(), "Are you sure to place these Basket Orders?|Order Placed..!!|")
        << "the hidden row";

    const std::string entries = MenuOf(list);
    EXPECT_TRUE(entries.starts_with("Delete\tDel 25002|-|(Copy\tCtrl+C 26200)|(Select All")) << entries;
    EXPECT_TRUE(entries.ends_with("|Reset Columns 26211|-")) << entries;
    RECT header{};
    GetWindowRect(ListView_GetHeader(list), &header);
    EXPECT_EQ(MenuOf(list, MAKELPARAM(header.left + 9, header.top + 9)), "(none)");
}

TEST_F(BasketWindow, LoadsAndExportsFilesOrLeavesThemAsTheyAre) {
    probe::Press(dialog, basket::kExport);
    EXPECT_EQ(boxes.Texts(), "No items in the list|");
    Load(Line("C1") + Line("J\xFCrgen") + "a line\n" + Line("C3", "1"));
    EXPECT_EQ(g_asked,
              "txt |All Files (*.*)|*.*|CSV Files(*.csv)|*.csv; *.csv|Text Documents(*.txt)|*.txt; *.txt|");
    EXPECT_EQ(boxes.Texts(), "InValid Token|");
    EXPECT_EQ(probe::Text(dialog), basket::kCaption);
    EXPECT_EQ(Column(0), "J\xFCrgen C1");
    EXPECT_TRUE(IsWindowVisible(rejected));
    EXPECT_EQ(HeadingAt(rejected, 0) + HeadingAt(rejected, 1) + HeadingAt(rejected, 2),
              "Line 50|Reason 220|Text 560|");
    const std::string reasons = "3 4|Invalid Format InValid Token";
    EXPECT_EQ(Column(0, rejected) + "|" + Column(1, rejected), reasons);
    EXPECT_EQ(probe::Cell(rejected, 0, 2), "a line");

    // Ctrl+A, as a key that the list reports.
    BYTE keys[256] = {}, usual[256] = {};
    GetKeyboardState(usual);
    keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    SendMessageA(rejected, WM_KEYDOWN, 'A', 1);
    SetKeyboardState(usual);
    EXPECT_EQ(ListView_GetSelectedCount(rejected), 2u);
    probe::Press(dialog, basket::kCopyRejected);
    ASSERT_TRUE(OpenClipboard(nullptr));
    const auto* copied = static_cast<const char*>(GlobalLock(GetClipboardData(CF_TEXT)));
    EXPECT_TRUE(std::string_view(copied).starts_with("a line\r\nfailed to load due to Invalid Format"))
        << copied;
    CloseClipboard();

    const std::string before = Read();
    {
        const HANDLE locked = CreateFileA(g_path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        probe::Press(dialog, basket::kLoad);
        EXPECT_EQ(boxes.Texts(), "File Open Error|");
        EXPECT_EQ(Column(0), "J\xFCrgen C1");
        EXPECT_EQ(Column(0, rejected) + "|" + Column(1, rejected), reasons);
        probe::Press(dialog, basket::kExport);
        EXPECT_EQ(boxes.Texts(), " Basket File Write Error: File Open Error|");
        CloseHandle(locked);
    }
    SetFileAttributesA(g_path.c_str(), FILE_ATTRIBUTE_READONLY);
    probe::Press(dialog, basket::kExport);
    EXPECT_EQ(boxes.Texts(), " Basket File Write Error: File Open Error|");
    EXPECT_EQ(Read(), before);
    SetFileAttributesA(g_path.c_str(), FILE_ATTRIBUTE_NORMAL);
    const std::string good = std::exchange(g_path, (folder / "nowhere" / "orders.csv").string());
    probe::Press(dialog, basket::kExport);
    EXPECT_EQ(boxes.Texts(), " Basket File Write Error: File Open Error|");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1) << "no neighbour is left";

    g_path = good;
    probe::Press(dialog, basket::kExport);
    EXPECT_TRUE(g_asked.starts_with("csv BasketOrderSip..csv asks first|")) << g_asked;
    EXPECT_TRUE(g_asked.ends_with("|EXCEL Files(*.xls)|*.xls; *.xls|")) << g_asked;
    EXPECT_EQ(boxes.Texts(), "Exported to File Successfully|");
    EXPECT_TRUE(Read().starts_with("J\xFCrgen,nse_cm,EQ,ARBORTEX,1013,ARBORTEX-EQ,CNC,150000,7,monthly,"));
    EXPECT_TRUE(Read().ends_with(",12,MKT,B,BUY,C,DAY,value, ,\r\n"));
    probe::Press(dialog, basket::kLoad);
    EXPECT_EQ(Column(0), "C1 J\xFCrgen");
    EXPECT_FALSE(IsWindowVisible(rejected)) << "after a clean load";
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(BasketWindow, FilterAndSortChangeNothingOfThePlacing) {
    Load(Line("C2") + Line("C3") + Line("C1") + Line("C3"));
    Command(basket::kSort);
    Command(basket::kFilterCell);
    EXPECT_EQ(Column(0), "C3 C3");
    host.calls.clear();
    host.requests.clear();
    host.cautionOfRow = {{1, 0}};
    probe::Press(dialog, basket::kPlace);
    Texts calls;
    for (const char* client : {"C3", "C1", "C3", "C2"})
        calls.push_back("pu_build_bskt_caution_order_map(" + std::string(client)
                        + ",value,CNC,150000,ARBORTEX-EQ,nse_cm," + std::to_string(calls.size()) + ")");
    std::erase_if(host.calls, [](const std::string& call) { return !call.starts_with("pu_build_bskt"); });
    EXPECT_EQ(host.calls, calls);
    std::string sent;
    for (const std::string& request : host.requests)
        sent +=
            request.substr(request.find(" 54001=") + 7, 2) + request.substr(request.find(" 32760="), 8) + "|";
    EXPECT_EQ(sent, "C3 32760=4|C3 32760=2|C2 32760=1|");
    EXPECT_EQ(boxes.Texts(), "Are you sure to place these Basket Orders?|Order Placed..!!|");
}

LRESULT CALLBACK CountPaints(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                             DWORD_PTR count) {
    if (message == WM_PAINT) ++*reinterpret_cast<int*>(count);
    return DefSubclassProc(window, message, wParam, lParam);
}

TEST_F(BasketWindow, LongRunsArePaintedAndCanBeStopped) {
    constexpr std::size_t many = 20000;
    int paints = 0;
    SetWindowSubclass(dialog, CountPaints, 78, reinterpret_cast<DWORD_PTR>(&paints));
    Write(Lines(many));
    const auto run = [&](int button, auto during) {
        paints = 0;
        g_lookCosts = 20;
        probe::Press(dialog, button);
        ASSERT_NE(Progress(), nullptr);
        EXPECT_EQ(GetAncestor(GetFocus(), GA_ROOT), Progress());
        EXPECT_FALSE(IsWindowEnabled(dialog));
        InvalidateRect(dialog, nullptr, FALSE);
        EXPECT_TRUE(probe::PumpUntil([&] { return paints > 0; }));
        during();
        g_lookCosts = 0;
        EXPECT_TRUE(probe::PumpUntil([] { return !Progress(); }));
        EXPECT_TRUE(IsWindowEnabled(dialog));
        EXPECT_TRUE(IsEnabled(basket::kPlace));
        EXPECT_EQ(GetAncestor(GetFocus(), GA_ROOT), dialog);
    };
    run(basket::kLoad,
        [&] { EXPECT_TRUE(probe::Text(dialog).ends_with(" - Loading Basket. Please Wait.... ")); });
    EXPECT_EQ(Rows(list), static_cast<int>(many));
    EXPECT_EQ(probe::Text(dialog) + boxes.Texts(), basket::kCaption);

    const auto escape = [] { probe::PostKey(VK_ESCAPE); };
    host.requests.clear();
    run(basket::kPlace, [&] {
        g_lookCosts = 0;
        host.duringCaution = [] { g_lookCosts = 1; };
        EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() > 100; }));
        Answer({{32767, {"add_sip_orders"}}, {32760, {std::to_string(many - 1)}}, {20008, {"registered"}}});
        EXPECT_EQ(probe::Cell(list, 1, 12), "registered");
        escape();
    });
    const std::string sent = std::to_string(host.requests.size());
    EXPECT_EQ(boxes.Texts(), "Are you sure to place these Basket Orders?|Placing was stopped: " + sent
                                 + " of 20000 orders were sent.\nRemove these " + sent + " from the basket?|");
    EXPECT_EQ(static_cast<std::size_t>(Rows(list)), many - host.requests.size());

    run(basket::kLoad, escape);
    EXPECT_TRUE(boxes.Texts().starts_with("Loading was stopped: "));
    EXPECT_LT(Rows(list), static_cast<int>(many));
}

// Nothing is left, and nothing goes on any more; another pick changes nothing.
TEST_F(BasketWindow, MayEndInTheMiddleOfEverything) {
    enum End { exits, closes, picks };
    End end = exits;
    const auto ends = [&] {
        if (end == exits)
            plugin->Exit();
        else if (end == closes)
            Close(dialog);
        else
            Pick(basket::kName);
    };
    struct Row {
        const char* middle;
        std::function<void()> happens;
        std::size_t sent = 0; // when another pick is all that happens
    };
    const Row rows[] = {
        {"the question of a placing",
         [&] {
             boxes.during = ends;
             probe::Press(dialog, basket::kPlace);
         },
         9},
        {"the host's question",
         [&] {
             host.duringCaution = ends;
             probe::Press(dialog, basket::kPlace);
         },
         9},
        {"the row menu",
         [&] {
             const WhenShown menu(probe::OpenMenu, [&](HWND) {
                 ends();
                 if (end == picks) EndMenu();
             });
             SendMessageA(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), MAKELPARAM(60, 60));
             EXPECT_TRUE(menu.Seen());
         }},
        {"the scrip look-up of a new row",
         [&] {
             host.duringScripLookUp = ends;
             Add("C001", "100");
         }},
        {"a file dialog",
         [&] {
             const std::string path = std::exchange(g_path, {});
             const WhenShown asked([&] { return FileDialog(); },
                                   [&](HWND shown) {
                                       ends();
                                       if (end == picks) probe::Press(shown, IDCANCEL);
                                   });
             probe::Press(dialog, basket::kLoad);
             EXPECT_TRUE(asked.Seen());
             g_path = path;
         }},
        {"the progress of a placing",
         [&] {
             g_lookCosts = 100;
             probe::Press(dialog, basket::kPlace);
             ASSERT_NE(Progress(), nullptr);
             EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() == 1; }));
             ends();
             if (end == picks) SendMessageA(Progress(), WM_CLOSE, 0, 0);
             g_lookCosts = 0;
         },
         1},
    };
    for (const Row& row : rows)
        for (const End how : {exits, closes, picks}) {
            SCOPED_TRACE(testing::Message() << row.middle << ", " << how);
            end = how;
            Open();
            Load(Lines(9));
            host.requests.clear();
            boxes.Texts();
            row.happens();
            const std::size_t sent = host.requests.size();
            probe::Pump();
            EXPECT_EQ(host.requests.size(), sent) << "nothing goes on";
            EXPECT_TRUE(how != picks || !row.sent || sent == row.sent) << sent;
            EXPECT_EQ(probe::FindDialog(basket::kCaption), how == picks ? dialog : nullptr);
            EXPECT_EQ(std::ranges::count_if(PluginWindows(), IsWindowVisible), how == picks);
            EXPECT_TRUE(how != picks || IsWindowEnabled(dialog));
            EXPECT_EQ(host.LiveControls() == 0, how == exits);
        }
    boxes.Texts();
}

} // namespace
