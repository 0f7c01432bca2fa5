#include "plugin/basket/window/RejectedPanel.h"

#include "framework/Files.h"
#include "plugin/base/Text.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr framework::ReportList::Column kColumns[] = {{"Line", 50}, {"Reason", 220}, {"Text", 560}};
enum { kLineColumn, kReasonColumn, kTextColumn };
constexpr int kRowHeight = 15; // pixels at 96 DPI
constexpr int kControls[] = {IDC_REJECTED_LABEL, IDC_REJECTED_COPY, IDC_REJECTED_SAVE, IDC_REJECTED_LIST};

constexpr MenuEntry kMenu[] = {
    {"Correct in Form\tEnter", RejectedPanel::kCorrectCommand},
    {"Copy\tCtrl+C", RejectedPanel::kCopyCommand},
    {"Select All\tCtrl+A", RejectedPanel::kSelectAllCommand},
    {"Save As...", RejectedPanel::kSaveCommand},
};

} // namespace

void RejectedPanel::Attach() {
    const auto list = m_dialog.Item<framework::ReportList>(IDC_REJECTED_LIST);
    for (const framework::ReportList::Column& column : kColumns)
        list.AddColumn(column);
    m_enter.Attach(list.Handle());
    m_label.Attach(m_dialog.Item(IDC_REJECTED_LABEL).Handle());
    FollowDpi();
}

void RejectedPanel::FollowDpi() {
    const auto list = m_dialog.Item<framework::ReportList>(IDC_REJECTED_LIST);
    list.SetLook(kRowHeight);
    for (int i = 0; i < static_cast<int>(std::size(kColumns)); ++i)
        list.SetColumnWidth(i, kColumns[i].width);
}

void RejectedPanel::Refresh() {
    const auto list = m_dialog.Item<framework::ReportList>(IDC_REJECTED_LIST);
    ListView_SetItemState(list.Handle(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    list.SetCount(static_cast<int>(m_lines.size()));
    InvalidateRect(list.Handle(), nullptr, TRUE);
    m_label.Tell(Format("Re&jected lines: %zu", m_lines.size()), framework::Meaning::bad);
    for (const int control : kControls)
        m_dialog.Item(control).Show(IsShown());
}

void RejectedPanel::Arrange(const RECT& place) {
    const auto sizeOf = [&](int control) {
        const RECT client = m_dialog.Item(control).ClientRect();
        return SIZE{client.right, client.bottom};
    };
    const SIZE save = sizeOf(IDC_REJECTED_SAVE);
    const SIZE copy = sizeOf(IDC_REJECTED_COPY);
    const SIZE label = sizeOf(IDC_REJECTED_LABEL);
    const LONG gap = save.cy / 3;
    const LONG top = place.top + save.cy + gap;
    const LONG saveLeft = place.right - save.cx;
    const LONG copyLeft = saveLeft - gap - copy.cx;
    m_dialog.Item(IDC_REJECTED_SAVE).Move({saveLeft, place.top, place.right, place.top + save.cy});
    m_dialog.Item(IDC_REJECTED_COPY).Move({copyLeft, place.top, copyLeft + copy.cx, place.top + copy.cy});
    const LONG labelTop = top - gap - label.cy;
    m_dialog.Item(IDC_REJECTED_LABEL).Move({place.left, labelTop, copyLeft - gap, labelTop + label.cy});
    m_dialog.Item(IDC_REJECTED_LIST).Move({place.left, top, place.right, std::max(top, place.bottom)});
}

void RejectedPanel::OpenMenu(LPARAM position) {
    const HWND list = m_dialog.Item(IDC_REJECTED_LIST).Handle();
    m_menu.Open(m_dialog.Handle(), RowMenuPlace(list, position), kMenu);
}

bool RejectedPanel::HandleCommand(int command) {
    const HWND list = m_dialog.Item(IDC_REJECTED_LIST).Handle();
    if (command == kCopyCommand || command == IDC_REJECTED_COPY) {
        Copy();
        return true;
    }
    if (command != kSelectAllCommand) return false;
    ListView_SetItemState(list, -1, LVIS_SELECTED, LVIS_SELECTED);
    return true;
}

int RejectedPanel::FirstSelected() const {
    return ListView_GetNextItem(m_dialog.Item(IDC_REJECTED_LIST).Handle(), -1, LVNI_SELECTED);
}

// The selected lines, or all when none is.
void RejectedPanel::Copy() const {
    const HWND list = m_dialog.Item(IDC_REJECTED_LIST).Handle();
    const bool all = ListView_GetSelectedCount(list) == 0;
    std::string text;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        if (!all && !ListView_GetItemState(list, static_cast<int>(i), LVIS_SELECTED)) continue;
        text.append(m_lines[i].report).push_back('\n');
    }
    framework::PutOnClipboard(m_dialog.Handle(), framework::WithLineEnds(text));
}

std::string RejectedPanel::CellText(std::size_t line, int column) const {
    const RejectedLine& rejected = m_lines[line];
    if (column == kLineColumn) return std::to_string(rejected.number);
    std::string text = column == kReasonColumn ? rejected.reason : rejected.text;
    std::ranges::replace(text, '\0', ' ');
    return text;
}

std::optional<LRESULT> RejectedPanel::HandleNotify(const NMHDR& notification) {
    switch (notification.code) {
    case LVN_GETDISPINFOA: {
        LVITEMA& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(notification)).item;
        const auto line = static_cast<std::size_t>(item.iItem);
        if ((item.mask & LVIF_TEXT) && item.iItem >= 0 && line < m_lines.size())
            lstrcpynA(item.pszText, CellText(line, item.iSubItem).c_str(), item.cchTextMax);
        return 0;
    }
    case LVN_KEYDOWN: {
        const WORD key = reinterpret_cast<const NMLVKEYDOWN&>(notification).wVKey;
        if (GetKeyState(VK_CONTROL) >= 0) return std::nullopt;
        if (key == 'C') HandleCommand(kCopyCommand);
        if (key == 'A') HandleCommand(kSelectAllCommand);
        return 0;
    }
    default:
        return std::nullopt;
    }
}

} // namespace planfold
