// The list's own menu entries and keys.
#include "framework/Files.h"
#include "host/korvexcontrols/ListWindow.h"
#include "host/korvexcontrols/model/Cells.h"

#include <algorithm>

using korvex::kNone;

// In the order of the menu. Numbers stay what they are: programs send them.
struct CFilterListCtrl::Impl::Entry {
    std::uint32_t command; // from the list's first one on
    const char* text;
    bool separatorBefore;
    bool ofColumn; // also in the menu of a heading
    bool (*isPossible)(Impl& list);
    void (Impl::*run)();
};

namespace {

constexpr framework::FileQuestion kExport{"Comma-separated values (*.csv)|*.csv|All files|*.*|", "csv",
                                          "Export"};
constexpr char kSelectAllKey = 'A', kCopyKey = 'C', kFindKey = 'F', kFilterKey = 'L';

std::string Folded(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) { return static_cast<char>(korvex::Fold(c)); });
    return text;
}

} // namespace

std::span<const CFilterListCtrl::Impl::Entry> CFilterListCtrl::Impl::Entries() {
    static constexpr auto always = [](Impl&) { return true; };
    static constexpr auto anySelected = [](Impl& list) { return list.m_model.Selection().Count() > 0; };
    static constexpr auto anyShown = [](Impl& list) { return list.m_model.ShownCount() > 0; };
    static constexpr auto hasCell = [](Impl& list) { return list.FilterByThisCell().has_value(); };
    static constexpr auto filtered = [](Impl& list) {
        return list.m_model.Rows().Filters().Of(list.m_clickedColumn) != nullptr;
    };
    static constexpr auto anyFilter = [](Impl& list) { return list.m_model.Rows().Filters().OfAnyColumn(); };
    static constexpr auto searched = [](Impl& list) { return !list.m_searched.empty(); };
    static constexpr auto sorted = [](Impl& list) { return !list.m_model.Rows().Sort().empty(); };
    static constexpr Entry entries[] = {
        {0, "Copy\tCtrl+C", false, false, anySelected, &Impl::Copy},
        {1, "Select All\tCtrl+A", false, false, anyShown, &Impl::SelectAll},
        {2, "Find...\tCtrl+F", false, false, always, &Impl::OpenFind},
        {12, "Find Next\tF3", false, false, searched, &Impl::FindNext},
        {13, "Find Previous\tShift+F3", false, false, searched, &Impl::FindPrevious},
        {3, "Filter by This Cell", true, false, hasCell, &Impl::FilterCell},
        {4, "Filter Column...\tCtrl+Shift+L", false, true, always, &Impl::AskForFilter},
        {5, "Clear Filter of This Column", false, true, filtered, &Impl::ClearColumnFilter},
        {6, "Clear All Filters", false, true, anyFilter, &Impl::ClearFilters},
        {7, "Sort Ascending", true, true, always, &Impl::SortAscending},
        {8, "Sort Descending", false, true, always, &Impl::SortDescending},
        {9, "Natural Order", false, true, sorted, &Impl::SortNaturally},
        {10, "Export...", true, false, anyShown, &Impl::Export},
        {14, "Columns...", false, true, always, &Impl::OpenColumns},
        {11, "Reset Columns", false, true, always, &Impl::ResetColumns},
    };
    return entries;
}

void CFilterListCtrl::Impl::AppendEntries(HMENU menu, bool ofColumnOnly) {
    AdoptSelection();
    for (const Entry& entry : Entries()) {
        if (ofColumnOnly && !entry.ofColumn) continue;
        if (entry.separatorBefore && GetMenuItemCount(menu) > 0) AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
        if (entry.run == &Impl::Export) AppendViews(menu);
        AppendMenuA(menu, MF_STRING | (entry.isPossible(*this) ? MF_ENABLED : MF_GRAYED),
                    m_firstCommand + entry.command, entry.text);
    }
}

bool CFilterListCtrl::Impl::HandleCommand(std::uint32_t command) {
    if (!Handle() || command < m_firstCommand) return false;
    const auto entries = Entries();
    const auto entry = std::ranges::find(entries, command - m_firstCommand, &Entry::command);
    const auto held = Hold();
    AdoptSelection();
    if (entry == entries.end()) return HandleViewCommand(command - m_firstCommand);
    if (entry->isPossible(*this)) (this->*entry->run)();
    return true;
}

