#include "plugin/restricted/window/SetRestrictedDateDlg.h"

#include "framework/Guard.h"

namespace planfold {

CSetRestrictedDateDlg::CSetRestrictedDateDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes)
    : DialogWindow(module, IDD_RESTRICTED_DATES, boxes), m_session(session),
      m_link(session.lookup, kRxRequests, this, this), m_dates(session, *this, m_link.Control()),
      m_lists(session) {}

void CSetRestrictedDateDlg::ShutDown() {
    Destroy();
    m_link.Release();
}

void CSetRestrictedDateDlg::OnInit() {
    m_lists.Attach(Dialog::Handle());
    m_dates.Initialise(LocalNow());
}

bool CSetRestrictedDateDlg::OnCommand(const framework::Command& command) {
    if (command.notification != BN_CLICKED) return false;
    if (command.id == IDC_RESTRICT_SET) m_dates.Set();
    if (command.id == IDC_RESTRICT_GET) m_dates.Get();
    return command.id != IDCANCEL;
}

void CSetRestrictedDateDlg::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_dates.OnResponse(message);
    });
}

} // namespace planfold
