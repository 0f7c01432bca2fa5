// What the preview of an import shows.
#pragma once

#include "plugin/import/ImportFile.h"

#include <string>
#include <utility>

namespace planfold {

struct PreviewColumn {
    const char* heading;
    int width;         // pixels at 96 DPI
    BasketField field; // kNotRead: the line where that is first, and the reason where it is last
};
inline constexpr PreviewColumn kPreviewColumns[] = {
    {"Line", 40, kNotRead},
    {"Reason", 300, BasketField::userText},
    {"Client ID", 60, BasketField::account},
    {"Exchange", 55, BasketField::exchange},
    {"Series", 45, BasketField::series},
    {"Symbol", 90, BasketField::symbol},
    {"Product", 50, BasketField::product},
    {"Amount", 80, BasketField::amount},
    {"Quantity", 60, BasketField::quantity},
    {"Frequency", 65, BasketField::frequency},
    {"Start Date", 80, BasketField::startDateText},
    {"Total Period", 70, BasketField::totalPeriod},
    {"Action", 50, BasketField::side},
    {"Trading Symbol", 100, BasketField::tradingSymbol},
    {"Token", 50, BasketField::token},
};
std::string PreviewText(const PreviewRow& row, int column);
// Of the list of the file's columns: number, heading, first value, and what it is read as.
std::string ColumnText(const ImportFile& file, std::size_t row, int column);

// Entries of the choices, and their order.
std::string FieldTitle(BasketField field);
std::string UnitTitle(AmountUnit unit);
std::string PatternTitle(DatePattern pattern);
int PlaceOfField(BasketField field);
BasketField FieldAtPlace(int place);
// Of those that may have a default.
BasketField FieldWithDefault(int place);

// "branch.xlsx: headings in line 3, columns read as kept under "Andheri""
std::string FileTitle(std::string_view path, const ImportFile& file);
// Both readings of the first date that has two.
std::string DoubtText(const ImportFile& file);
// "Of the first 2000 rows 1980 are orders. Rejected: 12 values missing, ..."
std::string FaultsText(const ImportFile& file);

// While one lives, controls change by the program alone.
class ScopedShowing {
public:
    explicit ScopedShowing(bool& showing) : m_showing(showing), m_before(std::exchange(showing, true)) {}
    ScopedShowing(const ScopedShowing&) = delete;
    ScopedShowing& operator=(const ScopedShowing&) = delete;
    ~ScopedShowing() { m_showing = m_before; }

private:
    bool& m_showing;
    bool m_before;
};

} // namespace planfold
