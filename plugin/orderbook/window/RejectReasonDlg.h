// Asks for the reason of a cancellation.
#pragma once

#include "framework/Dialog.h"
#include "plugin/messaging/Session.h"

#include <string>

namespace planfold {

class CRejectReasonDlg final : public framework::Dialog {
public:
    CRejectReasonDlg(HINSTANCE module, const Session& session);
    ~CRejectReasonDlg() override { Destroy(); }

    // Returns when it has been closed. What was typed counts only with OK.
    std::string Ask(HWND owner);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;

    const Session& m_session;
    std::string m_reason;
};

} // namespace planfold
