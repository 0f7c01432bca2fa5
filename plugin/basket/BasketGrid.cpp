#include "plugin/basket/BasketGrid.h"

#include "plugin/base/Text.h"
#include "plugin/basket/CellJudge.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

// Then the row stays the order that it is.
bool IsSame(const sBasketOrderData& row, const BasketTexts& columns) {
    return std::ranges::all_of(kBasketColumns,
                               [&](BasketField field) { return row.Text(field) == columns[field]; });
}

} // namespace

std::optional<std::string> BasketGrid::WhyNot(RecordId row) const {
    if (row == kNoRecord || !m_rows.IsSent(row)) return std::nullopt;
    return "The order was sent: its row cannot be edited.";
}

std::string BasketGrid::CellText(RecordId row, BasketField field) const {
    return std::string(m_cells.Text(m_rows[row], field));
}

std::optional<std::string> BasketGrid::Edit(std::int32_t row, BasketField field, std::string_view typed) {
    const RecordId record = m_rows.BySerialNumber(row);
    if (m_runs.IsBusy() || record == kNoRecord) return "The row is no longer there.";
    if (auto why = WhyNot(record)) return why;
    if (typed == CellText(record, field)) return std::nullopt;
    // A copy: the host, asked about a scrip, may let an answer in, which changes the row.
    const sBasketOrderData before(m_rows[record].Texts(), 0);
    BasketTexts columns = before.Texts();
    CellJudge judge(m_session, m_form.Rules(m_view.Now()));
    auto refusal = m_questions.Alone([&](Pass pass) { return judge.JudgeCell(pass, columns, field, typed); });
    if (!refusal) return std::nullopt;
    if (*refusal) return std::move(*refusal);
    if (IsSame(before, columns)) return std::nullopt;
    m_history.Replace(record, columns);
    ShowChangedLast();
    return std::nullopt;
}

std::optional<std::string> BasketGrid::EditRejected(int number, std::string_view typed) {
    const auto line = std::ranges::find(m_rejected.lines, number, &RejectedLine::number);
    if (m_runs.IsBusy() || line == m_rejected.lines.end()) return "The line is no longer there.";
    BasketTexts columns;
    if (!SplitBasketLine(typed, columns)) return kInvalidFormat;
    CellJudge judge(m_session, m_form.Rules(m_view.Now()));
    auto refusal = m_questions.Alone([&](Pass pass) { return judge.Judge(pass, columns, number); });
    if (!refusal) return std::nullopt;
    if (*refusal) return std::move(*refusal);
    {
        const BasketHistory::Change change(m_history);
        m_history.Add(columns);
        m_history.RemoveRejected(static_cast<std::size_t>(line - m_rejected.lines.begin()));
    }
    ShowChangedLast();
    return std::nullopt;
}

void BasketGrid::ShowChangedLast() {
    m_runs.LetPlace(true);
    m_view.ShowStatus();
    m_view.ShowPanel();
    m_runs.KeepUnsentLast();
}

// One step for all of them.
template <class TypedOf>
void BasketGrid::EditAll(const char* what, const std::vector<RecordId>& rows, BasketField field,
                         TypedOf&& typedOf) {
    CellJudge judge(m_session, m_form.Rules(m_view.Now()));
    Outcome outcome;
    const bool isThere = m_questions.Alone([&](Pass pass) {
        const BasketHistory::Change change(m_history);
        m_view.List().BeginChanges();
        for (const RecordId row : rows) {
            const std::string before = CellText(row, field), typed = typedOf(before);
            if (typed == before) continue;
            if (m_rows.IsSent(row)) {
                ++outcome.sent;
                continue;
            }
            const sBasketOrderData copy(m_rows[row].Texts(), 0);
            BasketTexts columns = copy.Texts();
            auto refusal = judge.JudgeCell(pass, columns, field, typed);
            if (m_session.Ended()) break;
            if (!refusal && IsSame(copy, columns)) continue;
            if (!refusal)
                m_history.Replace(row, columns);
            else if (outcome.refused++ == 0)
                outcome.firstReason = std::move(*refusal);
            outcome.changed += refusal ? 0 : 1;
        }
        m_view.List().EndChanges();
    });
    if (!isThere) return;
    TellOutcome(what, outcome);
}

void BasketGrid::TellOutcome(const char* what, const Outcome& outcome) {
    if (outcome.changed > 0) ShowChangedLast();
    if (m_session.Ended() || outcome.sent + outcome.refused == 0) return;
    std::string text = Format("%s: %zu.\n", what, outcome.changed);
    if (outcome.sent) text += Format("Sent, and so left as they are: %zu.\n", outcome.sent);
    if (outcome.refused)
        text += Format("Refused: %zu, the first for \"%s\"\n", outcome.refused, outcome.firstReason.c_str());
    m_view.ShowLast(text);
}

void BasketGrid::FillDown(BasketField field) {
    std::vector<RecordId> rows = m_view.List().Selected();
    if (m_runs.IsBusy() || !IsEditable(field) || rows.size() < 2) return;
    std::string value = CellText(rows.front(), field);
    rows.erase(rows.begin());
    EditAll("Rows filled", rows, field, [&](const std::string&) { return value; });
}

