#include "plugin/basket/window/BasketEditing.h"

#include "framework/Files.h"
#include "plugin/base/Text.h"
#include "plugin/basket/CellJudge.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <vector>

namespace planfold {

namespace {

enum : int {
    kUndoCommand = 25020,
    kRedoCommand,
    kEditCommand,
    kFillCommand,
    kPasteCommand,
    kNextFaultCommand,
    kPreviousFaultCommand,
    kReplaceCommand = 25029 // behind the dialog's own
};

struct EditKey {
    WORD key;
    bool control, shift;
    int command;
    bool rowsOnly; // not in the list of rejected lines
};
constexpr EditKey kEditKeys[] = {
    {'Z', true, false, kUndoCommand, false},         {'Y', true, false, kRedoCommand, false},
    {VK_F2, false, false, kEditCommand, false},      {'D', true, false, kFillCommand, true},
    {'H', true, false, kReplaceCommand, true},       {'V', true, false, kPasteCommand, false},
    {VK_F8, false, false, kNextFaultCommand, false}, {VK_F8, false, true, kPreviousFaultCommand, false},
};

// Columns as they stand on the screen.
std::vector<int> ShownOrder(HWND list) {
    std::vector<int> order(std::size(kBasketListColumns));
    if (!ListView_GetColumnOrderArray(list, static_cast<int>(order.size()), order.data())) return {};
    return order;
}

bool IsShown(HWND list, int column) {
    return column >= 0 && static_cast<std::size_t>(column) < std::size(kBasketListColumns)
           && IsEditable(kBasketListColumns[column].field) && ListView_GetColumnWidth(list, column) > 0;
}

} // namespace

std::array<MenuEntry, BasketEditing::kEntries> BasketEditing::MenuEntries() const {
    const bool isEmpty = m_list.RowCount() == 0;
    return {{{"Undo\tCtrl+Z", kUndoCommand},
             {"Redo\tCtrl+Y", kRedoCommand},
             {"Edit Cell\tF2", kEditCommand, isEmpty},
             {"Fill Down\tCtrl+D", kFillCommand, m_list.Selected().size() < 2},
             {"Replace in Column...\tCtrl+H", kReplaceCommand, isEmpty},
             {"Paste Rows\tCtrl+V", kPasteCommand},
             {"Next Fault\tF8", kNextFaultCommand},
             {"Check...\tAlt+C", IDC_BASKET_CHECK},
             {"Save as Table...", kSaveTableCommand, isEmpty}}};
}

bool BasketEditing::HandleCommand(int command) {
    switch (command) {
    case kUndoCommand:
        m_basket.Undo();
        return true;
    case kRedoCommand:
        m_basket.Redo();
        return true;
    case kEditCommand:
        EditCell();
        return true;
    case kFillCommand:
        if (const auto field = Field()) m_basket.Grid().FillDown(*field);
        return true;
    case kReplaceCommand:
        Replace();
        return true;
    case kPasteCommand:
        Paste();
        return true;
    case kNextFaultCommand:
    case kPreviousFaultCommand:
        GoToFault(command == kPreviousFaultCommand);
        return true;
    default:
        return false;
    }
}

bool BasketEditing::HandleNotify(const NMHDR& notification) {
    const bool inRows = notification.idFrom == IDC_BASKET_LIST;
    if (!inRows && notification.idFrom != IDC_REJECTED_LIST) return false;
    if (inRows && notification.code == NM_CLICK)
        m_column = reinterpret_cast<const NMITEMACTIVATE&>(notification).iSubItem;
    // The edit would stand over another cell.
    if (notification.code == LVN_BEGINSCROLL) m_cell.Close();
    return notification.code == LVN_KEYDOWN
           && OnKey(inRows, reinterpret_cast<const NMLVKEYDOWN&>(notification).wVKey);
}

bool BasketEditing::OnKey(bool inRows, WORD key) {
    const bool control = GetKeyState(VK_CONTROL) < 0, shift = GetKeyState(VK_SHIFT) < 0;
    for (const EditKey& known : kEditKeys) {
        if (known.key != key || known.control != control || known.shift != shift || GetKeyState(VK_MENU) < 0)
            continue;
        if (known.rowsOnly && !inRows) return false;
        if (known.command == kEditCommand && !inRows)
            EditRejected();
        else
            HandleCommand(known.command);
        return true;
    }
    return false;
}

std::optional<BasketField> BasketEditing::Field() const {
    const auto column = static_cast<std::size_t>(m_column);
    return column < std::size(kBasketListColumns) ? std::optional(kBasketListColumns[column].field)
                                                  : std::nullopt;
}

void BasketEditing::EditCell() {
    EditCellAt(IsShown(m_list.Control().Handle(), m_column) ? m_column : 0);
}

void BasketEditing::EditCellAt(int column) {
    const HWND list = m_list.Control().Handle();
    const RecordId row = m_list.Control().Focused();
    const int at = ListView_GetNextItem(list, -1, LVNI_FOCUSED);
    if (m_basket.Runs().IsBusy() || row == kNoRecord || at < 0) return;
    if (const auto why = m_basket.Grid().WhyNot(row)) return m_basket.Tell(*why);
    m_column = column;
    const BasketField field = kBasketListColumns[column].field;
    const std::int32_t serial = m_basket.Rows()[row].SerialNumber();
    m_cell.Open(
        m_dialog.Handle(), list, at, column, m_basket.Grid().CellText(row, field),
        [this, serial, field](const std::string& typed) { return m_basket.Grid().Edit(serial, field, typed); },
        [this](int step) { EditNext(step); });
}

// Behind the last cell of a row comes the first of the next.
void BasketEditing::EditNext(int step) {
    const HWND list = m_list.Control().Handle();
    const std::vector<int> order = ShownOrder(list);
    const int columns = static_cast<int>(order.size());
    int at = static_cast<int>(std::ranges::find(order, m_column) - order.begin());
    do
        at += step;
    while (at >= 0 && at < columns && !IsShown(list, order[static_cast<std::size_t>(at)]));
    if (at >= 0 && at < columns) return EditCellAt(order[static_cast<std::size_t>(at)]);
    const int row = ListView_GetNextItem(list, -1, LVNI_FOCUSED) + step;
    if (row < 0 || row >= static_cast<int>(m_list.ShownCount())) return;
    ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
    ListView_SetItemState(list, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    for (at = step > 0 ? 0 : columns - 1; at >= 0 && at < columns; at += step)
        if (const int column = order[static_cast<std::size_t>(at)]; IsShown(list, column))
            return EditCellAt(column);
}

void BasketEditing::EditRejected() {
    if (m_basket.Runs().IsBusy() || m_panel.Shown() != BasketPanel::Page::rejected
        || m_basket.Rejected().empty())
        return;
    // None is selected after one has become a row.
    const int line = std::max(0, m_panel.FirstSelected());
    m_panel.GoTo(line);
    const RejectedLine& rejected = m_basket.Rejected()[static_cast<std::size_t>(line)];
    const int number = rejected.number;
    const HWND list = m_dialog.Item(IDC_REJECTED_LIST).Handle();
    m_cell.Open(
        m_dialog.Handle(), list, line, BasketPanel::kTextColumn,
        rejected.text.substr(0, rejected.text.find('\0')),
        [this, number](const std::string& typed) { return m_basket.Grid().EditRejected(number, typed); },
        [this](int step) { GoToFault(step < 0); });
}

void BasketEditing::Paste() {
    if (const auto cells = framework::TextOfClipboard(m_dialog.Handle())) m_basket.Grid().Paste(*cells);
}

void BasketEditing::Replace() {
    if (!m_basket.Runs().IsBusy() && m_list.RowCount() > 0)
        m_replace.Open(m_dialog.Handle(), m_dialog.FontSize(), Field().value_or(kStateOfRow));
}

void BasketEditing::GoToFault(bool back) {
    BasketFault at;
    const bool inPanel = GetFocus() == m_dialog.Item(IDC_REJECTED_LIST).Handle();
    if (inPanel && m_panel.Shown() == BasketPanel::Page::rejected && m_panel.FirstSelected() >= 0)
        at.line = static_cast<std::size_t>(m_panel.FirstSelected());
    else if (!inPanel)
        at.row = m_list.FirstSelected();
    const BasketFault start = at;
    // Rows that a filter hides are left out.
    for (auto next = m_basket.Grid().NextFault(at, back); next; next = m_basket.Grid().NextFault(*next, back)) {
        if (next->line) return m_panel.GoTo(static_cast<int>(*next->line));
        if (m_list.GoTo(next->row) || *next == start || *next == at) return;
        if (at.row == kNoRecord && !at.line) at = *next;
    }
    m_basket.Tell("No line is rejected, and no row is a duplicate or was refused.");
}

} // namespace planfold
