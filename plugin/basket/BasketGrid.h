// Editing in the basket's list itself: cells, filling, replacing, pasting, rejected lines in place, and the way
// from fault to fault.
#pragma once

#include "plugin/basket/BasketColumns.h"
#include "plugin/basket/BasketHistory.h"
#include "plugin/basket/BasketRuns.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

class CellJudge;

// A rejected line by its place, or a row.
struct BasketFault {
    std::optional<std::size_t> line{};
    RecordId row = kNoRecord;

    bool operator==(const BasketFault&) const = default;
};

// What is replaced by what in a column.
struct CellReplacement {
    BasketField field;
    std::string text, by;
    bool isWhole = false;      // only cells that hold nothing else
    bool isOfSelected = false; // otherwise of all rows
};

class BasketGrid {
public:
    BasketGrid(Session& session, BasketView& view, BasketQuestions& questions, const BasketForm& form,
               const BasketRows& rows, const RejectedLines& rejected, BasketHistory& history, BasketRuns& runs)
        : m_session(session), m_view(view), m_questions(questions), m_form(form), m_rows(rows),
          m_rejected(rejected), m_history(history), m_runs(runs) {}

    // Why it cannot be edited, if so; none as well when the row is not there.
    std::optional<std::string> WhyNot(RecordId row) const;
    // With which a cell's edit opens.
    std::string CellText(RecordId row, BasketField field) const;
    // Why the text is refused; none when the row, by its serial number, has it.
    std::optional<std::string> Edit(std::int32_t row, BasketField field, std::string_view typed);
    // The same for a whole rejected line, by its number, which becomes a row.
    std::optional<std::string> EditRejected(int number, std::string_view typed);

    // The shown text of the first selected row's cell goes to the others.
    void FillDown(BasketField field);
    // Whether several rows are selected.
    bool IsAboutSelected() const { return m_view.List().Selected().size() > 1; }
    // Rows whose cell holds the text.
    std::size_t Matches(const CellReplacement& replacement) const;
    // "12 of 300 rows contain it, those that a filter hides among them."
    std::string MatchesText(const CellReplacement& replacement) const;
    void Replace(const CellReplacement& replacement);
    // Cells of a spreadsheet; see LinesOfCells. What does not pass joins the rejected lines.
    void Paste(std::string_view cells);

    // The rejected lines come first, then the rows from the top; behind the last follows the first.
    std::optional<BasketFault> NextFault(const BasketFault& from, bool back) const;
    // A row that was not registered, or stands twice.
    bool IsFaulty(RecordId row) const;

private:
    struct Outcome {
        std::size_t changed = 0, sent = 0, refused = 0;
        std::string firstReason;
    };

    template <class TypedOf>
    void EditAll(const char* what, const std::vector<RecordId>& rows, BasketField field, TypedOf&& typedOf);
    void TellOutcome(const char* what, const Outcome& outcome);
    // The rows have changed, and nothing of the caller's comes after it.
    void ShowChangedLast();
    std::vector<RecordId> RowsToReplaceIn(const CellReplacement& replacement) const;
    int LastNumber() const;

    Session& m_session;
    BasketView& m_view;
    BasketQuestions& m_questions;
    const BasketForm& m_form;
    const BasketRows& m_rows;
    const RejectedLines& m_rejected;
    BasketHistory& m_history;
    BasketRuns& m_runs;
    mutable BasketCells m_cells;
};

} // namespace planfold
