#include "host/terminal/window/MarketWatch.h"

#include "host/terminal/window/ListColumns.h"

#include <cstdio>

namespace vesk {
namespace {

constexpr ListColumn kColumns[] = {
    {"Symbol", 150},
    {"Exchange", 80},
    {"Series", 60},
    {"Last Price", 110, LVCFMT_RIGHT},
    {"Tick Size", 80, LVCFMT_RIGHT},
    {"Token", 90, LVCFMT_RIGHT},
    {"Company", 280},
    {"Remark", 110},
};

std::string Price(std::int64_t scaled, const Scrip& scrip) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", scrip.decimals,
                  static_cast<double>(scaled) / static_cast<double>(scrip.multiplier));
    return text;
}

std::string CellText(const Scrip& scrip, int column) {
    switch (column) {
    case 0:
        return scrip.symbol;
    case 1:
        for (const Exchange& exchange : kExchanges)
            if (exchange.code == scrip.exchange) return std::string(exchange.shown);
        return scrip.exchange;
    case 2:
        return scrip.series;
    case 3:
        return Price(scrip.lastPrice, scrip);
    case 4:
        return Price(scrip.tickSize, scrip);
    case 5:
        return scrip.token;
    case 6:
        return scrip.company;
    default:
        return scrip.cautionary ? "Under caution" : "";
    }
}

} // namespace

bool MarketWatch::Create(HWND parent, int id) {
    m_list = CreateReportList(parent, id, kColumns);
    if (!m_list) return false;
    ListView_SetItemCount(m_list, static_cast<int>(m_master.Scrips().size()));
    return true;
}

void MarketWatch::SetFont(HFONT font, UINT dpi) {
    framework::Window(m_list).SetFont(font);
    ScaleColumns(m_list, kColumns, dpi);
}

std::optional<LRESULT> MarketWatch::OnNotify(const NMHDR& header) {
    if (header.hwndFrom != m_list || header.code != LVN_GETDISPINFOA) return std::nullopt;
    LVITEMA& item = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(header)).item;
    const std::span<const Scrip> scrips = m_master.Scrips();
    if (item.iItem >= 0 && static_cast<std::size_t>(item.iItem) < scrips.size())
        AnswerText(item, CellText(scrips[static_cast<std::size_t>(item.iItem)], item.iSubItem));
    return 0;
}

} // namespace vesk
