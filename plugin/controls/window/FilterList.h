// What the plug-in's lists have in common over the shared filter list.
#pragma once

#include "framework/Subclass.h"
#include "plugin/base/RecordId.h"
#include "plugin/controls/ListColumn.h"
#include "sdk/korvex/FilterListCtrl.h"

#include <span>
#include <vector>

namespace planfold {

// `Column` has a heading, a width, an alignment and a value type.
template <class Column>
std::vector<KorvexColumn> ListColumns(std::span<const Column> columns) {
    std::vector<KorvexColumn> result;
    for (const Column& column : columns)
        result.push_back({column.heading, column.width, column.align == Align::right, column.type});
    return result;
}

// The shown, selected records from the top.
std::vector<RecordId> SelectedRecords(const CFilterListCtrl& list);
RecordId FirstSelectedRecord(const CFilterListCtrl& list); // kNoRecord when none is

// Lets Enter reach a list in a dialog, so that it activates the row instead of pressing the default button.
class ActivateOnEnter final : public framework::Subclass {
private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
};

} // namespace planfold
