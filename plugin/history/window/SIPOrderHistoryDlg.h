// The order history's window: the orders of one registration in a list, the focused one in detail, all of them
// in a chart.
#pragma once

#include "framework/Dialog.h"
#include "framework/MessageBoxes.h"
#include "plugin/controls/window/ListFrame.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/history/HistoryChart.h"
#include "plugin/history/OrderHistory.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/resources/resource.h"
#include "sdk/korvex/FilterListCtrl.h"
#include "sdk/korvex/FlatSplitterWnd.h"

#include <map>

namespace planfold {

class CSIPOrderHistoryDlg final : public framework::Dialog,
                                  public CKeloRxNotifierBase,
                                  private HistoryView,
                                  private CListOwner {
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
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void LayOut(UINT dpi) override;
    void OnInit() override;
    void OnDestroyed() override { m_frame.Forget(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(Handle(), text); }
    void ListRecords() override;
    void OnRecordChanged() override;
    std::optional<std::size_t> FocusedRecord() const override;
    void ShowDetails(const HistoryDetails& details, const std::string& remarks) override;
    void Show(bool shown) override;

    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t) noexcept override { return kKorvexPlain; }
    void ShownRowsChanged(CFilterListCtrl*) noexcept override { FollowFocus(); }

    void RefreshChart();
    void Arrange();
    void RememberPlaces();
    void FollowFocus() noexcept;

    Session& m_session;
    framework::MessageBoxes& m_boxes;
    RxLink m_link;
    OrderHistory m_history;
    CFilterListCtrl m_list;
    CFlatSplitterWnd m_splitter; // between the list and what stands below
    RowMenu m_menu;
    HistoryChart m_chart;
    bool m_chartIsOld = false; // until it is painted
    ListFrame m_frame{*this, IDC_HISTORY_LIST};
    std::map<int, RECT> m_places; // of the controls in it
    bool m_listing = false;
};

} // namespace planfold
