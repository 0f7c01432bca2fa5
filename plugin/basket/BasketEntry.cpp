#include "plugin/basket/BasketEntry.h"

#include "plugin/basket/BasketFile.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr std::string_view kAdd = "Add";
constexpr std::string_view kModify = "&Modify";

} // namespace

void BasketEntry::Begin() {
    LeaveModifyMode();
    m_rejected.corrected = 0;
}

bool BasketEntry::IsModifying() const {
    return m_view.Text(IDC_SUBMIT) == kModify;
}

void BasketEntry::LeaveModifyMode() {
    m_view.SetText(IDC_SUBMIT, kAdd);
}

// The selected row; of several, that which the form was filled from.
RecordId BasketEntry::RowToModify() const {
    const RecordId shown = m_rows.BySerialNumber(m_shownRow);
    const std::vector<RecordId> selected = m_view.List().Selected();
    return std::ranges::find(selected, shown) != selected.end() ? shown : m_view.List().FirstSelected();
}

std::string BasketEntry::NameOf(RecordId record) const {
    const sBasketOrderData& row = m_rows[record];
    return std::string(row.Text(BasketField::account)) + ' ' + std::string(row.Text(BasketField::symbol));
}

std::string BasketEntry::OtherRowQuestion(RecordId selected) const {
    return "The form was filled from the order for " + m_shownName + ", but the row for " + NameOf(selected)
           + " is selected.\n\nYes: replace the selected order by what the form shows.\nNo: change nothing.";
}

void BasketEntry::AddOrModify() {
    if (m_runs.IsBusy()) return;
    m_runs.LetPlace(true);
    FormOrder order;
    const auto read = m_questions.Alone([&](Pass pass) { return m_form.Read(pass, m_view.Now(), order); });
    if (!read) return;
    if (const auto& refusal = *read) {
        if (refusal->focus) m_view.Focus(refusal->focus);
        return m_view.ShowLast(refusal->text);
    }
    if (!m_questions.AskAboutUnknown({order.data.account}, "Take the order into the basket all the same?",
                                     m_addAgain))
        return;
    if (!IsModifying()) {
        TakeIn(order.Texts());
        m_view.ShowStatus();
        return m_runs.KeepUnsentLast();
    }
    RecordId selected = RowToModify();
    if (selected != kNoRecord && m_rows[selected].SerialNumber() != m_shownRow) {
        const std::int32_t serial = m_rows[selected].SerialNumber();
        if (!m_questions.Ask(OtherRowQuestion(selected), m_addAgain)) return;
        selected = m_rows.BySerialNumber(serial);
    }
    LeaveModifyMode();
    m_form.ClearAfterModify();
    if (selected == kNoRecord) return m_view.ShowLast("Order Not Found");
    m_history.Replace(selected, order.Texts());
    m_view.ShowStatus();
    m_runs.KeepUnsentLast();
}

void BasketEntry::Activate(RecordId record) {
    if (m_runs.IsBusy() || record == kNoRecord) return;
    // A copy: while the form fills the host may let an answer in, which changes the row.
    const sBasketOrderData row(m_rows[record].Texts(), 0);
    const auto notShown =
        m_questions.Alone([&](Pass pass) { return m_form.ShowRow(pass, row.Texts(), m_view.Now()); });
    if (!notShown) return;
    m_shownRow = m_rows[record].SerialNumber();
    m_shownName = NameOf(record);
    m_rejected.corrected = 0;
    // What the form does not show as it is must not be taken for the row, whichever it showed before.
    m_view.SetText(IDC_SUBMIT, *notShown == 0 ? kModify : kAdd);
    TellNotShown(*notShown);
}

void BasketEntry::TellNotShown(int fields) {
    for (; fields > 0; --fields)
        if (!m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, "Failed to Load"); })) return;
}

void BasketEntry::ActivateRejected(std::size_t index) {
    if (m_runs.IsBusy() || index >= m_rejected.lines.size()) return;
    const int number = m_rejected.lines[index].number;
    const std::string line = m_rejected.lines[index].text;
    BasketTexts columns;
    if (!SplitBasketLine(line, columns))
        return m_view.ShowLast("The line does not have the columns of a basket file.");
    const auto notShown =
        m_questions.Alone([&](Pass pass) { return m_form.Show(pass, columns, m_view.Now()); });
    if (!notShown) return;
    LeaveModifyMode();
    m_rejected.corrected = number;
    TellNotShown(*notShown);
}

// What the form was filled from is in the list then.
void BasketEntry::TakeIn(const BasketTexts& texts) {
    const BasketHistory::Change change(m_history);
    m_history.Add(texts);
    const auto corrected =
        std::ranges::find(m_rejected.lines, std::exchange(m_rejected.corrected, 0), &RejectedLine::number);
    if (corrected == m_rejected.lines.end()) return;
    m_history.RemoveRejected(static_cast<std::size_t>(corrected - m_rejected.lines.begin()));
    m_view.ShowPanel();
}

// Only what was submitted: under the box the user may have typed the next order.
void BasketEntry::AddAgain() {
    if (m_pressed == Press()) AddOrModify();
}

BasketEntry::Pressed BasketEntry::Press() const {
    const RecordId row = IsModifying() ? RowToModify() : kNoRecord;
    return {m_form.Shown(), row == kNoRecord ? 0 : m_rows[row].SerialNumber()};
}

} // namespace planfold