void CFilterListCtrl::Impl::ShowColumnMenu() {
    const DWORD position = GetMessagePos();
    const POINT place{static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
    const std::int32_t column = m_header.ColumnAt(place);
    if (column < 0) return;
    m_clickedColumn = column;
    m_columnIsChosen = true;
    const framework::Menu menu(CreatePopupMenu());
    AppendEntries(menu.Get(), true);
    const int chosen =
        TrackPopupMenu(menu.Get(), TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, Handle(), nullptr);
    if (chosen) HandleCommand(static_cast<std::uint32_t>(chosen));
}

std::optional<LRESULT> CFilterListCtrl::Impl::OnKey(WPARAM key) {
    struct Key {
        WPARAM key;
        bool control, shift;
        void (Impl::*run)();
    };
    static constexpr Key keys[] = {
        {kSelectAllKey, true, false, &Impl::SelectAll},
        {kCopyKey, true, false, &Impl::Copy},
        {VK_INSERT, true, false, &Impl::Copy},
        {kFindKey, true, false, &Impl::OpenFind},
        {VK_F3, false, false, &Impl::FindNext},
        {VK_F3, false, true, &Impl::FindPrevious},
        {kFilterKey, true, true, &Impl::AskForFilterByKey},
    };
    // A menu opened by keyboard is about the focused row.
    m_clickedRecord = kNone;
    const bool control = IsDown(VK_CONTROL), shift = IsDown(VK_SHIFT);
    for (const Key& known : keys) {
        if (known.key != key || known.control != control || known.shift != shift || IsDown(VK_MENU)) continue;
        (this->*known.run)();
        return 0;
    }
    if (key >= VK_PRIOR && key <= VK_DOWN) m_found = kNone;
    if (key >= VK_PRIOR && key <= VK_DOWN && !control) DropLargeSelection(shift);
    return std::nullopt;
}

// Typing finds by the start of the first column from the left.
int CFilterListCtrl::Impl::FindTyped(const LVFINDINFOA& find, int start) {
    const auto shown = m_header.Shown();
    const std::uint32_t count = m_model.ShownCount();
    if (!(find.flags & (LVFI_STRING | LVFI_PARTIAL)) || !find.psz || shown.empty() || !count) return -1;
    const std::string_view typed = find.psz;
    const std::uint32_t from = start > 0 ? static_cast<std::uint32_t>(start) : 0;
    if (from >= count && !(find.flags & LVFI_WRAP)) return -1;
    const std::uint32_t steps = find.flags & LVFI_WRAP ? count : count - from;
    const bool whole = !(find.flags & LVFI_PARTIAL);
    const std::uint32_t row =
        m_model.Rows().Find({from, steps, true, std::span(shown).first(1)}, [&](std::string_view cell) {
            return korvex::StartsWithFolded(cell, typed) && (!whole || cell.size() == typed.size());
        });
    return row == kNone ? -1 : static_cast<int>(row);
}

void CFilterListCtrl::Impl::OnMouseDown(POINT place) {
    LVHITTESTINFO hit{};
    hit.pt = place;
    SendMessageA(Handle(), LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    m_clickedRecord = hit.iItem < 0 ? kNone : m_model.ShownAt(static_cast<std::uint32_t>(hit.iItem));
    ClientToScreen(Handle(), &place);
    m_found = kNone;
    if (const std::int32_t column = m_header.ColumnAt(place); column >= 0) {
        m_clickedColumn = column;
        m_columnIsChosen = true;
    }
}

korvex::ValueType CFilterListCtrl::Impl::TypeOf(std::int32_t column) const {
    const auto* known = m_header.At(column);
    return known ? known->type : korvex::ValueType::text;
}

std::optional<korvex::FilterInput> CFilterListCtrl::Impl::FilterByThisCell() {
    const bool clicked = m_model.ShownRowOf(m_clickedRecord) != kNone;
    const std::uint32_t record = clicked ? m_clickedRecord : m_model.Focused();
    if (record == kNone) return std::nullopt;
    const bool number = korvex::IsNumeric(TypeOf(m_clickedColumn));
    korvex::FilterInput input{number ? korvex::FilterOperator::equals : korvex::FilterOperator::equalsText,
                              std::string(Cell(record, m_clickedColumn)),
                              {}};
    if (!korvex::ColumnFilter::FaultOf(input).empty()) return std::nullopt;
    return input;
}

void CFilterListCtrl::Impl::FilterCell() {
    if (const auto input = FilterByThisCell())
        Rearrange([&] { return m_model.SetFilter(m_clickedColumn, &*input); });
}

korvex::FilterDialog::Column CFilterListCtrl::Impl::About(std::int32_t column) {
    constexpr std::uint32_t mostLookedAt = 200;
    const korvex::ColumnFilter* now = m_model.Rows().Filters().Of(column);
    std::vector<std::uint32_t> records;
    for (std::uint32_t row = 0; row < std::min(m_model.RowCount(), mostLookedAt); ++row)
        records.push_back(m_model.RecordAt(row));
    std::vector<std::string_view> cells(records.size());
    Cells(records, column, cells.data());
    return {m_header.At(column)->heading, TypeOf(column), korvex::ContentOf(cells),
            now ? std::optional(now->Input()) : std::nullopt};
}

void CFilterListCtrl::Impl::AskForFilter() {
    if (!m_filterDialog)
        m_filterDialog.emplace(
            m_self, korvex::FilterDialog::Calls{[this](std::int32_t column) { return About(column); },
                                                [this](std::int32_t column, const korvex::FilterInput* input) {
                                                    SetFocus(Handle());
                                                    Rearrange([&] { return m_model.SetFilter(column, input); });
                                                }});
    m_filterDialog->Ask(Handle(), m_header.Shown(), m_clickedColumn);
}

// No column is the one that is meant until one was clicked.
void CFilterListCtrl::Impl::AskForFilterByKey() {
    const std::int32_t clicked = m_clickedColumn;
    if (!m_columnIsChosen) m_clickedColumn = -1;
    AskForFilter();
    m_clickedColumn = clicked;
}

void CFilterListCtrl::Impl::ClearColumnFilter() {
    Rearrange([&] { return m_model.SetFilter(m_clickedColumn, nullptr); });
}

void CFilterListCtrl::Impl::ClearFilters() {
    Rearrange([&] { return m_model.ClearFilters(); });
}

void CFilterListCtrl::Impl::SortBy(bool descending) {
    Rearrange([&] { return m_model.SetSort({{m_clickedColumn, descending, TypeOf(m_clickedColumn)}}); });
}

void CFilterListCtrl::Impl::SortNaturally() {
    Rearrange([&] { return m_model.SetSort({}); });
}

void CFilterListCtrl::Impl::SelectAll() {
    Select([&] { m_model.SelectRows(0, kNone, true); });
}

void CFilterListCtrl::Impl::OpenFind() {
    if (!m_findDialog)
        m_findDialog.emplace(m_self,
                             [this](const std::string& text, bool forward) { return Find(text, forward); });
    m_findDialog->Show(Handle(), m_searched);
}

void CFilterListCtrl::Impl::FindNext() {
    m_searched.empty() ? OpenFind() : static_cast<void>(Find(m_searched, true));
}

void CFilterListCtrl::Impl::FindPrevious() {
    m_searched.empty() ? OpenFind() : static_cast<void>(Find(m_searched, false));
}

// The search goes from the row beside the last hit, or beside the one that the user went to since, around the
// end and back to itself. What comes in meanwhile takes the focus, not the search.
bool CFilterListCtrl::Impl::Find(const std::string& text, bool forward) {
    m_searched = text;
    const std::uint32_t from = m_model.ShownRowOf(m_found) == kNone ? m_model.Focused() : m_found;
    const std::uint32_t count = m_model.ShownCount(), focused = m_model.ShownRowOf(from);
    if (text.empty() || !count) return false;
    const std::uint32_t none = forward ? 0 : count - 1;
    const std::uint32_t start = focused == kNone ? none : (focused + (forward ? 1 : count - 1)) % count;
    const auto columns = m_header.Shown();
    const std::string folded = Folded(text);
    const std::uint32_t row = m_model.Rows().Find({start, kNone, forward, columns}, [&](std::string_view cell) {
        return korvex::ContainsFolded(cell, folded);
    });
    if (row == kNone) return false;
    m_found = m_model.ShownAt(row);
    SelectOnly(m_found);
    UncoverFound(row);
    return true;
}

void CFilterListCtrl::Impl::UncoverFound(std::uint32_t row) {
    RECT place{LVIR_BOUNDS, 0, 0, 0};
    if (!m_findDialog || !SendMessageA(Handle(), LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&place)))
        return;
    MapWindowPoints(Handle(), nullptr, reinterpret_cast<POINT*>(&place), 2);
    m_findDialog->Uncover(place);
}

std::vector<korvex::ExportColumn> CFilterListCtrl::Impl::ExportedColumns() const {
    std::vector<korvex::ExportColumn> columns;
    for (const std::int32_t column : m_header.Shown())
        columns.push_back({column, m_header.At(column)->heading, TypeOf(column)});
    return columns;
}

void CFilterListCtrl::Impl::Copy() {
    AdoptSelection();
    auto selected = m_model.SelectedRecords();
    if (selected.empty()) return;
    PutOut("Copying", korvex::Notation::tabbed, std::move(selected),
           [this](const std::string& text) { framework::PutOnClipboard(Handle(), text); });
}

// While the box is open the list goes on, and may go.
void CFilterListCtrl::Impl::Export() {
    const HWND top = GetAncestor(Handle(), GA_ROOT);
    const auto path = framework::AskForFileToWrite(top, kExport, m_name + ".csv");
    if (!path || !Handle() || !m_owner) return;
    PutOut("Exporting", korvex::Notation::csv, m_model.Rows().ShownRecords(),
           [this, path = *path](const std::string& text) {
               const std::string fault = framework::WriteWhole(path, text);
               if (!fault.empty()) m_boxes.Show(Handle() ? GetAncestor(Handle(), GA_ROOT) : nullptr, fault);
           });
}

// One at a time: what was asked for before goes out whole.
void CFilterListCtrl::Impl::PutOut(const char* name, korvex::Notation notation,
                                   std::vector<std::uint32_t> records, korvex::ListOutput::Ready ready) {
    m_output.Finish();
    if (!m_progress) m_progress.emplace(m_self, m_output);
    m_output.Start(name, {notation, ExportedColumns(), std::move(records)}, std::move(ready));
    if (Handle()) m_progress->Follow(Handle());
}
