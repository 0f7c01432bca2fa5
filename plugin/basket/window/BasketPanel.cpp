#include "plugin/basket/window/BasketPanel.h"

#include "framework/Files.h"
#include "plugin/base/Text.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr framework::ReportList::Column kRejectedColumns[] = {{"Line", 50}, {"Reason", 360}, {"Text", 560}};
enum { kLineColumn, kReasonColumn };
static_assert(std::string_view(kRejectedColumns[BasketPanel::kTextColumn].heading) == "Text");
constexpr int kPanelRowHeight = 15; // pixels at 96 DPI
constexpr int kTabs[] = {IDC_REJECTED_PAGE, IDC_RESULTS_PAGE};
constexpr int kControls[] = {IDC_REJECTED_PAGE, IDC_RESULTS_PAGE, IDC_REJECTED_COPY, IDC_REJECTED_SAVE,
                             IDC_REJECTED_LIST};
constexpr const char* kOpenTexts[] = {"Correct in Form\tEnter", "Go to Row\tEnter"}; // by page

} // namespace

void BasketPanel::Attach() {
    const auto list = m_dialog.Item<framework::ReportList>(IDC_REJECTED_LIST);
    for (const framework::ReportList::Column& column : kRejectedColumns)
        list.AddColumn(column);
    m_enter.Attach(list.Handle());
    FollowDpi();
    m_wasShown.reset();
    m_listed = 0;
}

void BasketPanel::FollowDpi() {
    const auto list = m_dialog.Item<framework::ReportList>(IDC_REJECTED_LIST);
    list.SetLook(kPanelRowHeight);
    for (int i = 0; i < static_cast<int>(std::size(kRejectedColumns)); ++i)
        list.SetColumnWidth(i, kRejectedColumns[i].width);
}

bool BasketPanel::Refresh() {
    const std::optional<bool> wasShown = m_wasShown;
    const bool hadResults = !m_results.empty();
    m_results = m_basket.Outcome().Results();
    const std::size_t rejected = m_basket.Rejected().size();
    Page page = m_page;
    if (rejected == 0 || (!hadResults && !m_results.empty())) page = Page::results;
    if (m_results.empty()) page = Page::rejected;
    m_dialog.Item(IDC_REJECTED_PAGE).SetText(Format("Re&jected lines: %zu", rejected));
    m_dialog.Item(IDC_RESULTS_PAGE).SetText(Format("Res&ults: %zu", m_results.size()));
    m_dialog.Item(IDC_REJECTED_PAGE).Enable(rejected > 0);
    m_dialog.Item(IDC_RESULTS_PAGE).Enable(!m_results.empty());
    if (page != m_page || Lines() != m_listed)
        Show(page);
    else
        InvalidateRect(m_dialog.Item(IDC_REJECTED_LIST).Handle(), nullptr, FALSE);
    for (const int control : kControls)
        m_dialog.Item(control).Show(IsShown());
    m_wasShown = IsShown();
    return m_wasShown != wasShown;
}

