#include "host/terminal/window/LogView.h"

#include <algorithm>

namespace vesk {
namespace {

constexpr ListColumn kColumns[] = {
    {"Time", 80},
    {"Message", 0, LVCFMT_LEFT, true},
};

} // namespace

bool LogView::Create(HWND parent, int tabsId, int listId) {
    m_tabs = CreateWindowExA(0, WC_TABCONTROLA, "", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP, 0, 0,
                             0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(tabsId)),
                             GetModuleHandleA(nullptr), nullptr);
    m_list = CreateReportList(parent, listId, kColumns);
    if (!m_tabs || !m_list) return false;
    for (std::size_t i = 0; i < kLogTabNames.size(); ++i) {
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<char*>(kLogTabNames[i].data());
        SendMessageA(m_tabs, TCM_INSERTITEMA, i, reinterpret_cast<LPARAM>(&item));
    }
    return true;
}

void LogView::Place(const RECT& rect, const TextScale& scale) {
    framework::Window(m_tabs).Move(rect);
    RECT inside = rect;
    TabCtrl_AdjustRect(m_tabs, FALSE, &inside);
    framework::Window(m_list).Move(inside);
    SetWindowPos(m_list, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    FitColumns(m_list, kColumns, scale);
}

void LogView::SetFont(HFONT font) {
    framework::Window(m_tabs).SetFont(font);
    framework::Window(m_list).SetFont(font);
}

void LogView::Show(bool shown) {
    framework::Window(m_tabs).Show(shown);
    framework::Window(m_list).Show(shown);
}

LogTab LogView::Shown() const {
    return static_cast<LogTab>(std::clamp(TabCtrl_GetCurSel(m_tabs), 0, static_cast<int>(LogTab::count) - 1));
}

void LogView::Refresh() {
    const int count = static_cast<int>(m_log.Count(Shown()));
    ListView_SetItemCountEx(m_list, count, LVSICF_NOSCROLL);
    if (count) ListView_EnsureVisible(m_list, count - 1, FALSE);
    InvalidateRect(m_list, nullptr, FALSE);
}

std::optional<LRESULT> LogView::OnNotify(const NMHDR& header) {
    if (header.hwndFrom == m_tabs && header.code == TCN_SELCHANGE) {
        Refresh();
        return 0;
    }
    if (header.hwndFrom != m_list || header.code != LVN_GETDISPINFOA) return std::nullopt;
    LVITEMA& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(header)).item;
    if (item.iItem >= 0 && static_cast<std::size_t>(item.iItem) < m_log.Count(Shown())) {
        const LogLine& line = m_log.At(Shown(), static_cast<std::size_t>(item.iItem));
        AnswerText(item, item.iSubItem == 0 ? line.time : line.text);
    }
    return 0;
}

} // namespace vesk
