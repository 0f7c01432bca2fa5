// How far a long run has come, with a button to stop it. It stands until the run ends, and leaves the keyboard
// to a window that can still be worked in.
#pragma once

#include "framework/Dialog.h"
#include "plugin/base/LongRun.h"
#include "plugin/messaging/Session.h"

namespace planfold {

class CRunProgressDlg final : public framework::Dialog {
public:
    // What the user may do in the owner meanwhile.
    enum class Owner { enabled, disabled };

    CRunProgressDlg(HINSTANCE module, const Session& session, LongRun& run, Owner owner);
    ~CRunProgressDlg() override { Destroy(); }

    // Opens while the run is under way, and closes after it.
    void Follow(HWND owner);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    bool TakesFocus() const override { return false; }
    void OnClose() override { m_run.Stop(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void ShowBeside();
    void ShowState();

    const Session& m_session;
    LongRun& m_run;
    Owner m_owner;
    ULONGLONG m_startedMs = 0;
};

} // namespace planfold
