// Basket files: read line by line into rows and rejected lines, and written from rows; among them the file of
// the orders that were not sent.
#pragma once

#include "base/Text.h"
#include "plugin/basket/BasketLine.h"
#include "plugin/basket/BasketRows.h"
#include "plugin/basket/BasketView.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// Told of a file that is.
inline constexpr char kUtf16Fault[] = "it is UTF-16 text; save it as ANSI or UTF-8 text and load it again";

// The lines of a file's text, with line ends of either platform; a byte order mark in front belongs to none.
// Positions stay valid as long as the text.
class BasketLines {
public:
    explicit BasketLines(std::string_view text) : m_rest(base::WithoutMark(text)) {}

    struct Line {
        std::string_view text; // without its end
        bool isEnded;          // false: the file ends without a line feed
    };
    // None at the end.
    std::optional<Line> Next();
    std::size_t CharactersLeft() const { return m_rest.size(); }

private:
    std::string_view m_rest;
};

// A line that did not become a row.
struct RejectedLine {
    int number;         // from 1
    std::string text;   // as it was read, without its end; may hold zeros
    std::string reason; // may be empty
    // What is said about it: the line up to a zero, "failed to load" and why.
    std::string report;
};

// The lines that a load rejected, as they came.
struct RejectedLines {
    std::vector<RejectedLine> lines;
    int corrected = 0; // the number of the line that the form was filled from; 0 for none

    // The content of a file of them, as they were read.
    std::string Text() const;
};

// What a load brings, line by line.
class BasketSink {
public:
    // The texts live during the call only.
    virtual void OnRow(const BasketTexts& texts) = 0;
    // `columns` are the line's, as far as it had the file's format.
    virtual void OnRejected(const RejectedLine& line, const BasketTexts& columns) = 0;
    // A text for the user, at once.
    virtual void OnNotice(std::string_view text) = 0;
    // A line for the log.
    virtual void OnLog(std::string_view text) = 0;

protected:
    ~BasketSink() = default;
};

class BasketReader {
public:
    // The text, the rules and the others outlive the load.
    BasketReader(std::string_view text, const BasketRules& rules, ScripSource& scrips, BasketSink& sink)
        : m_lines(text), m_check(rules, scrips), m_sink(sink) {}

    // At most so many lines; false when the file is at its end.
    bool Read(std::size_t lines);

    int LinesRead() const { return m_number; }
    std::size_t CharactersLeft() const { return m_lines.CharactersLeft(); }
    std::size_t RowsLoaded() const { return m_rows; }
    // Of the line rejected last; empty without one, or when it had none.
    const std::string& LastReason() const { return m_lastReason; }

private:
    void ReadLine(const BasketLines::Line& line);
    void Reject(const BasketLines::Line& line, const BasketTexts& columns, std::string reason, bool hasNumber);

    BasketLines m_lines;
    BasketCheck m_check;
    BasketSink& m_sink;
    BasketTexts m_columns; // of the line that is read
    int m_number = 0;
    std::size_t m_rows = 0;
    std::string m_lastReason;
};

// One line of an exported file, with its line feed.
void AppendBasketLine(const sBasketOrderData& row, std::string& text);

// One field of a table that a spreadsheet reads: quoted where it has to be, and never calculated. `isLast` ends
// the line.
void AppendCsvField(std::string_view text, bool isLast, std::string& csv);
// The lines below the names of the file's columns, with the reasons in a last one that nobody reads as an
// order's.
std::string RejectedTable(const std::vector<RejectedLine>& lines);

// What is written of lines, so that they read the same: where the first begins like a file's mark, that is no
// mark.
std::string BasketFileText(std::string lines);

// Empty when every row was sent.
std::string UnsentText(const BasketRows& rows, const BasketList& list);

} // namespace planfold
