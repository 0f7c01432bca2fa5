// The file in which registrations go out to be changed in a spreadsheet and come back: the columns of the
// registered book, and behind them how each registration was when it went out.
#pragma once

#include "plugin/changes/CsvText.h"
#include "plugin/orderbook/OrderCache.h"
#include "plugin/orderbook/OrderInfo.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// Another one when any text of the record changes that the server tells.
std::uint64_t PrintOf(const sOrderinfo& record);
// Where its value stands: a record by neither amount nor quantity has none.
std::optional<OrderField> ValueField(const sOrderinfo& record);

// How a registration was when it went out, as the last column says: "1500.00|22|5f3a9c0112b4d5e6", of which no
// program makes a number or a date.
struct Stamp {
    std::string value, periods;
    std::uint64_t print = 0;

    static Stamp Of(const sOrderinfo& record, bool serverPeriods);
    static std::optional<Stamp> Read(std::string_view cell);
    std::string Text() const;
};

// The text of the file. Formulas are disarmed, dates are written so that every program knows them.
std::string ChangeFileText(const OrderCache& book, std::span<const RecordId> records, bool serverPeriods);

class ChangeFile {
public:
    using Cells = ByField<OrderField, std::optional<std::string>>; // none: the file lacks the column

    struct Row {
        int line = 0;
        Cells cells;
        std::string stamp;
    };

    explicit ChangeFile(std::string text);
    ChangeFile(const ChangeFile&) = delete;
    ChangeFile& operator=(const ChangeFile&) = delete;

    // Why nothing can be read from it, or nothing more; empty when it can.
    const std::string& Fault() const { return m_fault; }
    bool HasStamps() const { return m_hasStamps; }
    // What it has besides, which is not read: "Notes, Branch".
    const std::string& OtherColumns() const { return m_others; }
    // The program that wrote it writes 1.00.000,50.
    bool DecimalComma() const { return m_csv.Separator() == ';'; }
    // False at the end, and after a fault.
    bool Next(Row& row);
    // Of the text, in characters.
    std::size_t Size() const { return m_text.size(); }

private:
    static constexpr int kStampColumn = -1, kOtherColumn = -2;

    void ReadHeadings(const std::vector<std::string>& headings);

    std::string m_text;
    CsvText m_csv;
    std::vector<int> m_columns; // of the registered book, or one of the above
    std::string m_fault, m_others;
    bool m_hasStamps = false;
};

} // namespace planfold
