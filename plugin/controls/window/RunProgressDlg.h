// The progress of the plug-in's own long runs.
#pragma once

#include "framework/RunProgressDlg.h"
#include "plugin/messaging/Session.h"

namespace planfold {

class CRunProgressDlg final : public framework::RunProgressDlg {
public:
    CRunProgressDlg(HINSTANCE module, const Session& session, base::LongRun& run, Owner owner)
        : RunProgressDlg(module, run, owner, "Planfold",
                         owner == Owner::enabled ? "Esc in the book stops it, and Alt+S here."
                                                 : "Esc or Alt+S stops it."),
          m_session(session) {}

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }

    const Session& m_session;
};

} // namespace planfold