void BasketPanel::Show(Page page) {
    m_page = page;
    for (int i = 0; i < static_cast<int>(std::size(kTabs)); ++i)
        m_dialog.Item(kTabs[i]).Send(BM_SETCHECK, i == static_cast<int>(page) ? BST_CHECKED : BST_UNCHECKED);
    const auto list = m_dialog.Item<framework::ReportList>(IDC_REJECTED_LIST);
    ListView_SetItemState(list.Handle(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    m_listed = Lines();
    list.SetCount(static_cast<int>(m_listed));
    InvalidateRect(list.Handle(), nullptr, TRUE);
}

void BasketPanel::Arrange(const RECT& place) {
    const auto sizeOf = [&](int control) {
        const RECT client = m_dialog.Item(control).ClientRect();
        return SIZE{client.right, client.bottom};
    };
    const SIZE save = sizeOf(IDC_REJECTED_SAVE);
    const LONG gap = save.cy / 3;
    const LONG top = place.top + save.cy + gap;
    LONG left = place.left;
    for (const int page : kTabs) {
        const LONG right = left + sizeOf(page).cx;
        m_dialog.Item(page).Move({left, place.top, right, place.top + save.cy});
        left = right;
    }
    LONG right = place.right;
    for (const int button : {IDC_REJECTED_SAVE, IDC_REJECTED_COPY}) {
        const SIZE size = sizeOf(button);
        m_dialog.Item(button).Move({right - size.cx, place.top, right, place.top + size.cy});
        right -= size.cx + gap;
    }
    m_dialog.Item(IDC_REJECTED_LIST).Move({place.left, top, place.right, std::max(top, place.bottom)});
}

void BasketPanel::OpenMenu(LPARAM position) {
    const HWND list = m_dialog.Item(IDC_REJECTED_LIST).Handle();
    const MenuEntry entries[] = {
        {kOpenTexts[static_cast<std::size_t>(m_page)], kOpenCommand},
        {"Copy\tCtrl+C", kCopyCommand},
        {"Select All\tCtrl+A", kSelectAllCommand},
        {"Save As...", kSaveCommand},
        {m_page == Page::rejected ? "Save Rejected with Reasons..." : "Save Results with Reasons...",
         kSaveReasonsCommand},
    };
    m_menu.Open(m_dialog.Handle(), RowMenuPlace(list, position), entries);
}

bool BasketPanel::HandleCommand(int command) {
    const HWND list = m_dialog.Item(IDC_REJECTED_LIST).Handle();
    if (command == kCopyCommand || command == IDC_REJECTED_COPY) {
        Copy();
        return true;
    }
    if (command == IDC_REJECTED_PAGE || command == IDC_RESULTS_PAGE) {
        Show(command == IDC_RESULTS_PAGE ? Page::results : Page::rejected);
        return true;
    }
    if (command != kSelectAllCommand) return false;
    ListView_SetItemState(list, -1, LVIS_SELECTED, LVIS_SELECTED);
    return true;
}

int BasketPanel::FirstSelected() const {
    return ListView_GetNextItem(m_dialog.Item(IDC_REJECTED_LIST).Handle(), -1, LVNI_SELECTED);
}

// The selected lines, or all when none is.
void BasketPanel::Copy() const {
    const HWND list = m_dialog.Item(IDC_REJECTED_LIST).Handle();
    const bool all = ListView_GetSelectedCount(list) == 0;
    std::string text;
    for (std::size_t i = 0; i < Lines(); ++i) {
        if (!all && !ListView_GetItemState(list, static_cast<int>(i), LVIS_SELECTED)) continue;
        text.append(Report(i)).push_back('\n');
    }
    framework::PutOnClipboard(m_dialog.Handle(), framework::WithLineEnds(text));
}

void BasketPanel::GoTo(int line) {
    if (m_page != Page::rejected) Show(Page::rejected);
    const auto list = m_dialog.Item<framework::ReportList>(IDC_REJECTED_LIST);
    list.SelectRow(line);
    list.Focus();
}

RecordId BasketPanel::RowOf(int result) const {
    const auto index = static_cast<std::size_t>(result);
    return result < 0 || index >= m_results.size() ? kNoRecord : m_results[index].record;
}

std::string BasketPanel::Report(std::size_t line) const {
    if (m_page == Page::rejected) return m_basket.Rejected()[line].report;
    return CellText(line, kTextColumn) + ": " + m_results[line].reason;
}

std::string BasketPanel::CellText(std::size_t line, int column) const {
    std::string text;
    if (m_page == Page::rejected) {
        const RejectedLine& rejected = m_basket.Rejected()[line];
        text = column == kLineColumn     ? std::to_string(rejected.number)
               : column == kReasonColumn ? rejected.reason
                                         : rejected.text;
    } else {
        const BasketResult& result = m_results[line];
        const int number = m_basket.Rows().LineOf(result.record);
        if (column == kReasonColumn)
            text = result.reason;
        else if (column == kTextColumn)
            text = m_basket.Outcome().Describe(result.record);
        else if (number > 0)
            text = std::to_string(number);
    }
    std::ranges::replace(text, '\0', ' ');
    return text;
}

std::optional<LRESULT> BasketPanel::HandleNotify(const NMHDR& notification) {
    switch (notification.code) {
    case LVN_GETDISPINFOA: {
        LVITEMA& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(notification)).item;
        const auto line = static_cast<std::size_t>(item.iItem);
        if ((item.mask & LVIF_TEXT) && item.iItem >= 0 && line < Lines())
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
