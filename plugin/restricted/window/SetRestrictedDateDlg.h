// The window in which days without instalments are set and read back.
#pragma once

#include "plugin/controls/window/DialogWindow.h"
#include "plugin/controls/window/FormKeys.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/resources/resource.h"
#include "plugin/restricted/RestrictedDates.h"

namespace planfold {

class CSetRestrictedDateDlg final : public DialogWindow, public CKeloRxNotifierBase {
public:
    CSetRestrictedDateDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes);
    ~CSetRestrictedDateDlg() override { Destroy(); }

    // Makes the window unless there is one, and brings it up.
    void Open() { BringUp(*this, m_session); }
    // Takes the window away and gives the control back, for good.
    void ShutDown();

    void OnBroadcast(void*, std::uint32_t, void*) noexcept override {}
    void OnResponse(void*, void* message, void*) noexcept override;

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    void OnLaidOut() override { SetCaptionIcon(IDI_CALENDAR); }
    bool OnCommand(const framework::Command& command) override;

    Session& m_session;
    RxLink m_link;
    RestrictedDates m_dates;
    TypeAheadCombos m_lists;
};

} // namespace planfold
