// Basket files: read line by line into rows and rejected lines, and written from rows; among them the file of
// the orders that were not sent.
#pragma once

#include "base/Text.h"
#include "plugin/basket/BasketLine.h"
#include "plugin/basket/BasketReading.h"
#include "plugin/basket/BasketRows.h"
#include "plugin/basket/BasketView.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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

// The lines that a load rejected, as they came.
struct RejectedLines {
    std::vector<RejectedLine> lines;
    int corrected = 0; // the number of the line that the form was filled from; 0 for none

    // The content of a file of them, as they were read.
    std::string Text() const;
};

class BasketReader final : public BasketReading {
public:
    // The text, the rules and the others outlive the load.
    BasketReader(std::string_view text, const BasketRules& rules, ScripSource& scrips, BasketSink& sink)
        : m_size(text.size()), m_lines(text), m_check(rules, scrips), m_sink(sink) {}
    // Holds the text.
    BasketReader(std::shared_ptr<const std::string> text, const BasketRules& rules, ScripSource& scrips,
                 BasketSink& sink)
        : BasketReader(*text, rules, scrips, sink) {
        m_held = std::move(text);
    }

    bool Read(std::size_t lines) override;

    int LinesRead() const override { return m_number; }
    std::size_t RowsLoaded() const override { return m_rows; }
    const std::string& LastReason() const override { return m_lastReason; }
    std::size_t Done() const override { return m_size - m_lines.CharactersLeft(); }
    std::size_t Total() const override { return m_size; }

private:
    void ReadLine(const BasketLines::Line& line);
    void Reject(const BasketLines::Line& line, const BasketTexts& columns, std::string reason, bool hasNumber);

    std::shared_ptr<const std::string> m_held;
    std::size_t m_size;
    BasketLines m_lines;
    BasketCheck m_check;
    BasketSink& m_sink;
    BasketTexts m_columns; // of the line that is read
    int m_number = 0;
    std::size_t m_rows = 0;
    std::string m_lastReason;
};

// Of a basket file's text.
BeginReading ReadingOf(std::string text);

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
