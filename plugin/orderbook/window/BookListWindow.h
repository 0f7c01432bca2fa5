// One of the book's two lists: the shared filter list over the book's records.
#pragma once

#include "framework/Guard.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/orderbook/BookView.h"
#include "sdk/korvex/FilterListCtrl.h"

#include <functional>
#include <span>

namespace planfold {

class BookListWindow final : public BookList, private CListOwner {
public:
    struct Args {
        const char* name; // under which the user's columns are remembered
        std::span<const BookColumn> columns;
        unsigned firstCommand; // of a hundred for the list's own menu entries
    };

    BookListWindow(const OrderCache& records, const Args& args, std::function<void()> shownChanged)
        : m_records(records), m_args(args), m_shownChanged(std::move(shownChanged)) {}

    // False when the system refuses.
    bool Attach(HWND list);
    CFilterListCtrl& Control() { return m_list; }
    const CFilterListCtrl& Control() const { return m_list; }

    bool Contains(RecordId record) const override { return m_list.Contains(record); }
    void InsertFront(RecordId record, Arrival arrival) override {
        m_list.InsertFront(record, arrival == Arrival::listed ? kKorvexAsked : kKorvexUnasked);
    }
    void Repaint(RecordId record) override { m_list.Repaint(record); }
    void Remove(RecordId record) override { m_list.Remove(record); }
    void RemoveAll() override { m_list.RemoveAll(); }
    void FilterBy(int column, std::string_view text) override;
    std::vector<RecordId> Selected() const override { return SelectedRecords(m_list); }
    RecordId FirstSelected() const override { return FirstSelectedRecord(m_list); }
    bool IsSelected(RecordId record) const override { return m_list.IsSelected(record); }
    void Deselect(RecordId record) override { m_list.Deselect(record); }

private:
    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override;
    void ShownRowsChanged(CFilterListCtrl*) noexcept override { framework::Guard(m_shownChanged); }

    const OrderCache& m_records;
    Args m_args;
    std::function<void()> m_shownChanged;
    CFilterListCtrl m_list;
};

} // namespace planfold
