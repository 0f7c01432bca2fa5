// The window of what became of the runs of a period.
#pragma once

#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/morning/PeriodRuns.h"
#include "plugin/morning/window/PeriodWindow.h"

#include <functional>
#include <optional>

namespace planfold {

class CPeriodRunsDlg final : public CPeriodWindow, public CKeloRxNotifierBase, private PeriodRunsView {
public:
    // The other windows: the order history of a registration number, and the placing again of runs that failed.
    struct Others {
        std::function<void(Pass, const std::string& number)> history;
        std::function<void(Pass, std::vector<std::string> numbers)> copy;
    };

    CPeriodRunsDlg(HINSTANCE module, Session& session, const OrderCache& records, Others others);
    ~CPeriodRunsDlg() override { Destroy(); }

    // Takes the window away and gives the control back, for good.
    void ShutDown();

    void OnBroadcast(void*, std::uint32_t, void*) noexcept override {}
    void OnResponse(void*, void* message, void*) noexcept override;

private:
    void OnDestroyed() override;
    bool OnCommand(const framework::Command& command) override;

    void ShowPeriod(const RunPeriod& period) override;
    void Refresh() override;
    std::string_view Cell(std::uint32_t row, std::int32_t column) const override;
    KorvexRowLook Look(std::uint32_t row) const override { return m_runs.Look(row); }
    std::vector<MenuEntry> Entries() const override;
    bool OnEntry(int command) override;
    void Activate(std::uint32_t row) override;
    bool OnRowKey(int key, std::uint32_t row) override;
    void CopyFailed();

    void ShowRows() override;
    void ShowRun() override { m_progress.Follow(Handle()); }
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }

    // Taken when it is needed for the first time.
    RxControl* Control();

    std::optional<RxLink> m_link;
    PeriodRuns m_runs;
    CRunProgressDlg m_progress;
    Others m_others;
    bool m_anew = false; // what is chosen next is asked for again
};

} // namespace planfold
