// The list's own side of the control: cells, colours, menus, keys and boxes over the model.
//
// Owner callbacks, menus and boxes may end the window and even the list itself; whoever calls one is held until
// it returns, and asks afterwards what is left.
#pragma once

#include "framework/MessageBoxes.h"
#include "framework/Pace.h"
#include "framework/Subclass.h"
#include "host/korvexcontrols/ColumnsDialog.h"
#include "host/korvexcontrols/ListDialogs.h"
#include "host/korvexcontrols/ListHeader.h"
#include "host/korvexcontrols/ListSync.h"
#include "host/korvexcontrols/model/ListOutput.h"
#include "host/korvexcontrols/model/ListSums.h"
#include "sdk/korvex/ListExtras.h"

#include <climits>

// Of a key, while a message of the keyboard or the mouse is handled.
inline bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

class CFilterListCtrl::Impl final : public KorvexListExtras,
                                    private korvex::CellSource,
                                    private framework::Subclass {
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

    void Watch(KorvexListWatcher* watcher) noexcept override { m_watcher = watcher; }
    void SetEmptyText(const char* text) noexcept override;
    void SumBy(std::int32_t side, std::int32_t amount, std::int32_t quantity) noexcept override;
    std::int32_t Sums(std::int32_t selected, KorvexSide* sides, std::int32_t capacity) noexcept override;
    void SetConditions(const KorvexCondition* conditions, std::int32_t count) noexcept override;
    const char* ViewName() noexcept override;
    void StretchLastText(std::int32_t on) noexcept override;
    void KeepWindow() noexcept override;

private:
    // Column changes are in force only after their notification.
    static constexpr UINT kSaveColumns = WM_APP + 1, kCatchUp = WM_APP + 2;
    static constexpr UINT_PTR kWorkTimer = 0x4B01, kCatchUpTimer = 0x4B02; // the control has others of its own
    using Operation = std::function<korvex::ListChange()>;
    struct Entry;
    struct Condition {
        std::string name;
        bool isSwitch, isPossible, holds;
    };
    // What numbers there is room for: the user must not take one that is cut for another.
    class NumberRoom {
    public:
        explicit NumberRoom(const Impl& list);
        bool Cuts(std::string_view cell, std::int32_t column);

    private:
        static constexpr int kNotAsked = INT_MIN;

        const Impl& m_list;
        const int m_digit;          // pixels
        std::vector<int> m_columns; // pixels
    };
    // A view that the user has made.
    struct View {
        std::string name, line;
    };

    void Cells(std::span<const std::uint32_t> records, std::int32_t column, std::string_view* texts) override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void OnGone() override;

    // Runs the operation on the model. The window follows before anything else reaches it, and soon: a stream
    // of changes costs it a few steps.
    void Apply(const Operation& operation, std::uint32_t record = korvex::kNone);
    void CatchUp();
    // Runs an operation that changes filters or sort.
    void Rearrange(const Operation& operation);
    void Select(const std::function<void()>& operation);
    void TellShownRowsChanged();
    void NoteRepainted(const korvex::ListChange& change);

    // The sums are made bit by bit, while nothing else waits.
    void WorkLater();
    void Work();
    void NoteSelection();
    void TellWatcher();
    // What the user sees of the rows is kept, and comes back.
    korvex::RowsState Seen() const;
    void KeepSeen();
    void See(const korvex::RowsState& state);
    void RestoreSeen();
    void HoldConditions(const korvex::RowsState& state);
    void ApplyConditions();
    korvex::RowFilters::Condition ConditionNow();
    void PaintEmptyText();
    std::string EmptyText() const;

    std::string_view CellAt(int row, int column);
    LRESULT DrawRow(NMLVCUSTOMDRAW& draw);
    int FindTyped(const LVFINDINFOA& find, int start);
    std::optional<LRESULT> OnKey(WPARAM key);
    void OnMouseDown(POINT place);
    // The control itself would unselect row by row, and paint each. What Shift extends stays, unless it is all
    // rows.
    void DropLargeSelection(bool extends);

    void RememberWindow() const;
    void ResetWindow() const;

    static std::span<const Entry> Entries();
    void AppendEntries(HMENU menu, bool ofColumnOnly);
    void AppendViews(HMENU menu);
    bool HandleViewCommand(std::uint32_t command);
    std::vector<View> KeptViews() const;
    void KeepView(std::size_t place, const View& view) const;
    void SaveView(const std::string& name);
    void AskForView();
    void DeleteView();
    void ShowAllRows();
    void OpenColumns();
    int FittingWidth(std::int32_t column);
    void AskForFilterByKey();
    korvex::FilterDialog::Column About(std::int32_t column);
    void UncoverFound(std::uint32_t row);
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
    void PutOut(const char* name, korvex::Notation notation, std::vector<std::uint32_t> records,
                korvex::ListOutput::Ready ready);
    void ResetColumns();

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
    framework::Pace m_pace{kCatchUp, kCatchUpTimer};
    korvex::ListSync::Before m_before;
    // A menu is about the cell clicked last; one opened by keyboard is about the focused row.
    std::uint32_t m_clickedRecord = korvex::kNone;
    std::int32_t m_clickedColumn = 0;
    bool m_columnIsChosen = false; // by a click
    std::string m_searched;
    std::uint32_t m_found = korvex::kNone; // the last hit, from which the search goes on
    KorvexListWatcher* m_watcher = nullptr;
    korvex::ListSums m_sums{m_model, *this};
    bool m_works = false; // the timer of the sums runs
    std::vector<Condition> m_conditions;
    korvex::RowsState m_wanted; // as kept; conditions may be told later
    std::string m_savedSeen, m_viewName, m_viewNames, m_emptyText, m_shownEmptyText;
    std::optional<NumberRoom> m_room;   // while it paints
    std::optional<SIZE> m_laidDownSize; // of the window, at USER_DEFAULT_SCREEN_DPI, when its size is kept
    std::optional<korvex::FilterDialog> m_filterDialog;
    std::optional<korvex::FindDialog> m_findDialog;
    std::optional<korvex::ColumnsDialog> m_columnsDialog;
    std::optional<korvex::ViewDialog> m_viewDialog;
    korvex::ListOutput m_output{m_model, *this};
    std::optional<korvex::OutputProgress> m_progress;
    framework::MessageBoxes m_boxes{"Export"};
};
