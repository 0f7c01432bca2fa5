// The basket's list: the shared filter list over its rows.
#pragma once

#include "framework/Guard.h"
#include "plugin/basket/Basket.h"
#include "plugin/basket/BasketColumns.h"
#include "plugin/basket/BasketView.h"
#include "plugin/controls/window/ListWindows.h"

#include <functional>
#include <string>
#include <unordered_set>

namespace planfold {

class BasketListWindow final : public BasketList, private CListOwner {
public:
    BasketListWindow(const Basket& basket, std::function<void()> shownChanged)
        : m_basket(basket), m_rows(basket.Rows()), m_shownChanged(std::move(shownChanged)) {}

    // False when the system refuses. The rows of an earlier window are there again.
    bool Attach(HWND list);
    CFilterListCtrl& Control() { return m_list; }

    std::size_t RowCount() const override { return m_list.RowCount(); }
    std::size_t ShownCount() const override { return m_list.ShownCount(); }
    RecordId RecordAt(std::size_t row) const override {
        return m_list.RecordAt(static_cast<std::uint32_t>(row));
    }
    std::size_t IndexOf(RecordId record) const override { return m_list.IndexOf(record); }
    void InsertFront(RecordId record) override { m_list.InsertFront(record, kKorvexAsked); }
    void Repaint(RecordId record) override { m_list.Repaint(record); }
    void Remove(RecordId record) override { m_list.Remove(record); }
    void RemoveAll() override;
    void BeginChanges() override;
    void EndChanges() override;
    std::vector<RecordId> Selected() const override { return SelectedRecords(m_list); }
    RecordId FirstSelected() const override { return FirstSelectedRecord(m_list); }
    void RemoveSelected() override;
    // Selects the row alone and gives the list the focus. False: a filter hides it.
    [[nodiscard]] bool GoTo(RecordId record);

private:
    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override;
    void ShownRowsChanged(CFilterListCtrl*) noexcept override;

    const Basket& m_basket;
    const BasketRows& m_rows;
    std::function<void()> m_shownChanged;
    BasketCells m_cells;
    std::unordered_set<std::string> m_states; // in words, once for equal ones
    int m_changes = 0; // begun and not ended: what many rows do to what is shown is told once
    CFilterListCtrl m_list;
};

} // namespace planfold
