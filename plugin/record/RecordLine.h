// The lines of the order record: what was asked of the server and what became of it, one event a line, in a CSV
// file for each local day. The files are only ever appended to, and open in a spreadsheet.
//
// Text is written so that no line can spoil another: a field holds no line feed, and what a spreadsheet would
// take for a formula is disarmed by an apostrophe in front, which reading takes away again.
#pragma once

#include "plugin/base/Text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// The columns in their order.
enum class RecordField : std::uint8_t {
    time,         // "2027-03-05 14:02:03", local
    event,        // an OrderEvent's name
    orderId,      // by which the server and the book know the order again; empty when the host gives none
    registration, // its number, once it is known
    loginId,      // of the user who sent it
    source,       // "form", or the basket file's name
    line,         // of that file, decimal
    account,      // of the client
    exchange,     // "nse_cm"
    tradingSymbol,
    side,       // "B" or "S"
    investType, // "value" or "qty"
    value,      // paise by value, shares by quantity
    frequency,
    startDate, // "05-Mar-2027"
    periods,
    text, // of a request its name; of an answer what the server said, behind the name when it is a change's
    count
};
inline constexpr std::size_t kRecordFieldCount = static_cast<std::size_t>(RecordField::count);

enum class OrderEvent : std::uint8_t {
    sending, // on the disk before the request goes out
    notSent, // it did not leave the desk
    registered,
    modified,
    cancelled,
    paused,
    resumed,
    refused, // by the server
    inDoubt, // no answer came
    found,   // the book shows what was in doubt
    absent,  // the book proves that it does not have it
};
std::string_view NameOf(OrderEvent event);
std::optional<OrderEvent> EventNamed(std::string_view name);

// The texts of a line; they are whoever's.
using RecordTexts = ByField<RecordField, std::string_view>;

// Ends a line that a crash or a full disk cut short, before the next one is written: no field holds its first
// character.
inline constexpr std::string_view kTornEnd = "\x1A\r\n";

// The first line of a file, and a line of it, each with its line end.
std::string_view RecordHeading();
void AppendRecordLine(const RecordTexts& texts, std::string& csv);

// Reads a record's file whatever happened to it: a line that was cut short by a crash, columns in another
// order, columns of another version, another separator or quotes by a spreadsheet. What is no event is counted
// and left out; nothing else suffers by it.
class RecordReader {
public:
    // The text outlives the reader.
    explicit RecordReader(std::string_view file);

    // None at the end. The texts are valid until the next call.
    std::optional<RecordTexts> Next();
    std::size_t UnreadLines() const { return m_unread; }
    std::size_t CharactersLeft() const { return m_rest.size(); }

private:
    bool Split(std::string_view line);
    bool TakeHeading(std::string_view line);
    // Lines as AppendRecordLine writes them follow.
    void TakeOurs();

    std::string_view m_rest;
    char m_separator = ',';
    // At which of a line's fields each column stands, beyond the last for one that it lacks; and how many there
    // are.
    std::array<std::size_t, kRecordFieldCount> m_places{};
    std::size_t m_width = kRecordFieldCount;
    std::vector<std::string_view> m_fields; // of the line that is read
    std::string m_unquoted;                 // the characters of those that were quoted
    std::size_t m_unread = 0;
};

} // namespace planfold
