// What is typed into cells of the basket's list, or pasted over them, as a line of a basket file would say it,
// and judged as one.
#pragma once

#include "plugin/basket/BasketLine.h"
#include "plugin/basket/BasketLoading.h"
#include "plugin/messaging/Session.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// A row's remarks and state are the server's.
bool IsEditable(BasketField field);

// What a cell's text is in a file: "SIP" is B, "1500.50" 150050 paise. On a refusal, which is returned, `text`
// is as typed.
std::optional<std::string> CellToFile(BasketField field, std::string_view typed, const BasketRules& rules,
                                      std::string& text);

// Judges lines that do not come out of a file.
class CellJudge {
public:
    CellJudge(const Session& session, BasketRules rules)
        : m_session(session), m_rules(std::move(rules)), m_scrips(session), m_check(m_rules, m_scrips) {}

    // Changes the columns to those of a row, which live until the next call. Why it is none, if so.
    std::optional<std::string> Judge(Pass pass, BasketTexts& columns, int lineNumber);
    // The same after a cell of the row was typed.
    std::optional<std::string> JudgeCell(Pass pass, BasketTexts& columns, BasketField field,
                                         std::string_view typed);
    // After exchange, series or symbol have changed.
    void LookUpScrip(Pass pass, BasketTexts& columns);
    const BasketRules& Rules() const { return m_rules; }

private:
    const Session& m_session;
    const BasketRules m_rules;
    HostScrips m_scrips;
    BasketCheck m_check;
    std::string m_typed;
    ScripNames m_names; // last looked up
};

// Rows of a spreadsheet as lines of a basket file, one for each line of the text: tabs between the cells, in
// the order of the file's columns, or below the headings of the basket's list.
struct PastedLine {
    std::string text;                     // as a file's line
    std::optional<std::string> refusal{}; // of a cell, which stands in the text as it was
    bool namesScrip = false;              // by exchange, series and symbol alone
};
std::vector<PastedLine> LinesOfCells(std::string_view cells, const BasketRules& rules);

} // namespace planfold
