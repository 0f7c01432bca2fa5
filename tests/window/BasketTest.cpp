// The basket's controls, rows and keys, and the files behind the system's dialogs.
#include "tests/window/BasketWindowTest.h"

namespace {

TEST_F(BasketWindow, StandsAloneWithEveryControlAndItsRowsOutliveIt) {
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
    EXPECT_EQ(GetParent(dialog), nullptr);
    EXPECT_FALSE(IsEnabled(IDC_BASKET_PLACE));

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
        EXPECT_TRUE(IsEnabled(IDC_BASKET_PLACE));
    }
    Answer("echoedRequest=add_sip_orders echoedNumber=2 userText=registered");
    EXPECT_EQ(Column(12), "registered NA") << "answers find the rows of the window before";

    const HiddenExport hidden("pu_get_entered_text_results");
    plugin->Exit();
    Open();
    EXPECT_TRUE(probe::IsShown(dialog, IDC_CLIENT_COMBO));
    EXPECT_FALSE(probe::IsShown(dialog, IDC_CLIENT_SEARCH));
    EXPECT_EQ(probe::Items(dialog, IDC_CLIENT_COMBO), (Texts{"C001", "C002"}));
}

TEST_F(BasketWindow, KeepsWhatTheUserMadeItLargerByInEveryFont) {
    Load(Lines(60));
    const auto scrolls = [&] { return (GetWindowLongPtrA(list, GWL_STYLE) & WS_HSCROLL) != 0; };
    EXPECT_FALSE(scrolls()) << "every column is seen at first";
    SetWindowPos(dialog, nullptr, 0, 0, 10, 10, SWP_NOMOVE);
    EXPECT_TRUE(scrolls());
    const auto size = [&] { return probe::SizeOf(dialog); };
    const SIZE least = size();
    SetWindowPos(dialog, nullptr, 0, 0, least.cx + 60, least.cy + 40, SWP_NOMOVE);
    for (const int points : {12, 8}) {
        host.fontSize = points;
        host.calls.clear();
        plugin->ApplyFont();
        EXPECT_EQ(size().cx > least.cx + 60, points > 8);
        EXPECT_EQ(size().cy == least.cy + 40, points == 8);
        EXPECT_EQ(ListView_GetColumnWidth(rejected, 1),
                  MulDiv(360 * points / 8, static_cast<int>(GetDpiForWindow(rejected)), 96));
        for (const char* edit : {"(#1025)", "(#1037)"})
            EXPECT_EQ(std::ranges::count(host.calls, "pu_resize_EditCtrlForFontChange" + std::string(edit)), 1);
    }
}

TEST_F(BasketWindow, RowsAreAddedAndModifiedByKeyboardAndMouse) {
    Add("C001", "100");
    Add("C002", "200");
    probe::Select(dialog, IDC_INVEST_BY, "Quantity");
    EXPECT_FALSE(IsEnabled(IDC_VALUE));
    probe::SetEdit(dialog, IDC_BASKET_QUANTITY, "1,507"); // as it is pasted
    Key(GetDlgItem(dialog, IDC_BASKET_QUANTITY), VK_RETURN);
    EXPECT_EQ(boxes.Texts(), "");
    EXPECT_EQ(Column(0) + Column(5) + Column(6), "C002 C002 C0010.00 200.00 100.001507 0 0");
    EXPECT_EQ(Next(list, LVNI_FOCUSED), 0);
    EXPECT_EQ(Next(list, LVNI_SELECTED), -1) << "the new row is not selected";
    EXPECT_TRUE(IsEnabled(IDC_BASKET_PLACE));

    const auto modify = [&](const char* amount) {
        EXPECT_EQ(probe::Text(dialog, IDC_SUBMIT), "&Modify");
        EXPECT_EQ(Rows(list), 3) << "nothing was added";
        probe::SetEdit(dialog, IDC_VALUE, amount);
        probe::Press(dialog, IDC_SUBMIT);
        EXPECT_EQ(probe::Text(dialog, IDC_SUBMIT) + probe::Text(dialog, IDC_PERIOD), "Add");
    };
    SelectRows({2});
    Key(list, VK_RETURN);
    EXPECT_EQ(probe::Text(dialog, IDC_CLIENT_SEARCH) + probe::Text(dialog, IDC_VALUE), "C001100.00");
    modify("150.5");
    probe::DoubleClick(list, 1);
    modify("250.5");
    EXPECT_EQ(Column(5), "0.00 250.50 150.50");
    // Enter on a row that has only the focus chooses it.
    SelectRows({});
    ListView_SetItemState(list, 0, LVIS_FOCUSED, LVIS_FOCUSED);
    Key(list, VK_RETURN);
    EXPECT_EQ(probe::Text(dialog, IDC_BASKET_QUANTITY) + probe::Text(dialog, IDC_SUBMIT), "1507&Modify");
    EXPECT_EQ(Next(list, LVNI_SELECTED), 0);
    EXPECT_EQ(boxes.Texts(), "");
}

