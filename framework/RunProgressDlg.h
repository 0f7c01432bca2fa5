// How far a long run has come, with a button to stop it. It stands until the run ends, and leaves the keyboard
// to a window that can still be worked in. The module's resources hold its template, framework/RunProgress.rc.
#pragma once

#include "base/LongRun.h"
#include "framework/Dialog.h"

namespace framework {

class RunProgressDlg : public Dialog {
public:
    // What the user may do in the owner meanwhile.
    enum class Owner { enabled, disabled };

    // `caption` and `note`, which says how it is stopped, are literals.
    RunProgressDlg(HINSTANCE module, base::LongRun& run, Owner owner, const char* caption, const char* note);
    ~RunProgressDlg() override { Destroy(); }

    // Opens while the run is under way, and closes after it.
    void Follow(HWND owner);

private:
    void OnInit() override;
    bool TakesFocus() const override { return false; }
    void OnClose() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void ShowBeside();
    void ShowState();

    base::LongRun& m_run;
    const Owner m_owner;
    const char* const m_caption;
    const char* const m_note;
    ULONGLONG m_startedMs = 0;
};

} // namespace framework
