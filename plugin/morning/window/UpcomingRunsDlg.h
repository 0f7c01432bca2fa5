// The window of the runs to come: the clients with their plans over the money of the days.
#pragma once

#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/morning/UpcomingRuns.h"
#include "plugin/morning/window/PeriodWindow.h"
#include "sdk/korvex/FlatSplitterWnd.h"

#include <functional>

namespace planfold {

class CUpcomingRunsDlg final : public CPeriodWindow, private UpcomingView {
public:
    // Opens the order history of a registration number.
    using History = std::function<void(Pass, const std::string&)>;

    CUpcomingRunsDlg(HINSTANCE module, Session& session, const OrderCache& records, History history);
    ~CUpcomingRunsDlg() override { Destroy(); }

    // Takes the window away, for good.
    void ShutDown() { Destroy(); }

private:
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void PlaceList(const RECT& area) override;

    void ShowPeriod(const RunPeriod& period) override;
    std::string_view Cell(std::uint32_t row, std::int32_t column) const override;
    KorvexRowLook Look(std::uint32_t row) const override;
    std::vector<MenuEntry> Entries() const override;
    bool OnEntry(int command) override;
    void Activate(std::uint32_t row) override;
    bool OnRowKey(int key, std::uint32_t row) override;

    void ShowRows() override;
    void ShowRun() override { m_progress.Follow(Handle()); }
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }

    // The focus goes to `focus`.
    void SetOpen(std::uint32_t row, bool open, std::uint32_t focus);
    void OpenHistory(std::uint32_t row);

    UpcomingRuns m_runs;
    CFlatSplitterWnd m_splitter;
    CRunProgressDlg m_progress;
    History m_history;
};

} // namespace planfold
