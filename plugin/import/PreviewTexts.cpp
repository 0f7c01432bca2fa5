#include "plugin/import/PreviewTexts.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <array>

namespace planfold {

namespace {

constexpr std::array kUnitTitles{"(not decided)", "rupees", "paise"};
constexpr std::array kPatternTitles{"(not decided)",  "day/month/year",          "month/day/year",
                                    "year-month-day", "spreadsheet days (1900)", "spreadsheet days (1904)"};
static_assert(kUnitTitles.size() == static_cast<std::size_t>(AmountUnit::count));
static_assert(kPatternTitles.size() == static_cast<std::size_t>(DatePattern::count));

} // namespace

std::string PreviewText(const PreviewRow& row, int column) {
    const BasketField field = kPreviewColumns[column].field;
    if (field == kNotRead) return std::to_string(row.line);
    if (field == BasketField::userText) return row.reason;
    std::string text = row.texts[field];
    // As the basket's list shows them.
    if (field == BasketField::amount && !text.empty()) return GroupedRupees(LeadingInteger(text));
    if (field == BasketField::side) Convert(kPlanToDisplay, row.texts[field], text);
    return text;
}

std::string ColumnText(const ImportFile& file, std::size_t row, int column) {
    if (row >= file.Columns().texts.size()) return {};
    switch (column) {
    case 0:
        return std::to_string(row + 1);
    case 1:
        return file.Columns().texts[row];
    case 2:
        return row < file.FirstValues().size() ? file.FirstValues()[row] : std::string();
    default:
        return FieldTitle(file.Mapping().columns[row]);
    }
}

std::string FieldTitle(BasketField field) {
    const ImportField* row = FindImportField(field);
    return row ? row->word : "(not read)";
}

std::string UnitTitle(AmountUnit unit) {
    return kUnitTitles[static_cast<std::size_t>(unit)];
}

std::string PatternTitle(DatePattern pattern) {
    return kPatternTitles[static_cast<std::size_t>(pattern)];
}

int PlaceOfField(BasketField field) {
    const auto* row = std::ranges::find(kImportFields, field, &ImportField::field);
    return row == std::end(kImportFields) ? 0 : static_cast<int>(row - kImportFields) + 1;
}

BasketField FieldAtPlace(int place) {
    return place >= 1 && place <= static_cast<int>(std::size(kImportFields)) ? kImportFields[place - 1].field
                                                                             : kNotRead;
}

BasketField FieldWithDefault(int place) {
    for (const ImportField& row : kImportFields)
        if (row.hasDefault && place-- == 0) return row.field;
    return kNotRead;
}

std::string FileTitle(std::string_view path, const ImportFile& file) {
    std::string title(path.substr(path.find_last_of("\\/") + 1));
    title += Format(": headings in line %d", file.Columns().line);
    if (file.IsKept()) title += ", read as kept under \"" + file.Mapping().name + '"';
    const std::vector<std::string> notRead = file.NotRead();
    for (std::size_t i = 0; i < notRead.size(); ++i)
        title += (i == 0 ? "; not read: " : ", ") + notRead[i];
    return title;
}

std::string DoubtText(const ImportFile& file) {
    const TwoDates& doubt = file.Doubt();
    if (doubt.said.empty()) return {};
    const auto reading = [](const std::string& date) { return date.empty() ? "no date" : date.c_str(); };
    return Format("%s may be %s or %s: choose how dates are written.", doubt.said.c_str(),
                  reading(doubt.dayFirst), reading(doubt.monthFirst));
}

std::string FaultsText(const ImportFile& file) {
    std::string text =
        Format("%s %zu rows %zu %s.", file.HasMore() ? "Of the first" : "Of", file.RowsTried(), file.Good(),
               file.Good() == 1 ? "is an order" : "are orders");
    const std::vector<std::string> faults = file.FaultTexts();
    for (std::size_t i = 0; i < faults.size(); ++i)
        text += (i == 0 ? " Rejected: " : ", ") + faults[i];
    return text;
}

} // namespace planfold
