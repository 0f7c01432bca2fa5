#include "plugin/controls/window/FilterList.h"

namespace planfold {

std::vector<RecordId> SelectedRecords(const CFilterListCtrl& list) {
    std::vector<RecordId> records(list.SelectedCount());
    records.resize(list.Selected(records.data(), static_cast<std::uint32_t>(records.size())));
    return records;
}

RecordId FirstSelectedRecord(const CFilterListCtrl& list) {
    RecordId first = kNoRecord;
    list.Selected(&first, 1);
    return first;
}

std::optional<LRESULT> ActivateOnEnter::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* pending = reinterpret_cast<const MSG*>(lParam);
    if (message != WM_GETDLGCODE || !pending || pending->message != WM_KEYDOWN || pending->wParam != VK_RETURN)
        return std::nullopt;
    return Default(message, wParam, lParam) | DLGC_WANTMESSAGE;
}

} // namespace planfold
