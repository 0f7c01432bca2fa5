#include "host/terminal/window/MarketWatch.h"

#include "base/Format.h"

namespace vesk {
namespace {

enum Column { symbol, company, exchange, series, remark, lastPrice, tickSize, token };
constexpr ListColumn kColumns[] = {
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
    m_list = CreateReportList(parent, id, kColumns);
    if (!m_list) return false;
    ListView_SetItemCount(m_list, static_cast<int>(m_master.Scrips().size()));
    return true;
}

void MarketWatch::Place(const RECT& rect, const TextScale& scale) {
    framework::Window(m_list).Move(rect);
    FitColumns(m_list, kColumns, scale);
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
