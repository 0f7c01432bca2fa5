// The order entry window.
#pragma once

#include "framework/Colours.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/orderentry/OrderEntry.h"
#include "plugin/orderentry/window/PlannedDatesDlg.h"
#include "plugin/orderentry/window/SipFormControls.h"

namespace planfold {

class COrderEntryDlg final : public DialogWindowOf<OrderEntryView>, public CKeloRxNotifierBase {
public:
    COrderEntryDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes);
    ~COrderEntryDlg() override { Destroy(); }

    // Makes the window unless there is one, and brings it up.
    void Open();
    // The same, filled from a registration that is to be changed.
    void OpenForModify(const SipRegistration& registration);
    // Whether it is open for the registration of this number, and how that registration is now.
    bool Modifies(std::string_view number) const { return m_entry.Modifies(number); }
    void OnRegistrationChanged(const SipRegistration& registration);
    // Takes the window away and gives the control back, for good.
    void ShutDown();

    void OnBroadcast(void*, std::uint32_t, void*) noexcept override {}
    void OnResponse(void*, void* message, void*) noexcept override;

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void SetText(int control, std::string_view text) override;
    void SetDigitsOnly(int edit, bool on) override;
    bool MayAsk() override { return WaitForBox(Boxes()); }
    bool OnBoxGone() override {
        m_entry.OnBoxGone(LocalNow());
        return true;
    }
    bool Ask(Pass, std::string_view question) override {
        return Boxes().Ask(Dialog::Handle(), std::string(question));
    }
    void ShowSummary(std::string_view text, bool alarms) override;
    void ShowPlanSoon() override;
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }
    void OnInit() override;
    void OnLaidOut() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void OnButton(int button);
    void OnPlanChanged();
    void LoadPeriodIcons();

    Session& m_session;
    RxLink m_link;
    OrderEntry m_entry;
    SipFormControls m_controls;
    framework::ColorStatic m_summary;
    CPlannedDatesDlg m_plannedDates;
    framework::Icon m_periodIcons[2];
};

} // namespace planfold
