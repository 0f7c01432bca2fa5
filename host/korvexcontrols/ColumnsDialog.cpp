#include "host/korvexcontrols/ColumnsDialog.h"

#include "base/Text.h"
#include "host/korvexcontrols/resource.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace korvex {

namespace {

constexpr int kNameWidth = 150, kWidthWidth = 45; // pixels at 96 DPI and 8 points
constexpr int kWidest = 2000;

LVITEMA StateItem(UINT state, UINT mask) {
    LVITEMA item{};
    item.state = state;
    item.stateMask = mask;
    return item;
}

} // namespace

ColumnsDialog::ColumnsDialog(std::weak_ptr<void> owner, Calls calls)
    : CQVDialog(std::move(owner), IDD_KORVEX_COLUMNS, "Columns"), m_calls(std::move(calls)) {}

void ColumnsDialog::Show(HWND list, std::vector<Column> columns, const ColumnsState& now) {
    m_columns = std::move(columns);
    Take(now);
    Open(list);
    Item(IDC_COLUMNS_LIST).Focus();
}

void ColumnsDialog::Take(const ColumnsState& state) {
    m_rows.clear();
    for (const int column : state.order) {
        const auto index = static_cast<std::size_t>(column);
        const int width = state.widths[index];
        m_rows.push_back({column, width ? width : m_columns[index].width, width > 0});
    }
}

void ColumnsDialog::OnInit() {
    CQVDialog::OnInit();
    const auto list = Item<framework::ReportList>(IDC_COLUMNS_LIST);
    list.Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    list.AddColumn({"Column", kNameWidth});
    list.AddColumn({"Width", kWidthWidth});
    Item(IDC_COLUMNS_WIDTH).Send(EM_LIMITTEXT, 4);
    Fill();
    Select(0);
}

void ColumnsDialog::Fill() {
    m_filling = true;
    const auto list = Item(IDC_COLUMNS_LIST);
    list.Send(LVM_DELETEALLITEMS);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const Row& row = m_rows[i];
        LVITEMA item{};
        item.mask = LVIF_TEXT;
        item.iItem = static_cast<int>(i);
        item.pszText = const_cast<char*>(m_columns[static_cast<std::size_t>(row.column)].heading.c_str());
        list.Send(LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
        const std::string width = std::to_string(row.width);
        item.iSubItem = 1;
        item.pszText = const_cast<char*>(width.c_str());
        list.Send(LVM_SETITEMTEXTA, i, reinterpret_cast<LPARAM>(&item));
        const LVITEMA check = StateItem(INDEXTOSTATEIMAGEMASK(row.shown ? 2 : 1), LVIS_STATEIMAGEMASK);
        list.Send(LVM_SETITEMSTATE, i, reinterpret_cast<LPARAM>(&check));
    }
    m_filling = false;
}

int ColumnsDialog::Selected() const {
    const auto row =
        static_cast<int>(Item(IDC_COLUMNS_LIST).Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    return row < static_cast<int>(m_rows.size()) ? row : -1;
}

void ColumnsDialog::Select(int row) {
    Item<framework::ReportList>(IDC_COLUMNS_LIST).SelectRow(row);
    ShowSelected();
}

void ColumnsDialog::ShowSelected() {
    const int row = Selected(), last = static_cast<int>(m_rows.size()) - 1;
    m_filling = true;
    Item(IDC_COLUMNS_WIDTH).SetText(row < 0 ? "" : std::to_string(m_rows[static_cast<std::size_t>(row)].width));
    m_filling = false;
    Item(IDC_COLUMNS_WIDTH).Enable(row >= 0);
    Item(IDC_COLUMNS_FIT).Enable(row >= 0);
    Item(IDC_COLUMNS_UP).Enable(row > 0);
    Item(IDC_COLUMNS_DOWN).Enable(row >= 0 && row < last);
}

std::optional<LRESULT> ColumnsDialog::OnNotify(const NMHDR& notification) {
    if (notification.idFrom != IDC_COLUMNS_LIST || notification.code != LVN_ITEMCHANGED || m_filling)
        return std::nullopt;
    const auto& change = reinterpret_cast<const NMLISTVIEW&>(notification);
    if (change.iItem >= 0 && static_cast<std::size_t>(change.iItem) < m_rows.size()
        && change.uNewState & LVIS_STATEIMAGEMASK)
        m_rows[static_cast<std::size_t>(change.iItem)].shown =
            (change.uNewState & LVIS_STATEIMAGEMASK) == static_cast<UINT>(INDEXTOSTATEIMAGEMASK(2));
    if ((change.uNewState ^ change.uOldState) & LVIS_SELECTED) ShowSelected();
    return std::nullopt;
}

bool ColumnsDialog::OnCommand(const framework::Command& command) {
    switch (command.id) {
    case IDOK:
        Accept();
        return true;
    case IDC_COLUMNS_UP:
        MoveSelected(-1);
        return true;
    case IDC_COLUMNS_DOWN:
        MoveSelected(1);
        return true;
    case IDC_COLUMNS_FIT:
        Fit();
        return true;
    case IDC_COLUMNS_RESET: {
        ColumnsState laidDown{std::vector<int>(m_columns.size()), {}};
        std::iota(laidDown.order.begin(), laidDown.order.end(), 0);
        std::ranges::transform(m_columns, std::back_inserter(laidDown.widths), &Column::width);
        Take(laidDown);
        Fill();
        Select(0);
        return true;
    }
    case IDC_COLUMNS_WIDTH:
        if (command.notification == EN_CHANGE && !m_filling) TakeWidth();
        return true;
    default:
        return false;
    }
}

void ColumnsDialog::MoveSelected(int by) {
    const int row = Selected(), to = row + by;
    if (row < 0 || to < 0 || to >= static_cast<int>(m_rows.size())) return;
    std::swap(m_rows[static_cast<std::size_t>(row)], m_rows[static_cast<std::size_t>(to)]);
    Fill();
    Select(to);
}

void ColumnsDialog::TakeWidth() {
    const int row = Selected();
    const auto width = base::ReadNumber<int>(Item(IDC_COLUMNS_WIDTH).Text());
    if (row < 0 || !width || *width <= 0 || *width > kWidest) return;
    m_rows[static_cast<std::size_t>(row)].width = *width;
    std::string text = std::to_string(*width);
    LVITEMA item{};
    item.iSubItem = 1;
    item.pszText = text.data();
    Item(IDC_COLUMNS_LIST).Send(LVM_SETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void ColumnsDialog::Fit() {
    const int row = Selected();
    if (row < 0 || !m_calls.fit) return;
    const int width = std::min(kWidest, m_calls.fit(m_rows[static_cast<std::size_t>(row)].column));
    Item(IDC_COLUMNS_WIDTH).SetText(std::to_string(width));
}

ColumnsState ColumnsDialog::Chosen() const {
    ColumnsState state{{}, std::vector<int>(m_columns.size())};
    for (const Row& row : m_rows) {
        state.order.push_back(row.column);
        state.widths[static_cast<std::size_t>(row.column)] = row.shown ? row.width : 0;
    }
    return state;
}

// A list without columns would show nothing to ask for them by.
void ColumnsDialog::Accept() {
    if (std::ranges::none_of(m_rows, &Row::shown)) {
        Item(IDC_COLUMNS_FAULT).SetText("Show at least one column.");
        return;
    }
    const ColumnsState chosen = Chosen();
    const auto set = m_calls.set;
    Destroy();
    if (set) set(chosen);
}

} // namespace korvex
