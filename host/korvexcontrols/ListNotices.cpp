// What the control asks its owner and tells it: cells, colours, clicks and typed letters.
#include "framework/Colours.h"
#include "host/korvexcontrols/ListWindow.h"
#include "host/korvexcontrols/model/Cells.h"

#include <algorithm>
#include <cstring>

using framework::Meaning;
using korvex::kNone;

namespace {

constexpr std::string_view kTooNarrow = "###";

int CopyNarrow(std::string_view text, char* to, int most) {
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(most));
    std::memcpy(to, text.data(), length);
    return static_cast<int>(length);
}

int CopyWide(std::string_view text, wchar_t* to, int most) {
    const int length = static_cast<int>(std::min(text.size(), static_cast<std::size_t>(most)));
    return MultiByteToWideChar(CP_ACP, 0, text.data(), length, to, most);
}

template <class Item, class Copy>
void Answer(Item& item, std::string_view text, Copy&& copy) {
    if (!(item.mask & LVIF_TEXT) || !item.pszText || item.cchTextMax <= 0) return;
    item.pszText[std::max(copy(text, item.pszText, item.cchTextMax - 1), 0)] = 0;
}

std::string Narrow(const wchar_t* text) {
    char narrow[512];
    const int length = WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, sizeof narrow, nullptr, nullptr);
    return length > 0 ? std::string(narrow) : std::string();
}

constexpr bool AreTheSame(KorvexRowLook look, Meaning meaning) {
    return static_cast<std::int32_t>(look) == static_cast<std::int32_t>(meaning);
}
static_assert(AreTheSame(kKorvexPlain, Meaning::plain) && AreTheSame(kKorvexMuted, Meaning::muted)
              && AreTheSame(kKorvexAttention, Meaning::attention) && AreTheSame(kKorvexGood, Meaning::good)
              && AreTheSame(kKorvexBad, Meaning::bad));

// The list's own background, which may not be the system's.
COLORREF BackgroundOf(HWND list) {
    const auto own = static_cast<COLORREF>(SendMessageA(list, LVM_GETBKCOLOR, 0, 0));
    return own == CLR_NONE ? GetSysColor(COLOR_WINDOW) : own;
}

// Colours the row that is about to be drawn; in high contrast there are no colours.
void ColourRow(NMLVCUSTOMDRAW& draw, std::int32_t look) {
    if (look == kKorvexPlain) return;
    const auto colours = framework::ColoursOf(static_cast<Meaning>(look), BackgroundOf(draw.nmcd.hdr.hwndFrom));
    if (colours.text != CLR_DEFAULT) draw.clrText = colours.text;
    if (colours.background != CLR_DEFAULT) draw.clrTextBk = colours.background;
}

} // namespace

std::string_view CFilterListCtrl::Impl::CellAt(int row, int column) {
    const std::uint32_t record = row < 0 ? kNone : m_model.ShownAt(static_cast<std::uint32_t>(row));
    if (record == kNone) return {};
    const std::string_view cell = Cell(record, column);
    return m_room && m_room->Cuts(cell, column) ? kTooNarrow : cell;
}

CFilterListCtrl::Impl::NumberRoom::NumberRoom(const Impl& list)
    : m_list(list), m_digit(list.m_header.WidthOf("0")), m_columns(list.m_header.Columns().size(), kNotAsked) {}

// Each question is a message or two, and a page has hundreds of numbers: no digit is wider than another.
bool CFilterListCtrl::Impl::NumberRoom::Cuts(std::string_view cell, std::int32_t column) {
    if (cell.empty() || !korvex::IsNumeric(m_list.TypeOf(column)) || !korvex::ReadDecimal(cell)) return false;
    int& room = m_columns[static_cast<std::size_t>(column)];
    if (room == kNotAsked) room = m_list.m_header.RoomIn(column);
    const bool isNarrow = cell.find_first_not_of("0123456789.,") == cell.npos;
    if (isNarrow && static_cast<int>(cell.size()) * m_digit <= room) return false;
    return m_list.m_header.WidthOf(std::string(cell)) > room;
}

