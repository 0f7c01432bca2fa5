#include "host/korvexcontrols/ListWindow.h"

#include <algorithm>
#include <cstring>

using korvex::Change;

bool CFilterListCtrl::Impl::Attach(const Args& args) {
    if (!Subclass::Attach(args.list)) return false;
    m_owner = args.owner;
    m_name = args.name ? args.name : "";
    const framework::Window list(args.list);
    for (std::int32_t i = 0; i < args.columnCount; ++i) {
        const KorvexColumn& column = args.columns[i];
        LVCOLUMNA insert{};
        insert.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        insert.fmt = column.rightAligned ? LVCFMT_RIGHT : LVCFMT_LEFT;
        insert.cx = framework::Scaled(column.width, list.Dpi());
        insert.pszText = const_cast<char*>(column.heading);
        list.Send(LVM_INSERTCOLUMNA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&insert));
    }
    constexpr DWORD look = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_HEADERDRAGDROP | LVS_EX_LABELTIP;
    list.Send(LVM_SETEXTENDEDLISTVIEWSTYLE, look, look);
    m_sync.Attach(args.list);
    return true;
}

// The rows stay, and are there again when the list is attached to another window.
void CFilterListCtrl::Impl::OnGone() {
    m_sync.Detach();
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

template <class Operation>
void CFilterListCtrl::Impl::Apply(Operation&& operation) {
    if (m_changes) {
        m_changed |= operation().kind != Change::nothing;
        return;
    }
    const auto before = m_sync.Remember();
    const Change change = operation();
    if (change.kind == Change::nothing) return;
    m_sync.Follow(before, change.kind == Change::repainted ? m_model.ShownAt(change.row) : korvex::kNone);
    if (change.kind == Change::everything) m_sync.RepaintAll();
    if (m_owner) m_owner->ShownRowsChanged(&m_face);
}

void CFilterListCtrl::Impl::InsertFront(std::uint32_t record) {
    Apply([&] { return m_model.InsertFront(record); });
}

void CFilterListCtrl::Impl::Remove(std::uint32_t record) {
    Apply([&] { return m_model.Remove(record); });
}

void CFilterListCtrl::Impl::RemoveAll() {
    Apply([&] { return m_model.RemoveAll(); });
}

void CFilterListCtrl::Impl::Repaint(std::uint32_t record) {
    Apply([&] { return m_model.Repaint(record); });
}

void CFilterListCtrl::Impl::SetOwnerFilter(std::int32_t column, const char* text) {
    const std::string_view view = text ? text : "";
    Apply([&] { return m_model.SetOwnerFilter(column, text ? &view : nullptr); });
}

void CFilterListCtrl::Impl::BeginChanges() {
    if (m_changes++) return;
    m_changed = false;
    m_before = m_sync.Remember();
}

void CFilterListCtrl::Impl::EndChanges() {
    if (!m_changes || --m_changes || !m_changed) return;
    m_sync.Follow(m_before);
    m_sync.RepaintAll();
    if (m_owner) m_owner->ShownRowsChanged(&m_face);
}

void CFilterListCtrl::Impl::SelectOnly(std::uint32_t record) {
    const auto before = m_sync.Remember();
    m_model.SelectOnly(record);
    if (m_changes) return;
    m_sync.Follow(before);
    if (const std::uint32_t row = m_model.ShownRowOf(record); row != korvex::kNone) m_sync.EnsureVisible(row);
}

void CFilterListCtrl::Impl::Deselect(std::uint32_t record) {
    const auto before = m_sync.Remember();
    m_model.Deselect(record);
    if (!m_changes) m_sync.Follow(before);
}

std::string_view CFilterListCtrl::Impl::CellAt(int row, int column) {
    const std::uint32_t record = row < 0 ? korvex::kNone : m_model.ShownAt(static_cast<std::uint32_t>(row));
    std::string_view text;
    if (record != korvex::kNone) Cells({&record, 1}, column, &text);
    return text;
}

template <class Item, class Copy>
void CFilterListCtrl::Impl::AnswerCell(Item& item, Copy&& copy) {
    if (!(item.mask & LVIF_TEXT) || !item.pszText || item.cchTextMax <= 0) return;
    const int length = copy(CellAt(item.iItem, item.iSubItem), item.pszText, item.cchTextMax - 1);
    item.pszText[std::max(length, 0)] = 0;
}

namespace {

int CopyNarrow(std::string_view text, char* to, int most) {
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(most));
    std::memcpy(to, text.data(), length);
    return static_cast<int>(length);
}

int CopyWide(std::string_view text, wchar_t* to, int most) {
    const int length = static_cast<int>(std::min(text.size(), static_cast<std::size_t>(most)));
    return MultiByteToWideChar(CP_ACP, 0, text.data(), length, to, most);
}

} // namespace

std::optional<LRESULT> CFilterListCtrl::Impl::HandleNotify(const NMHDR& notification) {
    if (!Handle() || notification.hwndFrom != Handle()) return std::nullopt;
    auto& header = const_cast<NMHDR&>(notification);
    switch (notification.code) {
    case LVN_GETDISPINFOA:
        AnswerCell(reinterpret_cast<NMLVDISPINFOA&>(header).item, CopyNarrow);
        return 0;
    case LVN_GETDISPINFOW:
        AnswerCell(reinterpret_cast<NMLVDISPINFOW&>(header).item, CopyWide);
        return 0;
    case LVN_ITEMCHANGED:
        m_sync.OnItemChanged(reinterpret_cast<const NMLISTVIEW&>(notification));
        return m_sync.Busy() ? std::optional<LRESULT>(0) : std::nullopt;
    case LVN_ODSTATECHANGED:
        m_sync.OnRangeChanged(reinterpret_cast<const NMLVODSTATECHANGE&>(notification));
        return m_sync.Busy() ? std::optional<LRESULT>(0) : std::nullopt;
    default:
        return std::nullopt;
    }
}
