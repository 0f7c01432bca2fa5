// The window of a day's orders: the day, and its orders and changes in a list over what they come to.
#pragma once

#include "framework/Dialog.h"
#include "plugin/controls/window/FormKeys.h"
#include "plugin/controls/window/ListFrame.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/dayreport/DayReport.h"
#include "plugin/resources/resource.h"
#include "sdk/korvex/QVBrickBar.h"

namespace planfold {

class CDayReportDlg final : public framework::Dialog, private DayReportView, private CListOwner {
public:
    CDayReportDlg(HINSTANCE module, Session& session, RecordFiles& files);
    ~CDayReportDlg() override { Destroy(); }

    // Makes the window unless there is one, for today, brings it up, and reads the day.
    void BringUp();
    // Takes the window away, for good.
    void ShutDown() { Destroy(); }

private:
    // On the list's background.
    class ListNotice final : public framework::Subclass {
        std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    };

    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void LayOut(UINT dpi) override;
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    void ShowRows(bool anew) override;
    void ShowRun() override { m_progress.Follow(Handle()); }
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }

    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override;
    void ShownRowsChanged(CFilterListCtrl*) noexcept override {}

    void ShowDay(const LocalDateTime& day);
    bool OnKey(WPARAM key, LPARAM keyData);
    void Arrange();
    void ShowStatus();

    Session& m_session;
    DayReport m_report;
    CFilterListCtrl m_list;
    ListNotice m_notice;
    CQVBrickBar m_statusBar;
    std::array<std::string, 3> m_status; // as it stands there
    CRunProgressDlg m_progress;
    CCalendarKeys m_calendar;
    RowMenu m_menu;
    ListFrame m_frame{*this, IDC_DAY_LIST};
};

} // namespace planfold
