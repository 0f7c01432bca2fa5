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

void FitColumns(HWND list, std::span<const ListColumn> columns, const TextScale& scale) {
    constexpr int rowHeight = 19, leastStretched = 120;
    RECT client{};
    GetClientRect(list, &client);
    int left = client.right;
    for (const ListColumn& column : columns)
        if (!column.stretch) left -= scale.Pixels(column.width);
    for (std::size_t i = 0; i < columns.size(); ++i)
        ListView_SetColumnWidth(list, static_cast<int>(i),
                                columns[i].stretch ? std::max(left, scale.Pixels(leastStretched))
                                                   : scale.Pixels(columns[i].width));
    // A row is as high as its image: an empty one gives the text room.
    const HIMAGELIST spacer = ImageList_Create(1, scale.Pixels(rowHeight), ILC_COLOR, 1, 1);
    if (const HIMAGELIST old = ListView_SetImageList(list, spacer, LVSIL_SMALL)) ImageList_Destroy(old);
}

void AnswerText(LVITEMA& item, const std::string& text) {
    if (!(item.mask & LVIF_TEXT) || item.cchTextMax <= 0) return;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
    std::memcpy(item.pszText, text.data(), length);
    item.pszText[length] = '\0';
}

} // namespace vesk
