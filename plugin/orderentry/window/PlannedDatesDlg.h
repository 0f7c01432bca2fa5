// The list of all planned dates of the order entry form, kept current while the form changes.
#pragma once

#include "framework/Dialog.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderentry/PlannedDates.h"

namespace planfold {

class CPlannedDatesDlg final : public framework::Dialog {
public:
    CPlannedDatesDlg(HINSTANCE module, const Session& session);
    ~CPlannedDatesDlg() override { Destroy(); }

    // Over its owner, in the owner's font size.
    void Open(HWND owner, const Plan& plan, int points);
    void SetPlan(const Plan& plan);

private:
    void OnInit() override;
    void OnLaidOut() override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    std::string Cell(int row, int column) const;
    framework::ReportList List() const;

    const Session& m_session;
    Plan m_plan;
};

} // namespace planfold
