// The windows about requests that wait for their answers: the list of them, and the wait for them before the
// terminal is left. The identifiers are for the resource compiler too.
#pragma once

#define IDD_WAITING 12
#define IDD_LEAVING 13
#define IDC_WAITING_LIST 610
#define IDC_WITHDRAW 611
#define IDC_WITHDRAW_ALL 612
#define IDC_WAITING_NOTE 613
#define IDC_LEAVE_NOW 614

#ifndef RC_INVOKED

#include "framework/Dialog.h"
#include "framework/KeyboardHook.h"
#include "host/terminal/core/WaitingRequests.h"
#include "host/terminal/window/ServerLink.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace vesk {

// Lists the requests, and withdraws such as never left. It follows what becomes of them while it is open.
class WaitingWindow final : public framework::Dialog {
public:
    // `withdrawn` is told how many each press has withdrawn.
    WaitingWindow(ServerLink& server, std::function<void(std::size_t)> withdrawn)
        : Dialog(GetModuleHandleA(nullptr), IDD_WAITING), m_server(server), m_withdrawn(std::move(withdrawn)) {}

protected:
    void OnInit() override;
    void OnLaidOut() override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& header) override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    framework::ReportList List() const { return Item<framework::ReportList>(IDC_WAITING_LIST); }
    std::string Cell(int row, int column) const;
    std::vector<std::uint64_t> Selected() const;
    bool MayWithdraw(std::uint64_t number) const;
    void Refresh();
    void EnableButtons();
    void Withdraw(const std::vector<std::uint64_t>& numbers);

    framework::KeyboardHook m_keys{};
    ServerLink& m_server;
    const std::function<void(std::size_t)> m_withdrawn;
    std::vector<std::uint64_t> m_numbers{}; // of the rows
};

// Waits until all answers are there and told, the time is over, or the user will not wait.
class LeavingBox final : public framework::Dialog {
public:
    explicit LeavingBox(ServerLink& server);

protected:
    void OnInit() override;
    void OnClose() override {}
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void Tick();

    framework::KeyboardHook m_keys{};
    ServerLink& m_server;
    LeaveLimit m_limit;
};

} // namespace vesk

#endif
