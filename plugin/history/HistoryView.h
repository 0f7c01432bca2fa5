// The order history's window as the code that decides sees it.
#pragma once

#include "plugin/history/HistoryRecord.h"
#include "plugin/messaging/Session.h"

#include <optional>

namespace planfold {

class HistoryView : public Notices {
public:
    // Makes the window where there is none, lists the records anew, record i in row i, and gives the first row
    // the focus.
    virtual void ListRecords() = 0;
    // A trade has told more of a record.
    virtual void OnRecordChanged() = 0;
    // Of the focused row; none without a window.
    virtual std::optional<std::size_t> FocusedRecord() const = 0;
    virtual void ShowDetails(const HistoryDetails& details) = 0;
    // In front, or hidden. Nothing without a window.
    virtual void Show(bool shown) = 0;

protected:
    ~HistoryView() = default;
};

} // namespace planfold
