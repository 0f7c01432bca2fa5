// The list's own side of the control: cells, colours, menus, keys and boxes over the model.
//
// Owner callbacks, menus and boxes may end the window and even the list itself; whoever calls one is held until
// it returns, and asks afterwards what is left.
#pragma once

#include "framework/MessageBoxes.h"
#include "framework/Subclass.h"
#include "host/korvexcontrols/ListDialogs.h"
#include "host/korvexcontrols/ListHeader.h"
#include "host/korvexcontrols/ListSync.h"
#include "host/korvexcontrols/model/Export.h"
#include "sdk/korvex/FilterListCtrl.h"

// Of a key, while a message of the keyboard or the mouse is handled.
inline bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

class CFilterListCtrl::Impl final : private korvex::CellSource, private framework::Subclass {
public:
    // Lives until Release, and as long as somebody holds it.
    static Impl* Make(CFilterListCtrl& face);

    bool Attach(const Args& args);
    // The list's object ends; its window may live on without it.
    void Release();
    std::shared_ptr<void> Hold() override { return m_self; }
    HWND Handle() const { return framework::Subclass::Handle(); }

    const korvex::ListModel& Model() const { return m_model; }
    void InsertFront(std::uint32_t record, KorvexArrival arrival);
    void Remove(std::uint32_t record);
    void RemoveAll();
    void Repaint(std::uint32_t record);
    void SelectOnly(std::uint32_t record);
    void Deselect(std::uint32_t record);
    void SetOwnerFilter(std::int32_t column, const char* text);
    void BeginChanges();
    void EndChanges();
    // It is called before the selection is asked for.
    void AdoptSelection();

    void AppendMenuEntries(HMENU menu) { AppendEntries(menu, false); }
    bool HandleCommand(std::uint32_t command);
    std::optional<LRESULT> HandleNotify(const NMHDR& notification);

private:
    using Operation = std::function<korvex::ListChange()>;
    struct Entry;

    void Cells(std::span<const std::uint32_t> records, std::int32_t column, std::string_view* texts) override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void OnGone() override;

    // Runs the operation on the model. The window follows before anything else reaches it: a stream of changes
    // costs it one step.
    void Apply(const Operation& operation);
    void CatchUp();
    // Runs an operation that changes filters or sort.
    void Rearrange(const Operation& operation);
    void Select(const std::function<void()>& operation);
    void TellShownRowsChanged();
    void NoteRepainted(const korvex::ListChange& change);

    std::string_view CellAt(int row, int column);
    LRESULT DrawRow(NMLVCUSTOMDRAW& draw);
    int FindTyped(const LVFINDINFOA& find, int start);
    std::optional<LRESULT> OnKey(WPARAM key);
    void OnMouseDown(POINT place);
    // The control itself would unselect row by row, and paint each.
    void DropLargeSelection();

    static std::span<const Entry> Entries();
    void AppendEntries(HMENU menu, bool ofColumnOnly);
    void ShowColumnMenu();
    korvex::ValueType TypeOf(std::int32_t column) const;
    std::optional<korvex::FilterInput> FilterByThisCell();
    std::vector<korvex::ExportColumn> ExportedColumns() const;
    void SortBy(bool descending);
    void Copy();
    void SelectAll();
    void OpenFind();
    void FindNext();
    void FindPrevious();
    bool Find(const std::string& text, bool forward);
    void FilterCell();
    void AskForFilter();
    void ClearColumnFilter();
    void ClearFilters();
    void SortAscending() { SortBy(false); }
    void SortDescending() { SortBy(true); }
    void SortNaturally();
    void Export();
    void ResetColumns() { m_header.Reset(); }

    CFilterListCtrl* m_face = nullptr;
    CListOwner* m_owner = nullptr;
    std::shared_ptr<Impl> m_self;
    korvex::ListModel m_model{*this};
    korvex::ListSync m_sync{m_model};
    korvex::ListHeader m_header;
    std::string m_name;
    std::uint32_t m_firstCommand = 0;
    std::vector<KorvexText> m_fetched;
    int m_changes = 0; // calls of BeginChanges that are open
    // These note what happened meanwhile; too many repainted records are all rows.
    bool m_repaintAll = false;
    bool m_unasked = false; // a row came that the user did not ask for
    std::vector<std::uint32_t> m_repainted;
    bool m_behind = false; // the window, with one of m_changes
    korvex::ListSync::Before m_before;
    // A menu is about the cell clicked last; one opened by keyboard is about the focused row.
    std::uint32_t m_clickedRecord = korvex::kNone;
    std::int32_t m_clickedColumn = 0;
    std::string m_searched;
    std::optional<korvex::FilterDialog> m_filterDialog;
    std::optional<korvex::FindDialog> m_findDialog;
    framework::MessageBoxes m_boxes{"Export"};
};
