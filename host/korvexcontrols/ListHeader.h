// The list's columns in the control: as given, as the user ordered and sized them, at the window's DPI and
// font, with arrows for the sort and a funnel where a filter is. Texts and formats of the columns never change.
#pragma once

#include "framework/Window.h"
#include "host/korvexcontrols/model/ColumnFilter.h"
#include "host/korvexcontrols/model/KeptLayout.h"
#include "host/korvexcontrols/model/SortOrder.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace korvex {

class ListHeader {
public:
    struct Column {
        std::string heading;
        int width; // pixels at 96 DPI and 8 points
        bool rightAligned;
        ValueType type;
    };

    // `name` is the one under which the columns are remembered.
    void Attach(HWND list, std::vector<Column> columns, std::string name);
    void Detach() { m_list = framework::Window(); }

    const std::vector<Column>& Columns() const { return m_columns; }
    const Column* At(std::int32_t column) const;
    HWND Handle() const { return reinterpret_cast<HWND>(m_list.Send(LVM_GETHEADER)); }
    // Columns of some width, from left to right.
    std::vector<std::int32_t> Shown() const;
    // The column under a place of the screen; -1 beside all.
    std::int32_t ColumnAt(POINT screen) const;

    void Save();
    void Reset();
    // Order and widths as they are, at 96 DPI and 8 points; a hidden column has none.
    ColumnsState State() const;
    void Set(const ColumnsState& state);
    // The pixels that a text takes in a cell.
    int WidthOf(const std::string& text) const {
        return static_cast<int>(m_list.Send(LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(text.c_str())));
    }
    // The width at 96 DPI and 8 points that shows a text of so many pixels whole.
    int WidthFor(std::int32_t column, int textWidth) const;
    // The pixels that a text may have in the column.
    int RoomIn(std::int32_t column) const;
    // The last text column takes what room the columns leave, without being wider for the user.
    void StretchLastText(bool on);
    void Stretch();
    // Fits the columns to the DPI and font that the window has now.
    void Rescale();
    void ShowSort(const std::vector<SortColumn>& sort) const;
    void Repaint() const { InvalidateRect(Handle(), nullptr, TRUE); }
    // Answers the header's custom draw.
    LRESULT Draw(const NMCUSTOMDRAW& draw, const std::function<bool(std::int32_t)>& isFiltered) const;

private:
    void Insert();
    int UsualWidth(std::size_t column) const;
    void Apply(const std::vector<int>& order, const std::vector<int>& widths);
    void SetWidths();
    std::int32_t LastText() const;
    int Padding() const { return m_scale(12); }
    void DrawFunnel(HDC device, RECT cell, bool atLeft) const;

    framework::Window m_list;
    std::vector<Column> m_columns;
    std::string m_name, m_saved;
    std::vector<int> m_widths; // as they were set, at 96 DPI and 8 points
    framework::TextScale m_scale;
    bool m_stretches = false;
    std::int32_t m_stretched = -1; // the column that is wider than the user made it
    int m_stretchedWidth = 0;      // in pixels
    int m_widthBefore = 0;         // at 96 DPI and 8 points
};

} // namespace korvex
