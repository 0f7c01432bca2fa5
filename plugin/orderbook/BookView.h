// The registration book's window as the code that decides sees it.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderbook/OrderCache.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// An answer to a query, or a streamed update that nobody asked for.
enum class Arrival { listed, streamed };

// One of the two lists. Row 0 is the newest.
class BookList {
public:
    virtual bool Contains(RecordId record) const = 0;
    // The row takes the focus.
    virtual void InsertFront(RecordId record, Arrival arrival) = 0;
    // The record's texts have changed. Nothing when it has no row.
    virtual void Repaint(RecordId record) = 0;
    virtual void Remove(RecordId record) = 0;
    virtual void RemoveAll() = 0;
    // Shows only the rows whose cell equals the text; an empty text shows all again.
    virtual void FilterBy(int column, std::string_view text) = 0;
    // The shown, selected rows from the top.
    virtual std::vector<RecordId> Selected() const = 0;
    virtual RecordId FirstSelected() const = 0; // kNoRecord when none is
    // Those of them that are selected, which go in one step; gives back which went.
    virtual std::vector<RecordId> RemoveSelected(std::span<const RecordId> records) = 0;

protected:
    ~BookList() = default;
};

class BookView : public Questions {
public:
    // False before the window is made and once it is gone.
    virtual bool IsOpen() const = 0;
    // The reason of so many cancellations; empty when its dialog is cancelled.
    virtual std::string AskReason(Pass pass, std::size_t count) = 0;
    virtual void OpenForModify(Pass pass, const sOrderinfo& record) = 0;
    // Whoever else shows the record may have to say so.
    virtual void TellChanged(Pass pass, const sOrderinfo& record) = 0;
    // A run over many rows has begun, gone on or ended.
    virtual void ShowRun() = 0;
    virtual BookList& Registered() = 0;
    virtual BookList& Cancelled() = 0;

protected:
    ~BookView() = default;
};

} // namespace planfold