// The system draws what is selected.
LRESULT CFilterListCtrl::Impl::DrawRow(NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || !m_owner) return CDRF_DODEFAULT;
    const auto row = static_cast<std::uint32_t>(draw.nmcd.dwItemSpec);
    const std::uint32_t record = m_model.ShownAt(row);
    if (record != kNone && !m_model.Selection().Contains(row)) ColourRow(draw, m_owner->RowLook(record));
    return CDRF_DODEFAULT;
}

std::optional<LRESULT> CFilterListCtrl::Impl::HandleNotify(const NMHDR& notification) {
    if (!Handle() || notification.hwndFrom != Handle()) return std::nullopt;
    auto& header = const_cast<NMHDR&>(notification);
    const auto own = [&] { return m_sync.Busy() ? std::optional<LRESULT>(0) : std::nullopt; };
    switch (notification.code) {
    case LVN_GETDISPINFOA: {
        auto& item = reinterpret_cast<NMLVDISPINFOA&>(header).item;
        Answer(item, CellAt(item.iItem, item.iSubItem), CopyNarrow);
        return 0;
    }
    case LVN_GETDISPINFOW: {
        auto& item = reinterpret_cast<NMLVDISPINFOW&>(header).item;
        Answer(item, CellAt(item.iItem, item.iSubItem), CopyWide);
        return 0;
    }
    case LVN_ITEMCHANGED:
        m_sync.OnItemChanged(reinterpret_cast<const NMLISTVIEW&>(notification));
        NoteSelection();
        return own();
    case LVN_ODSTATECHANGED:
        m_sync.OnRangeChanged(reinterpret_cast<const NMLVODSTATECHANGE&>(notification));
        NoteSelection();
        return own();
    case LVN_ODFINDITEMA: {
        const auto& find = reinterpret_cast<const NMLVFINDITEMA&>(notification);
        return FindTyped(find.lvfi, find.iStart);
    }
    case LVN_ODFINDITEMW: {
        const auto& find = reinterpret_cast<const NMLVFINDITEMW&>(notification);
        const std::string typed = find.lvfi.psz ? Narrow(find.lvfi.psz) : std::string();
        return FindTyped({find.lvfi.flags, typed.c_str(), 0, {}, 0}, find.iStart);
    }
    case LVN_COLUMNCLICK: {
        const std::int32_t column = reinterpret_cast<const NMLISTVIEW&>(notification).iSubItem;
        const bool adding = IsDown(VK_CONTROL) || IsDown(VK_SHIFT);
        auto sort = korvex::AfterClick(m_model.Rows().Sort(), column, TypeOf(column), adding);
        Rearrange([&] { return m_model.SetSort(std::move(sort)); });
        return 0;
    }
    case NM_CUSTOMDRAW:
        return DrawRow(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
    default:
        return std::nullopt;
    }
}

// The header sends these.
std::optional<LRESULT> CFilterListCtrl::Impl::OnNotify(const NMHDR& notification) {
    if (notification.hwndFrom != m_header.Handle()) return std::nullopt;
    switch (notification.code) {
    case NM_CUSTOMDRAW:
        return m_header.Draw(reinterpret_cast<const NMCUSTOMDRAW&>(notification),
                             [&](std::int32_t column) { return m_model.Rows().Filters().HasAny(column); });
    case NM_RCLICK:
        ShowColumnMenu();
        return 1; // no context menu of the rows besides
    case HDN_ENDTRACKA:
    case HDN_ENDTRACKW:
    case HDN_DIVIDERDBLCLICKA:
    case HDN_DIVIDERDBLCLICKW:
    case HDN_ENDDRAG:
        PostMessageA(Handle(), kSaveColumns, 0, 0);
        return std::nullopt;
    default:
        return std::nullopt;
    }
}
