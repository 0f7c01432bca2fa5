#include "host/korvexcontrols/ListWindow.h"

#include <windowsx.h>

#include <algorithm>
#include <utility>

using korvex::kNone;
using korvex::ListChange;

namespace {

constexpr std::uint32_t kLargeSelection = 1000;
constexpr std::size_t kMostRepainted = 64;

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

std::optional<LRESULT> CFilterListCtrl::Impl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // These ask for nothing that the list shows.
    if (message != WM_NCHITTEST && !(message == WM_TIMER && wParam == kWorkTimer)) CatchUp();
    if (m_pace.IsTime(message, wParam)) return 0;
    switch (message) {
    case WM_PAINT:
    case WM_PRINTCLIENT: {
        m_room.emplace(*this);
        const LRESULT answer = Default(message, wParam, lParam);
        m_room.reset();
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
