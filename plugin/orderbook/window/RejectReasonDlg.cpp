#include "plugin/orderbook/window/RejectReasonDlg.h"

#include "plugin/resources/resource.h"

#include <utility>

namespace planfold {

namespace {

constexpr WPARAM kMostCharacters = 250;

} // namespace

CRejectReasonDlg::CRejectReasonDlg(HINSTANCE module, const Session& session)
    : Dialog(module, IDD_REJECT_REASON), m_session(session) {}

std::string CRejectReasonDlg::Ask(HWND owner) {
    m_reason.clear();
    if (!HasWindow()) RunModal(owner);
    return std::exchange(m_reason, {});
}

void CRejectReasonDlg::OnInit() {
    Item(IDC_REJECT_REASON).Send(EM_LIMITTEXT, kMostCharacters);
}

bool CRejectReasonDlg::OnCommand(const framework::Command& command) {
    if (command.id != IDOK) return false;
    m_reason = Item(IDC_REJECT_REASON).Text();
    Destroy();
    return true;
}

} // namespace planfold
