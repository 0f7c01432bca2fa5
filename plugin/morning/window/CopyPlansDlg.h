// Asks from when on, and for how many runs, registrations are to be placed again.
#pragma once

#include "framework/Dialog.h"
#include "plugin/controls/window/FormKeys.h"
#include "plugin/morning/CopiedPlans.h"

#include <functional>
#include <string>
#include <vector>

namespace planfold {

class CCopyPlansDlg final : public framework::Dialog {
public:
    // Takes the orders into the basket.
    using Copy = std::function<void(Pass, std::vector<sSipOrderData>)>;

    CCopyPlansDlg(HINSTANCE module, Session& session, const OrderCache& records, Copy copy);
    ~CCopyPlansDlg() override { Destroy(); }

    // The registrations' numbers; of failed runs one for each.
    void Open(HWND owner, std::vector<std::string> numbers, bool areRuns);
    void ShutDown() { Destroy(); }

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    void OnLaidOut() override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    LocalDateTime Start() const;
    CopiedPeriods Periods() const;
    CopiedPlans Copies() const;
    // False when no order may start on the chosen day.
    bool ShowCopies();

    Session& m_session;
    const OrderCache& m_records;
    const Copy m_copy;
    CCalendarKeys m_calendar;
    std::vector<std::string> m_numbers;
    bool m_areRuns = false;
};

} // namespace planfold
