// The shared list over a real control: what a user and other programs see of it while it changes.
#include "tests/window/FilterListTest.h"

namespace {

// Selection, focus and the place on the screen belong to records, filtered and sorted or not.
TEST_F(FilterList, AStreamMovesNothingToAnotherRecord) {
    for (const bool arranged : {false, true}) {
        SCOPED_TRACE(arranged);
        control->RemoveAll();
        Fill(400);
        control->SetOwnerFilter(2, arranged ? "active" : nullptr);
        if (arranged) Run(sortUp);
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
            ASSERT_EQ(TopSymbol(), top) << step;
            const int focused = Next(LVNI_FOCUSED);
            ASSERT_TRUE(focused < 0 || Cell(focused, 0) == cells[control->Focused()][0]) << step;
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
        EXPECT_EQ(Send(LVM_GETITEMCOUNT), 6);
        EXPECT_EQ(Next(LVNI_SELECTED), -1);
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
    const std::string front = Cell(0, 1), back = Cell(49, 1);
    const Click clicks[] = {{1, HDF_SORTUP, "0.50", "992.50"},
                            {1, HDF_SORTDOWN, "992.50", "0.50"},
                            {1, 0, front.c_str(), back.c_str()}};
    for (const Click& click : clicks) {
        ClickHeading(click.column);
        EXPECT_EQ(Cell(0, 1), click.first);
        EXPECT_EQ(Cell(49, 1), click.last);
        HDITEMA item{};
        item.mask = HDI_FORMAT;
        SendMessageA(Header(), HDM_GETITEMA, 1, reinterpret_cast<LPARAM>(&item));
        EXPECT_EQ(item.fmt & (HDF_SORTUP | HDF_SORTDOWN), click.arrow);
        EXPECT_EQ(item.fmt & HDF_JUSTIFYMASK, HDF_RIGHT);
    }
}

TEST_F(FilterList, ItsWindowComesBackAsItStood) {
    const auto keep = [&] {
        Extras().KeepWindow();
        probe::Pump();
    };
    const auto openAnew = [&] {
        Close();
        Open();
        keep();
    };
    keep();
    SetWindowPos(parent, nullptr, 60, 70, 500, 410, SWP_NOZORDER);
    const RECT normal = probe::PlaceOf(parent);
    for (const UINT state : {SC_RESTORE, SC_MAXIMIZE, SC_MINIMIZE, SC_RESTORE}) {
        SCOPED_TRACE(state);
        SendMessageA(parent, WM_SYSCOMMAND, state, 0);
        openAnew();
        EXPECT_EQ(IsZoomed(parent) != FALSE, state == SC_MAXIMIZE || state == SC_MINIMIZE)
            << "minimised from maximised, it would come back so";
        SendMessageA(parent, WM_SYSCOMMAND, SC_RESTORE, 0);
        const RECT place = probe::PlaceOf(parent);
        EXPECT_TRUE(EqualRect(&place, &normal));
        if (state == SC_MAXIMIZE) SendMessageA(parent, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
    }
}

} // namespace
