// What the windows of a period have in common: the choice of the period over a list of rows, in which a notice
// stands while it is empty, and a status bar.
#pragma once

#include "framework/Dialog.h"
#include "plugin/controls/window/FormKeys.h"
#include "plugin/controls/window/ListFrame.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/morning/RunReckoning.h"
#include "plugin/resources/resource.h"
#include "sdk/korvex/QVBrickBar.h"

#include <array>
#include <span>
#include <string>
#include <vector>

namespace planfold {

class CPeriodWindow : public framework::Dialog, private CListOwner {
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

    // The user has chosen it.
    virtual void ShowPeriod(const RunPeriod& period) = 0;
    // F5: what is chosen, as it is now.
    virtual void Refresh();
    // Valid until the rows are listed anew.
    virtual std::string_view Cell(std::uint32_t row, std::int32_t column) const = 0;
    virtual KorvexRowLook Look(std::uint32_t row) const = 0;
    virtual std::vector<MenuEntry> Entries() const = 0;
    // False when it is none of the window's own.
    virtual bool OnEntry(int command) = 0;
    // Enter or a double click; another key, which may be none of the window's.
    virtual void Activate(std::uint32_t row) = 0;
    virtual bool OnRowKey(int, std::uint32_t) { return false; }
    // The list takes the area, and whatever stands below it.
    virtual void PlaceList(const RECT& area);

    RunPeriod Chosen() const;
    // From the top, instead of what is listed. The list stays where it is scrolled to, when it can.
    void ListRows(std::span<const std::uint32_t> rows);
    std::uint32_t FocusedRow() const { return m_list.Focused(); }
    void SelectRow(std::uint32_t row) { m_list.SelectOnly(row); }
    void ShowTexts(const std::string& notice, std::array<std::string, 3> status);
    // The time of what is shown.
    void ShowAsOf();

    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void LayOut(UINT dpi) override;
    void OnInit() override;
    void OnDestroyed() override { m_frame.Forget(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void Arrange();

    Session& m_session;

private:
    // On the list's background.
    class ListNotice final : public framework::Subclass {
        std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    };

    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override { return Look(record); }
    void ShownRowsChanged(CFilterListCtrl*) noexcept override {}

    void Choose(int choice);
    void SetDate(int picker, Day day) const;
    Day DateOf(int picker) const;
    void ShowStatus();

    Args m_args;
    CFilterListCtrl m_list;
    ListNotice m_notice;
    CQVBrickBar m_statusBar;
    std::array<std::string, 3> m_status; // as it stands there
    std::array<CCalendarKeys, 2> m_calendars;
    ActivateOnEnter m_enter;
    RowMenu m_menu;
    ListFrame m_frame{*this, IDC_RUNS_LIST};
};

} // namespace planfold
