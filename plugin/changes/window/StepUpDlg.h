// Asks by how much amounts grow.
#pragma once

#include "framework/Dialog.h"
#include "framework/MessageBoxes.h"
#include "plugin/changes/StepUp.h"
#include "plugin/messaging/Session.h"

#include <cstddef>
#include <optional>

namespace planfold {

class CStepUpDlg final : public framework::Dialog {
public:
    CStepUpDlg(HINSTANCE module, const Session& session, framework::MessageBoxes& boxes);
    ~CStepUpDlg() override { Destroy(); }

    // Of so many registrations. Returns when it has been closed; there is none without OK.
    std::optional<StepUp> Ask(HWND owner, std::size_t count);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;

    const Session& m_session;
    framework::MessageBoxes& m_boxes;
    std::optional<StepUp> m_rule;
    std::size_t m_count = 0;
};

} // namespace planfold
