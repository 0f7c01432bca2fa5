// What the windows of a period have in common: the choice of the period over a list of rows.
#pragma once

#include "plugin/controls/window/FormKeys.h"
#include "plugin/controls/window/ListDialog.h"
#include "plugin/morning/RunReckoning.h"
#include "plugin/resources/resource.h"

namespace planfold {

class CPeriodWindow : public CListDialog {
public:
    // Makes the window unless there is one, and brings it up. A new one shows its first period.
    void BringUp();

protected:
    struct Args {
        const char* name; // under which the user's columns are remembered
        std::vector<KorvexColumn> columns;
        unsigned firstCommand;                 // of a hundred for the list's own menu entries
        std::span<const PeriodChoice> choices; // the last one is the range
        int firstChoice;
    };
    CPeriodWindow(HINSTANCE module, int resource, Session& session, Args args);

    // The user has chosen it, or whose plans are shown.
    virtual void ShowPeriod(const RunPeriod& period) = 0;
    // F5: what is chosen, as it is now.
    virtual void Refresh();
    // False when it is none of the window's own.
    virtual bool OnEntry(int command) = 0;
    // Enter or a double click; another key, which may be none of the window's.
    virtual void Activate(std::uint32_t row) = 0;
    virtual bool OnRowKey(int, std::uint32_t) { return false; }

    RunPeriod Chosen() const;
    // Without the plans of others, which the server may tell as well.
    bool MineOnly() const { return Item(IDC_RUNS_MINE).Send(BM_GETCHECK) == BST_CHECKED; }
    std::uint32_t FocusedRow() const { return List().Focused(); }
    // The time of what is shown.
    void ShowAsOf();

    void OnInit() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

private:
    void Choose(int choice);
    void SetDate(int picker, Day day) const;
    Day DateOf(int picker) const;

    const std::span<const PeriodChoice> m_choices;
    const int m_firstChoice;
    std::array<CCalendarKeys, 2> m_calendars;
    ActivateOnEnter m_enter;
};

} // namespace planfold
