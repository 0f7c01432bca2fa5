#include "plugin/basket/BasketSaving.h"

#include "plugin/basket/BasketColumns.h"
#include "plugin/basket/BasketFile.h"

#include <algorithm>
#include <iterator>

namespace planfold {

void BasketSaving::Export() {
    if (m_runs.IsBusy()) return;
    if (m_view.List().RowCount() == 0) return m_view.ShowLast("No items in the list");
    const auto path =
        m_questions.Alone([&](Pass pass) { return m_view.AskExportPath(pass); }).value_or(std::nullopt);
    if (!path) return;
    std::string text;
    const BasketList& list = m_view.List();
    for (std::size_t row = 0; row < list.RowCount(); ++row)
        AppendBasketLine(m_rows[list.RecordAt(row)], text);
    if (m_view.WriteFileWhole(*path, BasketFileText(std::move(text))))
        m_view.ShowLast("Exported to File Successfully");
    else
        m_view.ShowLast(" Basket File Write Error: File Open Error");
}

void BasketSaving::SaveRejected() {
    if (!m_rejected.lines.empty()) Save([&] { return m_rejected.Text(); });
}

void BasketSaving::SaveResults() {
    Save([&] {
        std::string text;
        for (const BasketResult& result : m_outcome.Results())
            AppendBasketLine(m_rows[result.record], text);
        return BasketFileText(std::move(text));
    });
}

void BasketSaving::SaveReasons() {
    if (!m_rejected.lines.empty()) Save([&] { return RejectedTable(m_rejected.lines); });
}

void BasketSaving::SaveTable(bool resultsOnly) {
    if (m_view.List().RowCount() == 0) return m_view.ShowLast("No items in the list");
    Save([&] {
        std::vector<RecordId> records;
        const BasketList& list = m_view.List();
        if (resultsOnly)
            std::ranges::transform(m_outcome.Results(), std::back_inserter(records), &BasketResult::record);
        else
            for (std::size_t row = 0; row < list.RowCount(); ++row)
                records.push_back(list.RecordAt(row));
        BasketCells cells;
        std::string csv;
        for (const BasketColumn& column : kBasketListColumns)
            AppendCsvField(column.heading, column.field == kStateOfRow, csv);
        for (const RecordId record : records)
            for (const auto& [heading, width, field, type, align] : kBasketListColumns)
                AppendCsvField(field == kStateOfRow ? m_outcome.StateText(record)
                                                    : cells.Text(m_rows[record], field),
                               field == kStateOfRow, csv);
        return csv;
    });
}

void BasketSaving::Save(const std::function<std::string()>& text) {
    if (m_runs.IsBusy()) return;
    const auto path =
        m_questions.Alone([&](Pass pass) { return m_view.AskRejectsPath(pass); }).value_or(std::nullopt);
    if (path && !m_view.WriteFileWhole(*path, text()))
        m_view.ShowLast(" Basket File Write Error: File Open Error");
}

} // namespace planfold
