// What leaves the basket as a file: its orders, its rejected lines, and what was not registered.
#pragma once

#include "plugin/basket/BasketOutcome.h"
#include "plugin/basket/BasketRuns.h"

#include <functional>
#include <string>

namespace planfold {

class BasketSaving final {
public:
    BasketSaving(BasketView& view, BasketQuestions& questions, const BasketRows& rows,
                 const RejectedLines& rejected, const BasketRuns& runs, const BasketOutcome& outcome)
        : m_view(view), m_questions(questions), m_rows(rows), m_rejected(rejected), m_runs(runs),
          m_outcome(outcome) {}

    void Export();
    // The rejected lines as they were read, to be corrected and loaded again.
    void SaveRejected();
    // The same as a table with headings, and why each was rejected.
    void SaveReasons();
    // The rows that were not registered, as a basket's file.
    void SaveResults();
    // As a table with the list's headings: all rows, or those that were not registered.
    void SaveTable(bool resultsOnly);

private:
    void Save(const std::function<std::string()>& text);

    BasketView& m_view;
    BasketQuestions& m_questions;
    const BasketRows& m_rows;
    const RejectedLines& m_rejected;
    const BasketRuns& m_runs;
    const BasketOutcome& m_outcome;
};

} // namespace planfold