std::vector<RecordId> BasketGrid::RowsToReplaceIn(const CellReplacement& replacement) const {
    const BasketList& list = m_view.List();
    if (replacement.isOfSelected) return list.Selected();
    std::vector<RecordId> rows;
    for (std::size_t row = 0; row < list.RowCount(); ++row)
        rows.push_back(list.RecordAt(row));
    return rows;
}

std::size_t BasketGrid::Matches(const CellReplacement& replacement) const {
    if (replacement.text.empty() || !IsEditable(replacement.field)) return 0;
    const auto holds = [&](RecordId row) {
        const std::string_view cell = m_cells.Text(m_rows[row], replacement.field);
        return replacement.isWhole ? cell == replacement.text : cell.find(replacement.text) != cell.npos;
    };
    return static_cast<std::size_t>(std::ranges::count_if(RowsToReplaceIn(replacement), holds));
}

std::string BasketGrid::MatchesText(const CellReplacement& replacement) const {
    const BasketList& list = m_view.List();
    const bool areHidden = !replacement.isOfSelected && list.ShownCount() < list.RowCount();
    return Format("%zu of %zu%s rows contain it%s.", Matches(replacement), RowsToReplaceIn(replacement).size(),
                  replacement.isOfSelected ? " selected" : "",
                  areHidden ? ", those that a filter hides among them" : "");
}

void BasketGrid::Replace(const CellReplacement& replacement) {
    const std::string_view text = replacement.text, by = replacement.by;
    if (m_runs.IsBusy() || text.empty() || !IsEditable(replacement.field)) return;
    EditAll("Rows changed", RowsToReplaceIn(replacement), replacement.field, [&](std::string cell) {
        if (replacement.isWhole) return cell == text ? std::string(by) : cell;
        for (std::size_t at = 0; (at = cell.find(text, at)) != cell.npos; at += by.size())
            cell.replace(at, text.size(), by);
        return cell;
    });
}

// Behind those of the file, so that each line is known by its own.
int BasketGrid::LastNumber() const {
    int last =
        m_rejected.lines.empty() ? 0 : std::ranges::max(m_rejected.lines, {}, &RejectedLine::number).number;
    const BasketList& list = m_view.List();
    for (std::size_t row = 0; row < list.RowCount(); ++row)
        last = std::max(last, m_rows.LineOf(list.RecordAt(row)));
    return last;
}

void BasketGrid::Paste(std::string_view cells) {
    if (m_runs.IsBusy()) return;
    CellJudge judge(m_session, m_form.Rules(m_view.Now()));
    std::vector<PastedLine> lines = LinesOfCells(cells, judge.Rules());
    if (lines.empty()) return;
    std::size_t rejected = 0;
    int number = LastNumber();
    const bool isThere = m_questions.Alone([&](Pass pass) {
        const BasketHistory::Change change(m_history);
        m_view.List().BeginChanges();
        for (PastedLine& line : lines) {
            ++number;
            BasketTexts columns;
            std::optional<std::string> refusal = std::move(line.refusal);
            // Of a line below headings the scrip's names are looked up, and become a part of its text.
            sBasketOrderData named;
            if (!refusal && !SplitBasketLine(line.text, columns)) refusal = kInvalidFormat;
            if (!refusal && line.namesScrip) {
                judge.LookUpScrip(pass, columns);
                named = sBasketOrderData(columns, 0);
                columns = named.Texts();
                line.text.clear();
                for (const BasketField field : kBasketColumns)
                    line.text.append(columns[field]).push_back(',');
            }
            if (!refusal) refusal = judge.Judge(pass, columns, number);
            if (m_session.Ended()) break;
            if (!refusal) {
                m_history.Add(columns);
                continue;
            }
            ++rejected;
            const std::string report = line.text + "\nfailed to load due to " + *refusal;
            m_history.Reject({number, std::move(line.text), std::move(*refusal), report});
        }
        m_view.List().EndChanges();
    });
    if (!isThere) return;
    ShowChangedLast();
    if (rejected > 0 && !m_session.Ended())
        m_view.ShowLast(Format("Lines pasted: %zu, rejected: %zu.", lines.size(), rejected));
}

bool BasketGrid::IsFaulty(RecordId row) const {
    switch (m_rows.State(row)) {
    case RowState::sent:
    case RowState::registered:
        return false;
    case RowState::notSent:
        return m_rows.StandsTwice(row);
    default:
        return true;
    }
}

std::optional<BasketFault> BasketGrid::NextFault(const BasketFault& from, bool back) const {
    const BasketList& list = m_view.List();
    const std::size_t lines = m_rejected.lines.size(), all = lines + list.RowCount();
    // Before the first, or where it stands.
    std::size_t at = back ? 0 : all - 1;
    if (from.line && *from.line < lines) at = *from.line;
    if (from.row != kNoRecord) at = lines + list.IndexOf(from.row);
    for (std::size_t step = 0; step < all; ++step) {
        at = (at + (back ? all - 1 : 1)) % all;
        if (at < lines) return BasketFault{at};
        if (const RecordId row = list.RecordAt(at - lines); IsFaulty(row)) return BasketFault{{}, row};
    }
    return std::nullopt;
}

} // namespace planfold
