#include "host/korvexcontrols/ListSync.h"

#include <algorithm>
#include <optional>

namespace korvex {
namespace {

constexpr std::uint32_t kManyRows = 8;

// Turns redrawing off; afterwards only what had to be painted before still has to be. The list itself is not
// asked: it may keep a flag of its own and scroll its pixels all the same.
class Quiet {
public:
    explicit Quiet(framework::Window list) : m_list(list), m_pending(CreateRectRgn(0, 0, 0, 0)) {
        GetUpdateRgn(m_list.Handle(), m_pending, FALSE);
        if (m_shown) DefWindowProcA(m_list.Handle(), WM_SETREDRAW, FALSE, 0);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
    ~Quiet() {
        if (m_shown) DefWindowProcA(m_list.Handle(), WM_SETREDRAW, TRUE, 0);
        ValidateRect(m_list.Handle(), nullptr);
        InvalidateRgn(m_list.Handle(), m_pending, TRUE);
        DeleteObject(m_pending);
    }

private:
    framework::Window m_list;
    HRGN m_pending;
    // Turning redrawing on would show a hidden window.
    bool m_shown = (GetWindowLongPtrA(m_list.Handle(), GWL_STYLE) & WS_VISIBLE) != 0;
};

class Flag {
public:
    explicit Flag(bool& flag) : m_flag(flag), m_before(flag) { m_flag = true; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;
    ~Flag() { m_flag = m_before; }

private:
    bool& m_flag;
    bool m_before;
};

} // namespace

void ListSync::Attach(HWND list) {
    m_list = framework::Window(list);
    m_count = 0;
    m_selected.Clear();
    m_focusedRow = kNone;
    Follow({});
}

int ListSync::LineHeight() const {
    RECT rect{LVIR_BOUNDS, 0, 0, 0};
    m_list.Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&rect));
    return std::max<int>(1, rect.bottom - rect.top);
}

// The client area below the heading.
RECT ListSync::RowsArea() const {
    RECT area = m_list.ClientRect(), header{};
    if (GetWindowRect(reinterpret_cast<HWND>(m_list.Send(LVM_GETHEADER)), &header))
        area.top += std::min(area.bottom, header.bottom - header.top);
    return area;
}

std::vector<ListSync::Before::Line> ListSync::Lines() const {
    std::vector<Before::Line> lines;
    if (!m_count) return lines;
    const RECT area = RowsArea();
    const auto count = static_cast<std::uint32_t>((area.bottom - area.top) / LineHeight() + 1);
    for (std::uint32_t row = TopRow(); lines.size() < count; ++row) {
        const std::uint32_t record = m_model.ShownAt(row);
        lines.push_back(
            {record, m_model.Selection().Contains(row), record != kNone && record == m_model.Focused()});
    }
    return lines;
}

std::uint32_t ListSync::RowUnderMouse() const {
    POINT point{};
    if (!GetCursorPos(&point) || WindowFromPoint(point) != m_list.Handle()) return kNone;
    ScreenToClient(m_list.Handle(), &point);
    const RECT area = RowsArea();
    if (!PtInRect(&area, point)) return kNone;
    const std::uint32_t row = TopRow() + static_cast<std::uint32_t>((point.y - area.top) / LineHeight());
    return row < m_count ? row : kNone;
}

// The anchor is the line under the mouse, or else the top one of a list that is scrolled. At the very top new
// rows show themselves.
void ListSync::RememberAnchor(Before& before) const {
    const std::uint32_t mouse = RowUnderMouse();
    const std::uint32_t first = mouse != kNone ? mouse : before.top;
    if (mouse == kNone && before.top == 0) return;
    before.anchorLine = first - before.top;
    for (std::uint32_t line = before.anchorLine; line < before.lines.size(); ++line)
        before.anchors.push_back(before.lines[line].record);
}

ListSync::Before ListSync::Remember() {
    Before before;
    if (!m_list) return before;
    AdoptSelection();
    before.top = TopRow();
    before.lines = Lines();
    before.mark = m_model.ShownAt(static_cast<std::uint32_t>(m_list.Send(LVM_GETSELECTIONMARK)));
    RememberAnchor(before);
    return before;
}

void ListSync::AnchorFocus(Before& before) {
    before.anchors.clear();
    const auto focused = std::ranges::find_if(
        before.lines, [](const Before::Line& line) { return line.focused && line.selected; });
    if (focused == before.lines.end()) return;
    before.anchorLine = static_cast<std::uint32_t>(focused - before.lines.begin());
    before.anchors.push_back(focused->record);
}

// The top row with which the anchor stands in its line.
std::uint32_t ListSync::TopFor(const Before& before) const {
    for (std::uint32_t i = 0; i < before.anchors.size(); ++i) {
        const std::uint32_t row = m_model.ShownRowOf(before.anchors[i]);
        if (row == kNone) continue;
        const std::uint32_t line = before.anchorLine + i;
        return row > line ? row - line : 0;
    }
    return before.top;
}

void ListSync::SetState(std::uint32_t row, UINT state, UINT mask) const {
    LVITEMA item{};
    item.state = state;
    item.stateMask = mask;
    m_list.Send(LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
}

void ListSync::SetCount() {
    const std::uint32_t count = m_model.ShownCount();
    if (count == m_count) return;
    m_list.Send(LVM_SETITEMCOUNT, count, LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
    m_selected.Set(count, kNone, false);
    if (m_focusedRow != kNone && m_focusedRow >= count) m_focusedRow = kNone;
    m_count = count;
}

// A list without rows has none selected, at any length at once.
void ListSync::SelectNone() {
    for (const std::uint32_t count : {0u, m_count})
        m_list.Send(LVM_SETITEMCOUNT, count, LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
    m_selected.Clear();
    m_focusedRow = kNone;
}

// Toggles the rows that differ, or begins with none or all selected where that is less to do.
void ListSync::SetSelection() {
    constexpr auto allRows = static_cast<std::uint32_t>(-1);
    const RowRanges& wanted = m_model.Selection();
    RowRanges difference = RowRanges::Difference(m_selected, wanted);
    const std::uint32_t fewest = std::min(wanted.Count(), m_count - wanted.Count()) + 1;
    // The list's own flag makes it leave out what each row costs.
    const bool many = difference.Count() > kManyRows;
    if (many) m_list.Send(WM_SETREDRAW, FALSE);
    if (difference.Count() > fewest) {
        if (wanted.Count() > m_count / 2) {
            SetState(allRows, LVIS_SELECTED, LVIS_SELECTED);
            m_selected.Set(0, m_count, true);
        } else {
            SelectNone();
        }
        difference = RowRanges::Difference(m_selected, wanted);
    }
    for (const RowRanges::Range& range : difference.Ranges())
        for (std::uint32_t row = range.begin; row < range.end; ++row)
            SetState(row, wanted.Contains(row) ? LVIS_SELECTED : 0, LVIS_SELECTED);
    if (many) m_list.Send(WM_SETREDRAW, TRUE);
    m_selected = wanted;
}

void ListSync::SetFocusAndMark(const Before& before) {
    const std::uint32_t row = m_model.ShownRowOf(m_model.Focused());
    if (row != m_focusedRow) {
        if (row != kNone)
            SetState(row, LVIS_FOCUSED, LVIS_FOCUSED);
        else
            SetState(m_focusedRow, 0, LVIS_FOCUSED);
        m_focusedRow = row;
    }
    const std::uint32_t mark = m_model.ShownRowOf(before.mark);
    if (mark != kNone) m_list.Send(LVM_SETSELECTIONMARK, 0, static_cast<LPARAM>(mark));
}

void ListSync::ScrollTo(std::uint32_t top) {
    const auto lines = static_cast<std::int64_t>(top) - static_cast<std::int64_t>(TopRow());
    if (lines) m_list.Send(LVM_SCROLL, 0, static_cast<LPARAM>(lines * LineHeight()));
}

void ListSync::EnsureVisible(std::uint32_t row) {
    m_list.Send(LVM_ENSUREVISIBLE, row, FALSE);
}

void ListSync::ReleaseTop(Before& before) {
    if (before.top == 0) before.anchors.clear();
}

void ListSync::Follow(const Before& before, std::span<const std::uint32_t> repainted) {
    if (!m_list) return;
    const Flag busy(m_busy);
    const bool quietly = TopFor(before) != before.top || m_selected != m_model.Selection();
    {
        std::optional<Quiet> quiet;
        if (quietly) quiet.emplace(m_list);
        SetCount();
        SetSelection();
        SetFocusAndMark(before);
        ScrollTo(TopFor(before));
    }
    RepaintChanged(before, repainted);
}

void ListSync::RepaintChanged(const Before& before, std::span<const std::uint32_t> repainted) const {
    // Without a row the height of a line is not known.
    if (!m_count) return RepaintAll();
    const std::vector<Before::Line> now = Lines();
    RECT line = RowsArea();
    const int height = LineHeight();
    for (std::size_t i = 0; i < std::max(now.size(), before.lines.size()); ++i, line.top += height) {
        const bool same = i < now.size() && i < before.lines.size() && now[i] == before.lines[i];
        line.bottom = line.top + height;
        if (!same || std::ranges::find(repainted, now[i].record) != repainted.end())
            InvalidateRect(m_list.Handle(), &line, TRUE);
    }
}

void ListSync::RepaintAll() const {
    InvalidateRect(m_list.Handle(), nullptr, TRUE);
}

void ListSync::OnItemChanged(const NMLISTVIEW& change) {
    if (m_busy || !(change.uChanged & LVIF_STATE)) return;
    const UINT changed = change.uOldState ^ change.uNewState;
    const auto row = static_cast<std::uint32_t>(change.iItem);
    if (changed & LVIS_SELECTED) {
        const bool on = (change.uNewState & LVIS_SELECTED) != 0;
        m_model.SelectRows(change.iItem < 0 ? 0 : row, change.iItem < 0 ? m_count : row + 1, on);
        m_selected = m_model.Selection();
    }
    if (change.iItem < 0) return;
    // This holds also when it had the focus before: its loss may have been told on the way.
    if (change.uNewState & LVIS_FOCUSED)
        m_focusedRow = row;
    else if ((changed & LVIS_FOCUSED) && m_focusedRow == row)
        m_focusedRow = kNone;
    else
        return;
    m_model.Focus(m_model.ShownAt(m_focusedRow));
}

void ListSync::OnRangeChanged(const NMLVODSTATECHANGE& change) {
    if (m_busy || !((change.uOldState ^ change.uNewState) & LVIS_SELECTED)) return;
    m_model.SelectRows(static_cast<std::uint32_t>(change.iFrom), static_cast<std::uint32_t>(change.iTo) + 1,
                       (change.uNewState & LVIS_SELECTED) != 0);
    m_selected = m_model.Selection();
}

void ListSync::AdoptSelection() {
    if (!m_list || m_busy) return;
    if (static_cast<std::uint32_t>(m_list.Send(LVM_GETSELECTEDCOUNT)) == m_selected.Count()) return;
    RowRanges held;
    for (LRESULT row = -1; (row = m_list.Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) >= 0;)
        held.Set(static_cast<std::uint32_t>(row), static_cast<std::uint32_t>(row) + 1, true);
    m_model.SelectRows(0, m_count, false);
    for (const RowRanges::Range& range : held.Ranges())
        m_model.SelectRows(range.begin, range.end, true);
    m_selected = m_model.Selection();
}

} // namespace korvex
