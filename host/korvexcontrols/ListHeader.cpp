#include "host/korvexcontrols/ListHeader.h"

#include "host/korvexcontrols/RecoveryFiles.h"
#include "host/korvexcontrols/model/KeptLayout.h"

#include <algorithm>
#include <numeric>

namespace korvex {
namespace {

constexpr char kSection[] = "Lists";

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
    m_saved = ReadRecovered(RecoveryFile::userSettings, kSection, m_name);
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
    SetWidths();
    m_list.Send(LVM_SETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()));
    InvalidateRect(m_list.Handle(), nullptr, TRUE);
}

void ListHeader::SetWidths() {
    for (std::size_t i = 0; i < m_widths.size(); ++i)
        m_list.Send(LVM_SETCOLUMNWIDTH, i, m_scale(m_widths[i]));
}

// What was set comes back unchanged, not rounded twice.
int ListHeader::UsualWidth(std::size_t column) const {
    const auto width = static_cast<int>(m_list.Send(LVM_GETCOLUMNWIDTH, column));
    return width == m_scale(m_widths[column]) ? m_widths[column] : m_scale.Undo(width);
}

void ListHeader::Save() {
    if (!m_list || m_columns.empty()) return;
    ColumnsState state{GivenOrder(m_columns.size()), {}};
    m_list.Send(LVM_GETCOLUMNORDERARRAY, state.order.size(), reinterpret_cast<LPARAM>(state.order.data()));
    for (std::size_t i = 0; i < m_columns.size(); ++i)
        state.widths.push_back(UsualWidth(i));
    std::string line = WriteColumns(state);
    if (line == m_saved) return;
    WriteRecovered(RecoveryFile::userSettings, kSection, m_name, line);
    m_saved = std::move(line);
}

void ListHeader::Reset() {
    std::vector<int> widths;
    std::ranges::transform(m_columns, std::back_inserter(widths), &Column::width);
    Apply(GivenOrder(m_columns.size()), widths);
    Save();
}

void ListHeader::Rescale() {
    const framework::TextScale scale = m_list.Scale();
    if (scale == m_scale) return;
    for (std::size_t i = 0; i < m_widths.size(); ++i)
        m_widths[i] = UsualWidth(i);
    m_scale = scale;
    SetWidths();
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