TEST_F(BasketWindow, DeletesWhatIsShownAndSelected) {
    Load(Lines(6));
    const std::string entries = MenuOf(list);
    EXPECT_TRUE(entries.starts_with(
        "Delete\tDel 25002|-|(Place Selected\tCtrl+P 25006)|Place Unsent\tCtrl+U 25007|"
        "(Place Refused Again\tCtrl+R 25008)|-|Import...\tCtrl+I 25028|-|Undo\tCtrl+Z 25020|Redo\tCtrl+Y "
        "25021|Edit Cell\tF2 25022|"
        "(Fill Down\tCtrl+D 25023)|Replace in Column...\tCtrl+H 25029|Paste Rows\tCtrl+V 25024|Next Fault\tF8 "
        "25025|Check...\tAlt+C 1178|Save as "
        "Table... 25027|-|Orders "
        "of a Day... "
        "25103|(Compare Orders in "
        "Doubt 25104)|-|(Copy\tCtrl+C 26200)|Select All"))
        << entries;
    EXPECT_TRUE(entries.ends_with("|Reset Columns 26211|-")) << entries;
    const RECT header = probe::PlaceOf(ListView_GetHeader(list));
    EXPECT_EQ(MenuOf(list, MAKELPARAM(header.left + 9, header.top + 9)), "(none)");
    struct Row {
        const char* way;
        std::initializer_list<int> selected;
        std::function<void()> deletes;
        const char* left;
        int focused;
    };
    const HWND period = GetDlgItem(dialog, IDC_PERIOD);
    const auto hotKeyOn = [&](HWND focus, bool deleteKey) {
        SetFocus(focus);
        WithKey(VK_DELETE, deleteKey, [&] { SendMessageA(dialog, basket::kHotKey, 193, 0); });
    };
    const Row rows[] = {
        {"in an edit", {0}, [&] { hotKeyOn(period, false); }, "C6 C5 C4 C3 C2 C1", -1},
        {"the key on a button",
         {0},
         [&] { hotKeyOn(GetDlgItem(dialog, IDC_SUBMIT), true); },
         "C6 C5 C4 C3 C2 C1",
         -1},
        {"command", {1, 3}, [&] { Command(basket::kDelete); }, "C6 C4 C2 C1", 2},
        {"key, which the host sends", {0}, [&] { Key(list, VK_DELETE); }, "C6 C4 C2 C1", 2},
        {"the host's message", {0}, [&] { SendMessageA(dialog, basket::kHotKey, 193, 0); }, "C4 C2 C1", 0},
        {"nothing selected", {}, [&] { Command(basket::kDelete); }, "C4 C2 C1", 0},
        {"last row", {2}, [&] { Command(basket::kDelete); }, "C4 C2", -1},
        {"on a button, but not the key",
         {1},
         [&] { hotKeyOn(GetDlgItem(dialog, IDC_SUBMIT), false); },
         "C4",
         -1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.way);
        SelectRows(row.selected);
        row.deletes();
        EXPECT_EQ(Column(0), row.left);
        EXPECT_TRUE(row.focused < 0 || Next(list, LVNI_FOCUSED) == row.focused);
    }
    Load(Line("C1") + Line("C2") + Line("C1"));
    EXPECT_EQ(boxes.Texts(), basket::Replaces(1));
    Command(basket::kFilterCell);
    EXPECT_EQ(Column(0), "C1 C1");
    const HiddenExport hidden("pu_InvokeDialog");
    Close(dialog);
    Open();
    EXPECT_EQ(Rows(list), 2) << "the filter is there again";
    SelectRows({0, 1});
    Key(list, VK_DELETE);
    EXPECT_EQ(Rows(list), 0);
    probe::Press(dialog, IDC_BASKET_PLACE);
    EXPECT_EQ(boxes.Texts(), "Are you sure to place these Basket Orders?|Order Placed..!!|")
        << "the hidden row";
}

TEST_F(BasketWindow, AQuestionComesWhenTheOpenBoxIsGone) {
    Add("C001", "1500");
    Pick("Order Entry");
    host.requests.clear();
    boxes.during = [&] {
        probe::Press(dialog, IDC_BASKET_PLACE);
        EXPECT_EQ(host.requests.size(), 0u);
    };
    host.Answer(Told("first"));
    EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() == 1; }));
    const std::string question = "Are you sure to place these Basket Orders?|Order Placed..!!|";
    EXPECT_EQ(boxes.Texts(), "first|" + question);
}

