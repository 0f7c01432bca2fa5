#include "host/terminal/window/frame/Bands.h"

#include "base/Text.h"

#include <algorithm>
#include <cstring>

namespace vesk {
namespace {

struct BandColumn {
    const char* heading;
    int width; // pixels at 96 DPI and the usual font size
    int format = LVCFMT_LEFT;
    bool stretch = false; // takes what the others leave
};

// A child list of `parent` with these columns; null when the system refuses.
HWND CreateReportList(HWND parent, int id, std::span<const BandColumn> columns) {
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

// Fits columns and row height to the scale and to the list's present width.
void FitColumns(HWND list, std::span<const BandColumn> columns, const FrameScale& scale) {
    constexpr int rowHeight = 19, leastStretched = 120;
    RECT client{};
    GetClientRect(list, &client);
    int left = client.right;
    for (const BandColumn& column : columns)
        if (!column.stretch) left -= scale.Pixels(column.width);
    for (std::size_t i = 0; i < columns.size(); ++i)
        ListView_SetColumnWidth(list, static_cast<int>(i),
                                columns[i].stretch ? std::max(left, scale.Pixels(leastStretched))
                                                   : scale.Pixels(columns[i].width));
    // A row is as high as its image: an empty one gives the text room.
    const HIMAGELIST spacer = ImageList_Create(1, scale.Pixels(rowHeight), ILC_COLOR, 1, 1);
    if (const HIMAGELIST old = ListView_SetImageList(list, spacer, LVSIL_SMALL)) ImageList_Destroy(old);
}

// Hands the text to a list that asks for it.
void AnswerText(LVITEMA& item, const std::string& text) {
    if (!(item.mask & LVIF_TEXT) || item.cchTextMax <= 0) return;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
    std::memcpy(item.pszText, text.data(), length);
    item.pszText[length] = '\0';
}

constexpr const char* kAllClients = "(all clients)";

} // namespace

bool ClientBar::Create(HWND parent, int labelId, int comboId) {
    const HINSTANCE module = GetModuleHandleA(nullptr);
    m_label = framework::Window(
        CreateWindowExA(0, WC_STATICA, "Active client", WS_CHILD | WS_VISIBLE | SS_CENTERIMAGE, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(labelId)), module, nullptr));
    m_combo = framework::ComboBox(CreateWindowExA(
        0, WC_COMBOBOXA, "", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0, 0, 0, 0,
        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(comboId)), module, nullptr));
    if (!m_label || !m_combo) return false;
    m_combo.Add(kAllClients);
    for (const Client& client : m_clients.Clients())
        m_combo.Add(client.id + "   " + client.name);
    m_combo.Select(0);
    return true;
}

void ClientBar::Place(const RECT& rect, const FrameScale& scale) {
    RECT combo{};
    GetWindowRect(m_combo.Handle(), &combo);
    const int comboHeight = combo.bottom - combo.top;
    const int top = rect.top + (rect.bottom - rect.top - comboHeight) / 2;
    const int left = rect.left + scale.Pixels(10), labelWidth = scale.Pixels(90);
    m_label.Move({left, top, left + labelWidth, top + comboHeight});
    // The height given to a combo is that of its open list.
    m_combo.Move({left + labelWidth, top, left + labelWidth + scale.Pixels(240), top + scale.Pixels(360)});
}

void ClientBar::SetFont(HFONT font) {
    m_label.SetFont(font);
    m_combo.SetFont(font);
}

void ClientBar::Show(const std::string& client) {
    int index = 0;
    for (std::size_t i = 0; i < m_clients.Clients().size(); ++i)
        if (m_clients.Clients()[i].id == client) index = static_cast<int>(i) + 1;
    m_combo.Select(index);
}

std::string ClientBar::Picked() const {
    const int index = m_combo.Selected();
    return index < 1 ? std::string() : m_clients.Clients()[static_cast<std::size_t>(index) - 1].id;
}

namespace {

enum WatchColumn { symbol, company, exchange, series, remark, lastPrice, tickSize, token };
constexpr BandColumn kWatchColumns[] = {
    {"Symbol", 150},
    {"Company", 0, LVCFMT_LEFT, true},
    {"Exchange", 80},
    {"Series", 60},
    {"Remark", 110},
    {"Last Price", 110, LVCFMT_RIGHT},
    {"Tick Size", 90, LVCFMT_RIGHT},
    {"Token", 90, LVCFMT_RIGHT},
};

std::string Price(std::int64_t scaled, const Scrip& scrip) {
    return base::Format("%.*f", scrip.decimals,
                        static_cast<double>(scaled) / static_cast<double>(scrip.multiplier));
}

std::string ShownExchange(const Scrip& scrip) {
    for (const Exchange& known : kExchanges)
        if (known.code == scrip.exchange) return std::string(known.shown);
    return scrip.exchange;
}

std::string CellText(const Scrip& scrip, int column) {
    switch (column) {
    case symbol:
        return scrip.symbol;
    case company:
        return scrip.company;
    case exchange:
        return ShownExchange(scrip);
    case series:
        return scrip.series;
    case remark:
        return scrip.cautionary ? "Under caution" : "";
    case lastPrice:
        return Price(scrip.lastPrice, scrip);
    case tickSize:
        return Price(scrip.tickSize, scrip);
    default:
        return scrip.token;
    }
}

} // namespace

bool MarketWatch::Create(HWND parent, int id) {
    m_list = CreateReportList(parent, id, kWatchColumns);
    if (!m_list) return false;
    ListView_SetItemCount(m_list, static_cast<int>(m_master.Scrips().size()));
    return true;
}

void MarketWatch::Place(const RECT& rect, const FrameScale& scale) {
    framework::Window(m_list).Move(rect);
    FitColumns(m_list, kWatchColumns, scale);
}

std::optional<LRESULT> MarketWatch::OnNotify(const NMHDR& header) {
    if (header.hwndFrom != m_list || header.code != LVN_GETDISPINFOA) return std::nullopt;
    LVITEMA& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(header)).item;
    const std::span<const Scrip> scrips = m_master.Scrips();
    if (item.iItem >= 0 && static_cast<std::size_t>(item.iItem) < scrips.size())
        AnswerText(item, CellText(scrips[static_cast<std::size_t>(item.iItem)], item.iSubItem));
    return 0;
}

namespace {

constexpr BandColumn kLogColumns[] = {
    {"Time", 80},
    {"Message", 0, LVCFMT_LEFT, true},
};

} // namespace

bool LogView::Create(HWND parent, int tabsId, int listId) {
    m_tabs = CreateWindowExA(0, WC_TABCONTROLA, "", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP, 0, 0,
                             0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(tabsId)),
                             GetModuleHandleA(nullptr), nullptr);
    m_list = CreateReportList(parent, listId, kLogColumns);
    if (!m_tabs || !m_list) return false;
    for (std::size_t i = 0; i < kLogTabNames.size(); ++i) {
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<char*>(kLogTabNames[i].data());
        SendMessageA(m_tabs, TCM_INSERTITEMA, i, reinterpret_cast<LPARAM>(&item));
    }
    return true;
}

void LogView::Place(const RECT& rect, const FrameScale& scale) {
    framework::Window(m_tabs).Move(rect);
    RECT inside = rect;
    TabCtrl_AdjustRect(m_tabs, FALSE, &inside);
    framework::Window(m_list).Move(inside);
    SetWindowPos(m_list, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    FitColumns(m_list, kLogColumns, scale);
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
