#include "host/terminal/window/ListColumns.h"

#include <algorithm>
#include <cstring>

namespace vesk {

HWND CreateReportList(HWND parent, int id, std::span<const ListColumn> columns) {
    constexpr DWORD style =
        WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS;
    const HWND list =
        CreateWindowExA(0, WC_LISTVIEWA, "", style, 0, 0, 0, 0, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
    if (!list) return nullptr;
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_FMT | LVCF_WIDTH;
        column.fmt = columns[i].format;
        column.cx = columns[i].width;
        column.pszText = const_cast<char*>(columns[i].heading);
        SendMessageA(list, LVM_INSERTCOLUMNA, i, reinterpret_cast<LPARAM>(&column));
    }
    return list;
}

void ScaleColumns(HWND list, std::span<const ListColumn> columns, UINT dpi) {
    for (std::size_t i = 0; i < columns.size(); ++i)
        ListView_SetColumnWidth(list, static_cast<int>(i),
                                MulDiv(columns[i].width, static_cast<int>(dpi), USER_DEFAULT_SCREEN_DPI));
}

void AnswerText(LVITEMA& item, const std::string& text) {
    if (!(item.mask & LVIF_TEXT) || item.cchTextMax <= 0) return;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
    std::memcpy(item.pszText, text.data(), length);
    item.pszText[length] = '\0';
}

} // namespace vesk
