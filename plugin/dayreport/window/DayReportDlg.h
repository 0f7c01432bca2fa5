// The window of a day's orders: the day, and its orders and changes in a list over what they come to.
#pragma once

#include "plugin/controls/window/FormKeys.h"
#include "plugin/controls/window/ListDialog.h"
#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/dayreport/DayReport.h"

namespace planfold {

class CDayReportDlg final : public CListDialog, private DayReportView {
public:
    CDayReportDlg(HINSTANCE module, Session& session, RecordFiles& files);
    ~CDayReportDlg() override { Destroy(); }

    // Makes the window unless there is one, for today, brings it up, and reads the day.
    void BringUp();
    // Takes the window away, for good.
    void ShutDown() { Destroy(); }

private:
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    void ShowRows(bool anew) override;
    void ShowRun() override { m_progress.Follow(Handle()); }
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }

    std::string_view Cell(std::uint32_t row, std::int32_t column) const override;
    KorvexRowLook Look(std::uint32_t row) const override { return m_report.Look(row); }

    void ShowDay(const LocalDateTime& day);
    bool OnKey(WPARAM key, LPARAM keyData);

    DayReport m_report;
    CRunProgressDlg m_progress;
    CCalendarKeys m_calendar;
};

} // namespace planfold
