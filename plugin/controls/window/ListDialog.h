// A window that shows rows in a list, mostly between a line of controls and a status bar. While there are none,
// a notice may stand on the list's background.
#pragma once

#include "framework/Dialog.h"
#include "plugin/controls/window/ListFrame.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/messaging/Session.h"
#include "sdk/korvex/QVBrickBar.h"

#include <array>
#include <span>
#include <string>
#include <vector>

namespace planfold {

class CListDialog : public framework::Dialog, private CListOwner {
protected:
    struct Parts {
        int icon;
        int list;           // identifiers
        int notice, status; // 0: none
        int button;         // beside a status bar: one that is kButtonUnits wide, in the font of all
        const char* name;   // under which what the user makes of list and window is remembered
        std::vector<KorvexColumn> columns;
        unsigned firstCommand;      // of a hundred for the list's own menu entries
        bool stretchesLast = false; // the last column, instead of the window
    };
    static constexpr int kButtonUnits = 54; // of the template, of which four are a letter

    CListDialog(HINSTANCE module, int resource, Session& session, Parts parts)
        : Dialog(module, resource), m_session(session), m_parts(std::move(parts)),
          m_frame(*this, m_parts.list) {}

    // Both are valid until the rows are listed anew.
    virtual std::string_view Cell(std::uint32_t row, std::int32_t column) const = 0;
    virtual KorvexRowLook Look(std::uint32_t) const { return kKorvexPlain; }
    // A filter or a sort has changed them.
    virtual void OnShownRows() {}
    // The rows' own entries of the menu.
    virtual std::vector<MenuEntry> Entries() const { return {}; }
    // The list takes the area, and whatever stands below it.
    virtual void PlaceList(const RECT& area) { Item(m_parts.list).Move(area); }

    // From the top, instead of what is listed. The list stays where it is scrolled to, when it can.
    void ListRows(std::span<const std::uint32_t> rows);
    void ListRows(std::size_t count);
    CFilterListCtrl& List() { return m_list; }
    const CFilterListCtrl& List() const { return m_list; }
    void ShowTexts(const std::string& notice, std::array<std::string, 3> status);
    void Arrange();

    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void LayOut(UINT dpi) override;
    void OnInit() override;
    void OnDestroyed() override { m_frame.Forget(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    Session& m_session;

private:
    class ListNotice final : public framework::Subclass {
        std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    };

    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override;
    void ShownRowsChanged(CFilterListCtrl*) noexcept override;
    void ShowStatus();

    const Parts m_parts;
    ListFrame m_frame;
    CFilterListCtrl m_list;
    ListNotice m_notice;
    CQVBrickBar m_statusBar;
    std::array<std::string, 3> m_status; // as it stands there
    RowMenu m_menu;
};

} // namespace planfold
