#include "host/korvexcontrols/ListHeader.h"

#include "host/korvexcontrols/RecoveryFiles.h"
#include "host/korvexcontrols/model/KeptLayout.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace korvex {
namespace {

constexpr char kLists[] = "Lists";

std::vector<int> GivenOrder(std::size_t columns) {
    std::vector<int> order(columns);
    std::iota(order.begin(), order.end(), 0);
    return order;
}

} // namespace

const ListHeader::Column* ListHeader::At(std::int32_t column) const {
    const auto index = static_cast<std::size_t>(column);
    return column >= 0 && index < m_columns.size() ? &m_columns[index] : nullptr;
}

void ListHeader::Attach(HWND list, std::vector<Column> columns, std::string name) {
    m_list = framework::Window(list);
    m_columns = std::move(columns);
    m_name = std::move(name);
    m_scale = m_list.Scale();
    Insert();
    m_saved = ReadRecovered(RecoveryFile::userSettings, kLists, m_name);
    if (const auto state = ReadColumns(m_saved, m_columns.size())) Apply(state->order, state->widths);
}

void ListHeader::Insert() {
    m_widths.clear();
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const Column& column = m_columns[i];
        m_widths.push_back(column.width);
        LVCOLUMNA insert{};
        insert.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        insert.fmt = column.rightAligned ? LVCFMT_RIGHT : LVCFMT_LEFT;
        insert.cx = m_scale(column.width);
        insert.pszText = const_cast<char*>(column.heading.c_str());
        m_list.Send(LVM_INSERTCOLUMNA, i, reinterpret_cast<LPARAM>(&insert));
    }
}

void ListHeader::Apply(const std::vector<int>& order, const std::vector<int>& widths) {
    m_widths = widths;
    m_stretched = -1;
    SetWidths();
    m_list.Send(LVM_SETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()));
    Stretch();
    InvalidateRect(m_list.Handle(), nullptr, TRUE);
}

void ListHeader::SetWidths() {
    for (std::size_t i = 0; i < m_widths.size(); ++i)
        m_list.Send(LVM_SETCOLUMNWIDTH, i, m_scale(m_widths[i]));
}

// What was set comes back unchanged, not rounded twice.
int ListHeader::UsualWidth(std::size_t column) const {
    const auto width = static_cast<int>(m_list.Send(LVM_GETCOLUMNWIDTH, column));
    if (static_cast<std::int32_t>(column) == m_stretched && width == m_stretchedWidth) return m_widthBefore;
    return width == m_scale(m_widths[column]) ? m_widths[column] : m_scale.Undo(width);
}

ColumnsState ListHeader::State() const {
    ColumnsState state{GivenOrder(m_columns.size()), {}};
    m_list.Send(LVM_GETCOLUMNORDERARRAY, state.order.size(), reinterpret_cast<LPARAM>(state.order.data()));
    for (std::size_t i = 0; i < m_columns.size(); ++i)
        state.widths.push_back(UsualWidth(i));
    return state;
}

void ListHeader::Set(const ColumnsState& state) {
    Apply(state.order, state.widths);
    Save();
}

void ListHeader::Save() {
    if (!m_list || m_columns.empty()) return;
    std::string line = WriteColumns(State());
    if (line == m_saved) return;
    WriteRecovered(RecoveryFile::userSettings, kLists, m_name, line);
    m_saved = std::move(line);
}

void ListHeader::Reset() {
    std::vector<int> widths;
    std::ranges::transform(m_columns, std::back_inserter(widths), &Column::width);
    Set({GivenOrder(m_columns.size()), widths});
}

int ListHeader::WidthFor(std::int32_t column, int textWidth) const {
    const std::string& heading = At(column)->heading;
    // Beside the heading there is room for the mark of a sort or a filter.
    const int ofHeading = WidthOf(heading) + m_scale(14);
    return m_scale.Undo(std::max(textWidth, ofHeading) + Padding()) + 1;
}

int ListHeader::RoomIn(std::int32_t column) const {
    return static_cast<int>(m_list.Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column))) - Padding();
}

void ListHeader::StretchLastText(bool on) {
    m_stretches = on;
    Stretch();
}

std::int32_t ListHeader::LastText() const {
    const auto shown = Shown();
    const auto last = std::find_if(shown.rbegin(), shown.rend(),
                                   [&](std::int32_t column) { return At(column)->type == ValueType::text; });
    return last == shown.rend() ? -1 : *last;
}

