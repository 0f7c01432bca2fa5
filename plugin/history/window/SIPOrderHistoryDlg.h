// The order history's window: the orders of one registration in a list, the focused one in detail, all of them
// in a chart.
#pragma once

#include "framework/MessageBoxes.h"
#include "plugin/controls/window/ListDialog.h"
#include "plugin/history/HistoryChart.h"
#include "plugin/history/OrderHistory.h"
#include "plugin/messaging/RxLink.h"
#include "sdk/korvex/FlatSplitterWnd.h"

#include <map>

namespace planfold {

class CSIPOrderHistoryDlg final : public CListDialog, public CKeloRxNotifierBase, private HistoryView {
public:
    CSIPOrderHistoryDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes);
    ~CSIPOrderHistoryDlg() override { Destroy(); }

    // Asks for a registration's orders; the window comes with the answer.
    void Open(Pass pass, const std::string& registrationNumber) { m_history.Open(pass, registrationNumber); }
    // Takes the window away and gives the control back, for good.
    void ShutDown();

    void OnBroadcast(void*, std::uint32_t, void*) noexcept override {}
    void OnResponse(void*, void* message, void*) noexcept override;

private:
    void OnLaidOut() override { RememberPlaces(); }
    void OnInit() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(Handle(), text); }
    void ListRecords() override;
    void OnRecordChanged() override;
    std::optional<std::size_t> FocusedRecord() const override;
    void ShowDetails(const HistoryDetails& details, const std::string& remarks) override;
    void Show(bool shown) override;

    std::string_view Cell(std::uint32_t record, std::int32_t column) const override;
    void OnShownRows() override { FollowFocus(); }
    void PlaceList(const RECT& area) override;

    void RefreshChart();
    void RememberPlaces();
    void FollowFocus();

    framework::MessageBoxes& m_boxes;
    RxLink m_link;
    OrderHistory m_history;
    CFlatSplitterWnd m_splitter; // between the list and what stands below
    HistoryChart m_chart;
    bool m_chartIsOld = false;    // until it is painted
    std::map<int, RECT> m_places; // of the controls in it
    bool m_listing = false;
};

} // namespace planfold
