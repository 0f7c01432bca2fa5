// The matches of a client search, in a list that hangs under its box. The list is virtual: it asks for the
// rows it shows.
#pragma once

#include "framework/CustomWindow.h"
#include "plugin/controls/ClientSearch.h"

namespace planfold {

class CResultsList : public framework::ReportList {
public:
    using ReportList::ReportList;

    void AddColumns() const;
    // For the DPI and font that the list is shown in.
    void SetSizes() const;
};

class CPopup final : public framework::CustomWindow {
public:
    CPopup(const Session& session, ClientSearch& search, HWND& box)
        : m_session(session), m_search(search), m_box(box) {}
    ~CPopup() override { Destroy(); }

    void ShowUnder(HWND box, int count, int selected);
    void Hide() { Self().Show(false); }
    void SelectRow(int row) const { m_list.SelectRow(row); }
    // The pop-up or the list in it.
    bool Holds(HWND window) const { return window && (window == Handle() || window == m_list.Handle()); }

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void OnDestroyed() override { m_list = CResultsList(); }
    void Make(HWND box);
    void FillCell(LVITEMA& item) const;
    LRESULT DrawRow(NMLVCUSTOMDRAW& draw) const;

    const Session& m_session;
    ClientSearch& m_search;
    HWND& m_box; // the box that the pop-up hangs under
    CResultsList m_list;
};

} // namespace planfold
