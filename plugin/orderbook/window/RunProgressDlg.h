// How far a run over many rows has come, with a button to stop it.
#pragma once

#include "framework/Dialog.h"
#include "plugin/orderbook/BookActions.h"

namespace planfold {

class CRunProgressDlg final : public framework::Dialog {
public:
    CRunProgressDlg(HINSTANCE module, const Session& session, BookActions& actions);
    ~CRunProgressDlg() override { Destroy(); }

    // Opens while a run is under way, and closes after it.
    void Follow(HWND owner);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    void OnClose() override { m_actions.StopRun(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Show();

    const Session& m_session;
    BookActions& m_actions;
};

} // namespace planfold