void ListHeader::Stretch() {
    if (!m_stretches || !m_list) return;
    std::vector<int> widths;
    int all = 0;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        widths.push_back(UsualWidth(i));
        all += m_scale(widths.back());
    }
    const std::int32_t before = std::exchange(m_stretched, -1), column = LastText();
    const int spare = static_cast<int>(m_list.ClientRect().right) - all;
    if (before >= 0 && (before != column || spare <= 0))
        m_list.Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(before),
                    m_scale(widths[static_cast<std::size_t>(before)]));
    if (column < 0 || spare <= 0) return;
    m_widthBefore = widths[static_cast<std::size_t>(column)];
    m_stretchedWidth = m_scale(m_widthBefore) + spare;
    m_list.Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), m_stretchedWidth);
    m_stretched = column;
}

void ListHeader::Rescale() {
    const framework::TextScale scale = m_list.Scale();
    if (scale == m_scale) return;
    for (std::size_t i = 0; i < m_widths.size(); ++i)
        m_widths[i] = UsualWidth(i);
    m_scale = scale;
    m_stretched = -1;
    SetWidths();
    Stretch();
}

std::vector<std::int32_t> ListHeader::Shown() const {
    std::vector<int> order = GivenOrder(m_columns.size());
    m_list.Send(LVM_GETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()));
    std::erase_if(
        order, [&](int column) { return m_list.Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)) == 0; });
    return {order.begin(), order.end()};
}

// The place may lie below the heading. A hit test would give the left column the first pixels of the next.
std::int32_t ListHeader::ColumnAt(POINT screen) const {
    ScreenToClient(Handle(), &screen);
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        RECT rect{};
        SendMessageA(Handle(), HDM_GETITEMRECT, i, reinterpret_cast<LPARAM>(&rect));
        if (screen.x >= rect.left && screen.x < rect.right) return static_cast<std::int32_t>(i);
    }
    return -1;
}

void ListHeader::ShowSort(const std::vector<SortColumn>& sort) const {
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        HDITEMA item{};
        item.mask = HDI_FORMAT;
        SendMessageA(Handle(), HDM_GETITEMA, i, reinterpret_cast<LPARAM>(&item));
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        const auto by = std::ranges::find(sort, static_cast<std::int32_t>(i), &SortColumn::column);
        if (by != sort.end()) item.fmt |= by->descending ? HDF_SORTDOWN : HDF_SORTUP;
        SendMessageA(Handle(), HDM_SETITEMA, i, reinterpret_cast<LPARAM>(&item));
    }
}

// All funnels are drawn at the end: not every system asks about an item once more after drawing it.
LRESULT ListHeader::Draw(const NMCUSTOMDRAW& draw, const std::function<bool(std::int32_t)>& isFiltered) const {
    if (draw.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYPOSTPAINT;
    if (draw.dwDrawStage != CDDS_POSTPAINT) return CDRF_DODEFAULT;
    for (std::int32_t column = 0; At(column); ++column) {
        RECT cell{};
        if (!isFiltered(column)) continue;
        SendMessageA(Handle(), HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&cell));
        // The mark stands on the side where the heading's text is not; the first column's is always left.
        DrawFunnel(draw.hdc, cell, At(column)->rightAligned && column > 0);
    }
    return CDRF_DODEFAULT;
}

void ListHeader::DrawFunnel(HDC device, RECT cell, bool atLeft) const {
    const int side = m_scale(9), gap = m_scale(4);
    const int left = atLeft ? cell.left + gap : cell.right - gap - side;
    const int top = (cell.top + cell.bottom - side) / 2, middle = left + side / 2;
    const POINT funnel[] = {{left, top},
                            {left + side, top},
                            {middle + 1, top + side / 2},
                            {middle + 1, top + side},
                            {middle - 1, top + side - 1},
                            {middle - 1, top + side / 2}};
    const HGDIOBJ pen = SelectObject(device, GetStockObject(NULL_PEN));
    const HGDIOBJ brush = SelectObject(device, GetSysColorBrush(COLOR_HIGHLIGHT));
    Polygon(device, funnel, static_cast<int>(std::size(funnel)));
    SelectObject(device, brush);
    SelectObject(device, pen);
}

} // namespace korvex
