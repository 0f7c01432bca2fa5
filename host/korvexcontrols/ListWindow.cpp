#include "host/korvexcontrols/ListWindow.h"

#include "framework/Colours.h"
#include "host/korvexcontrols/model/Cells.h"

#include <windowsx.h>

#include <algorithm>
#include <cstring>
#include <utility>

using framework::Meaning;
using korvex::kNone;
using korvex::ListChange;

namespace {

constexpr std::uint32_t kLargeSelection = 1000;
constexpr std::size_t kMostRepainted = 64;
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

CFilterListCtrl::Impl* CFilterListCtrl::Impl::Make(CFilterListCtrl& face) {
    auto made = std::make_shared<Impl>();
    made->m_face = &face;
    made->m_self = made;
    return made.get();
}

bool CFilterListCtrl::Impl::Attach(const Args& args) {
    if (!Subclass::Attach(args.list)) return false;
    m_owner = args.owner;
    m_firstCommand = args.firstCommand;
    m_name = args.name ? args.name : "";
    std::vector<korvex::ListHeader::Column> columns;
    for (std::int32_t i = 0; i < args.columnCount; ++i) {
        const KorvexColumn& column = args.columns[i];
        columns.push_back(
            {column.heading ? column.heading : "", column.width, column.rightAligned != 0, column.valueType});
    }
    m_header.Attach(args.list, std::move(columns), m_name);
    constexpr DWORD look = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_HEADERDRAGDROP | LVS_EX_LABELTIP;
    SendMessageA(args.list, LVM_SETEXTENDEDLISTVIEWSTYLE, look, look);
    RestoreSeen();
    m_header.ShowSort(m_model.Rows().Sort());
    m_sync.Attach(args.list);
    WorkLater();
    return true;
}

void CFilterListCtrl::Impl::Release() {
    const auto last = std::move(m_self);
    m_output.Stop(); // nobody is left to ask for cells
    m_header.Save();
    RememberWindow();
    Detach();
    OnGone();
    m_face = nullptr;
    m_owner = nullptr;
}

// The rows stay, and are there again when the list is attached to another window.
void CFilterListCtrl::Impl::OnGone() {
    if (std::exchange(m_behind, false)) --m_changes;
    m_pace.NoteGone();
    m_sync.Detach();
    m_header.Detach();
    if (m_filterDialog) m_filterDialog->Destroy();
    if (m_findDialog) m_findDialog->Destroy();
    if (m_columnsDialog) m_columnsDialog->Destroy();
    if (m_viewDialog) m_viewDialog->Destroy();
    m_output.Finish();
    if (m_progress) m_progress->Destroy();
    m_works = false;
}

void CFilterListCtrl::Impl::Cells(std::span<const std::uint32_t> records, std::int32_t column,
                                  std::string_view* texts) {
    m_fetched.assign(records.size(), {});
    if (m_owner)
        m_owner->CellTexts(records.data(), static_cast<std::uint32_t>(records.size()), column,
                           m_fetched.data());
    for (std::size_t i = 0; i < records.size(); ++i)
        texts[i] =
            m_fetched[i].data ? std::string_view(m_fetched[i].data, m_fetched[i].length) : std::string_view();
}

void CFilterListCtrl::Impl::TellShownRowsChanged() {
    if (m_owner && m_face) m_owner->ShownRowsChanged(m_face);
    if (const std::string text = EmptyText(); text != m_shownEmptyText) {
        m_shownEmptyText = text;
        if (Handle()) InvalidateRect(Handle(), nullptr, TRUE);
    }
}

void CFilterListCtrl::Impl::Apply(const Operation& operation, std::uint32_t record) {
    if (!m_changes && Handle()) {
        BeginChanges();
        m_behind = true;
        m_pace.Ask(Handle());
    }
    const ListChange change = operation();
    m_sums.Note(change, record);
    WorkLater();
    if (change.kind == ListChange::nothing) return;
    NoteRepainted(change);
    TellShownRowsChanged();
}

// Rows that came, went or moved are seen by comparing the lines.
void CFilterListCtrl::Impl::NoteRepainted(const ListChange& change) {
    if (change.kind == ListChange::everything || m_repainted.size() == kMostRepainted) m_repaintAll = true;
    if (change.kind == ListChange::repainted) m_repainted.push_back(m_model.ShownAt(change.row));
    if (change.kind == ListChange::moved) m_repainted.push_back(m_model.ShownAt(change.to));
}

void CFilterListCtrl::Impl::CatchUp() {
    if (!std::exchange(m_behind, false)) return;
    m_pace.NoteShown(Handle());
    EndChanges();
}

void CFilterListCtrl::Impl::AdoptSelection() {
    CatchUp();
    m_sync.AdoptSelection();
}

void CFilterListCtrl::Impl::Rearrange(const Operation& operation) {
    CatchUp();
    if (m_changes) return Apply(operation);
    auto before = m_sync.Remember();
    korvex::ListSync::AnchorFocus(before);
    m_sums.Note(operation(), kNone);
    WorkLater();
    m_sync.Follow(before);
    m_sync.RepaintAll();
    m_header.ShowSort(m_model.Rows().Sort());
    m_header.Repaint();
    KeepSeen();
    const auto held = Hold();
    TellShownRowsChanged();
    TellWatcher();
}

void CFilterListCtrl::Impl::Select(const std::function<void()>& operation) {
    CatchUp();
    if (m_changes) {
        operation();
    } else {
        const auto before = m_sync.Remember();
        operation();
        m_sync.Follow(before);
    }
    m_sums.SelectionChanged();
    WorkLater();
}

void CFilterListCtrl::Impl::InsertFront(std::uint32_t record, KorvexArrival arrival) {
    Apply([&] { return m_model.InsertFront(record); }, record);
    m_unasked |= arrival == kKorvexUnasked;
}

void CFilterListCtrl::Impl::Remove(std::uint32_t record) {
    Apply([&] { return m_model.Remove(record); }, record);
}

void CFilterListCtrl::Impl::RemoveAll() {
    m_output.Finish();
    Apply([&] { return m_model.RemoveAll(); });
}

void CFilterListCtrl::Impl::Repaint(std::uint32_t record) {
    Apply([&] { return m_model.Repaint(record); }, record);
}

void CFilterListCtrl::Impl::SetOwnerFilter(std::int32_t column, const char* text) {
    const std::string_view view = text ? text : "";
    Rearrange([&] { return m_model.SetOwnerFilter(column, text ? &view : nullptr); });
}

void CFilterListCtrl::Impl::BeginChanges() {
    if (m_changes++) return;
    m_repaintAll = m_unasked = false;
    m_repainted.clear();
    m_before = m_sync.Remember();
}

void CFilterListCtrl::Impl::EndChanges() {
    if (!m_changes || --m_changes) return;
    if (!m_unasked) korvex::ListSync::ReleaseTop(m_before);
    m_sync.Follow(m_before, m_repainted);
    if (m_repaintAll) m_sync.RepaintAll();
}

void CFilterListCtrl::Impl::SelectOnly(std::uint32_t record) {
    Select([&] { m_model.SelectOnly(record); });
    const std::uint32_t row = m_model.ShownRowOf(record);
    if (!m_changes && row != kNone) m_sync.EnsureVisible(row);
}

void CFilterListCtrl::Impl::Deselect(std::uint32_t record) {
    Select([&] { m_model.Deselect(record); });
}

std::string_view CFilterListCtrl::Impl::CellAt(int row, int column) {
    const std::uint32_t record = row < 0 ? kNone : m_model.ShownAt(static_cast<std::uint32_t>(row));
    if (record == kNone) return {};
    const std::string_view cell = Cell(record, column);
    return m_painting && IsCutNumber(cell, column) ? kTooNarrow : cell;
}

bool CFilterListCtrl::Impl::IsCutNumber(std::string_view cell, std::int32_t column) {
    if (cell.empty() || !korvex::IsNumeric(TypeOf(column)) || !korvex::ReadDecimal(cell)) return false;
    const std::string text(cell);
    return SendMessageA(Handle(), LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(text.c_str()))
           > m_header.RoomIn(column);
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

std::optional<LRESULT> CFilterListCtrl::Impl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // These ask for nothing that the list shows.
    if (message != WM_NCHITTEST && !(message == WM_TIMER && wParam == kWorkTimer)) CatchUp();
    if (m_pace.IsTime(message, wParam)) return 0;
    switch (message) {
    case WM_PAINT:
    case WM_PRINTCLIENT: {
        m_painting = true;
        const LRESULT answer = Default(message, wParam, lParam);
        m_painting = false;
        if (message == WM_PAINT) PaintEmptyText();
        return answer;
    }
    case WM_TIMER:
        if (wParam != kWorkTimer) return std::nullopt;
        Work();
        return 0;
    case WM_SIZE: {
        const LRESULT answer = Default(message, wParam, lParam);
        m_header.Stretch();
        return answer;
    }
    case WM_KEYDOWN:
        return OnKey(wParam);
    case WM_CHAR:
        // Control keys are not typed text.
        return wParam < ' ' && IsDown(VK_CONTROL) ? std::optional<LRESULT>(0) : std::nullopt;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
        OnMouseDown({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        if (message == WM_LBUTTONDOWN && m_clickedRecord != kNone && !(wParam & MK_CONTROL))
            DropLargeSelection((wParam & MK_SHIFT) != 0);
        return std::nullopt;
    case LVM_SETITEMSTATE: {
        const auto& item = *reinterpret_cast<const LVITEMA*>(lParam);
        const bool deselects = (item.stateMask & ~item.state & LVIS_SELECTED) != 0;
        if (static_cast<int>(wParam) < 0 && deselects && !m_sync.Busy()) DropLargeSelection(false);
        return std::nullopt;
    }
    case WM_DESTROY:
        m_header.Save();
        RememberWindow();
        return std::nullopt;
    case kSaveColumns:
        m_header.Save();
        m_header.Stretch();
        return std::nullopt;
    case WM_DPICHANGED_AFTERPARENT:
        m_header.Rescale();
        return std::nullopt;
    case WM_SETFONT: {
        const LRESULT answer = Default(message, wParam, lParam);
        m_header.Rescale();
        return answer;
    }
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
        m_sync.RepaintAll();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

void CFilterListCtrl::Impl::DropLargeSelection(bool extends) {
    const std::uint32_t selected = m_model.Selection().Count();
    if (selected < std::max(kLargeSelection, extends ? m_model.ShownCount() : 0)) return;
    Select([&] { m_model.SelectRows(0, kNone, false); });
}
