// One of the book's lists without its window: the model of the shared list over the book's records.
#pragma once

#include "host/korvexcontrols/model/ListModel.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/orderbook/BookView.h"

namespace planfold::test {

class ModelList final : public BookList, private korvex::CellSource {
public:
    korvex::ListModel& Model() { return m_model; }
    void Show(const OrderCache& records) { m_records = &records; }

    bool Contains(RecordId record) const override { return m_model.Contains(record); }
    void InsertFront(RecordId record, Arrival) override { m_model.InsertFront(record); }
    void Repaint(RecordId record) override { m_model.Repaint(record); }
    void Remove(RecordId record) override { m_model.Remove(record); }
    void RemoveAll() override { m_model.RemoveAll(); }
    void FilterBy(int column, std::string_view text) override {
        m_model.SetOwnerFilter(column, text.empty() ? nullptr : &text);
    }
    std::vector<RecordId> Selected() const override { return m_model.SelectedRecords(); }
    RecordId FirstSelected() const override {
        const auto first = m_model.SelectedRecords(1);
        return first.empty() ? kNoRecord : first.front();
    }
    std::vector<RecordId> RemoveSelected(std::span<const RecordId> records) override {
        std::vector<RecordId> removed;
        for (const RecordId record : records) {
            const std::uint32_t row = m_model.ShownRowOf(record);
            if (row == korvex::kNone || !m_model.Selection().Contains(row)) continue;
            m_model.Deselect(record);
            m_model.Remove(record);
            removed.push_back(record);
        }
        return removed;
    }

private:
    void Cells(std::span<const std::uint32_t> records, std::int32_t column, std::string_view* texts) override {
        const OrderField field = kBookColumns[column].field;
        for (const RecordId record : records)
            *texts++ = (*m_records)[record].Text(field);
    }

    const OrderCache* m_records = nullptr;
    korvex::ListModel m_model{*this};
};

} // namespace planfold::test