TEST_F(BasketWindow, KeepsWhatWasNotSentFromOneSessionToTheNext) {
    const std::filesystem::path directory = folder / L"J\xFCrgen";
    const auto names = [&] {
        Texts found;
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            if (const std::string name = entry.path().filename().string(); name.starts_with("Planfold"))
                found.push_back(name.substr(0, 16));
        std::ranges::sort(found);
        return found;
    };
    plugin->Exit();
    host.userDirectory = folder.string() + "\\J\xFCrgen";
    std::filesystem::create_directory(directory);
    Open();
    Load(Lines(2));
    EXPECT_EQ(names(), (Texts{"PlanfoldBasket.c", "PlanfoldBasket.c"})) << "the orders, and who has them";
    plugin->Exit();

    // While another terminal of the user has them, this one has its own.
    const auto other = directory / "PlanfoldBasket.csv.lock";
    const HANDLE held = CreateFileW(other.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    Open();
    EXPECT_EQ(Rows(list), 0);
    Load(Lines(1));
    plugin->Exit();
    CloseHandle(held);
    std::filesystem::remove(other);
    EXPECT_EQ(names(), (Texts{"PlanfoldBasket-2", "PlanfoldBasket.c"}));
    boxes.toQuestions = IDNO;
    Open();
    EXPECT_NE(boxes.Texts().find("|The orders that were not sent before are in\n" + host.userDirectory),
              std::string::npos);
    EXPECT_EQ(names(), (Texts{"PlanfoldBasket 2", "PlanfoldBasket-2", "PlanfoldBasket.c"}));
}

TEST_F(BasketWindow, LoadsAndExportsFilesOrLeavesThemAsTheyAre) {
    Load(Line("C1") + Line("J\xFCrgen") + "a line\n" + Line("C3", "1"));
    EXPECT_EQ(boxes.Texts(), "InValid Token|");
    EXPECT_EQ(Column(0), "J\xFCrgen C1");
    EXPECT_TRUE(IsWindowVisible(rejected));
    EXPECT_EQ(Column(rejected, 0) + "|" + Column(rejected, 1), "3 4|Invalid Format InValid Token");
    EXPECT_EQ(probe::Cell(rejected, 0, 2), "a line");

    // Ctrl+A, as a key that the list reports.
    WithKey(VK_CONTROL, true, [&] { SendMessageA(rejected, WM_KEYDOWN, 'A', 1); });
    EXPECT_EQ(ListView_GetSelectedCount(rejected), 2u);
    probe::Press(dialog, IDC_REJECTED_COPY);
    EXPECT_TRUE(probe::OnClipboard().starts_with("a line\r\nfailed to load due to Invalid Format"));

    const std::string before = Read();
    {
        const HANDLE locked = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        probe::Press(dialog, IDC_BASKET_LOAD);
        EXPECT_EQ(boxes.Texts(), "File Open Error|");
        probe::Press(dialog, IDC_BASKET_EXPORT);
        EXPECT_EQ(boxes.Texts(), " Basket File Write Error: File Open Error|");
        CloseHandle(locked);
    }
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    probe::Press(dialog, IDC_BASKET_EXPORT);
    EXPECT_EQ(boxes.Texts(), " Basket File Write Error: File Open Error|");
    EXPECT_EQ(Read(), before);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    const std::filesystem::path good = std::exchange(path, folder / "nowhere" / "orders.csv");
    probe::Press(dialog, IDC_BASKET_EXPORT);
    EXPECT_EQ(boxes.Texts(), " Basket File Write Error: File Open Error|");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1) << "no neighbour is left";

    path = good;
    probe::Press(dialog, IDC_BASKET_EXPORT);
    EXPECT_TRUE(asked.starts_with("csv BasketOrderSip..csv asks first|")) << asked;
    EXPECT_EQ(boxes.Texts(), "Exported to File Successfully|");
    EXPECT_TRUE(Read().starts_with("J\xFCrgen,") && Read().ends_with(",12,MKT,B,BUY,C,DAY,value, ,\r\n"));
    probe::Press(dialog, IDC_BASKET_LOAD);
    EXPECT_EQ(Column(0), "C1 J\xFCrgen");
    EXPECT_FALSE(IsWindowVisible(rejected)) << "after a clean load";
    EXPECT_EQ(boxes.Texts(), basket::Replaces(2));

    // A name as long as it may be, in a folder beyond the usual length of a path.
    const auto system = [](const std::filesystem::path& name) { return LR"(\\?\)" + name.wstring(); };
    const std::filesystem::path outer = folder / std::wstring(120, L'd'),
                                inner = outer / std::wstring(120, L'e');
    for (const auto& each : {outer, inner})
        CreateDirectoryW(system(each).c_str(), nullptr);
    path = inner / (std::wstring(251, L'n') + L".csv");
    for (const int button : {IDC_BASKET_EXPORT, IDC_BASKET_EXPORT, IDC_BASKET_LOAD})
        probe::Press(dialog, button);
    EXPECT_EQ(boxes.Texts(),
              "Exported to File Successfully|Exported to File Successfully|" + basket::Replaces(2));
    EXPECT_TRUE(DeleteFileW(system(path).c_str()) && RemoveDirectoryW(system(inner).c_str())
                && RemoveDirectoryW(system(outer).c_str()));

    boxes.Texts();
}

} // namespace
