// The registration book's dialog, inside its pane: two lists in tabs over a status bar with both counts.
#pragma once

#include "framework/Dialog.h"
#include "framework/Guard.h"
#include "framework/MessageBoxes.h"
#include "framework/Pace.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderbook/BookConditions.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/orderbook/BookStatus.h"
#include "plugin/orderbook/BookView.h"
#include "plugin/orderbook/OrderBook.h"
#include "sdk/korvex/FilterListCtrl.h"
#include "sdk/korvex/QVBrickBar.h"

#include <functional>
#include <span>
#include <string>

namespace planfold {

// One of the book's two lists: the shared filter list over the book's records.
class BookListWindow final : public BookList, private CListOwner, private KorvexListWatcher {
public:
    struct Args {
        const char* name; // under which the user's columns are remembered
        std::span<const BookColumn> columns;
        unsigned firstCommand;                     // of a hundred for the list's own menu entries
        std::span<const BookCondition> conditions; // in the menu, beside the user's own views
    };

    BookListWindow(const OrderCache& records, const Session& session, const Args& args,
                   std::function<void()> shownChanged)
        : m_records(records), m_session(session), m_args(args), m_shownChanged(std::move(shownChanged)) {}

    // False when the system refuses.
    bool Attach(HWND list);
    CFilterListCtrl& Control() { return m_list; }
    const CFilterListCtrl& Control() const { return m_list; }

    bool Contains(RecordId record) const override { return m_list.Contains(record); }
    void InsertFront(RecordId record, Arrival arrival) override {
        m_list.InsertFront(record, arrival == Arrival::listed ? kKorvexAsked : kKorvexUnasked);
    }
    void Repaint(RecordId record) override { m_list.Repaint(record); }
    void Remove(RecordId record) override { m_list.Remove(record); }
    void RemoveAll() override { m_list.RemoveAll(); }
    void FilterBy(int column, std::string_view text) override;
    // What the status line says of the list.
    BookStatus Status() const;
    void SetEmptyText(const char* text);
    // Conditions are about another day.
    void SetDay(const LocalDateTime& today);
    // The row that is to be acted upon: without a selected one that of the focus, which is selected then.
    void SelectFocused();
    std::vector<RecordId> Selected() const override { return SelectedRecords(m_list); }
    RecordId FirstSelected() const override { return FirstSelectedRecord(m_list); }
    std::vector<RecordId> RemoveSelected(std::span<const RecordId> records) override;

private:
    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override;
    void ShownRowsChanged(CFilterListCtrl*) noexcept override { framework::Guard(m_shownChanged); }
    void ListSaysMore(CFilterListCtrl*) noexcept override { framework::Guard(m_shownChanged); }
    std::int32_t Meets(std::uint32_t record, std::int32_t condition) noexcept override;
    std::optional<std::vector<SideSum>> Sums(bool ofSelected) const;

    const OrderCache& m_records;
    const Session& m_session;
    Args m_args;
    std::function<void()> m_shownChanged;
    LocalDateTime m_today;
    std::string m_client, m_emptyText;
    CFilterListCtrl m_list;
    KorvexListExtras* m_extras = nullptr;
    ActivateOnEnter m_enter;
};

// Asks for the reason of a cancellation.
class CRejectReasonDlg final : public framework::Dialog {
public:
    CRejectReasonDlg(HINSTANCE module, const Session& session);
    ~CRejectReasonDlg() override { Destroy(); }

    // Of so many orders. Returns when it has been closed. What was typed counts only with OK.
    std::string Ask(HWND owner, std::size_t count);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;

    const Session& m_session;
    std::string m_reason;
    std::size_t m_count = 0;
};

class COrderBookDlg final : public framework::Dialog, public BookView {
public:
    // From the host: LPARAM is a command's text.
    static constexpr UINT kCommandTextMessage = 1214;
    // The name of the registered list's and the status bar's settings.
    static constexpr char kName[] = "SIPRegistrationBook";

    // Opens the order entry window over a record, or tells it that the record has changed.
    struct OrderForm {
        std::function<void(Pass, const sOrderinfo&)> open;
        std::function<void(Pass, const sOrderinfo&)> tell;
    };
    // Opens the order history of a registration number.
    using History = std::function<void(Pass, const std::string&)>;
    // A command of the menu's that opens another window was chosen.
    using RecordCommand = std::function<void(Pass, int)>;

    COrderBookDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                  const BookControls& controls, OrderForm orderForm, History history,
                  RecordCommand recordCommand);
    ~COrderBookDlg() override { Destroy(); }

    OrderBook& Book() { return m_book; }
    std::vector<std::string> SelectedNumbers() const;
    // The list of the open page takes the keyboard.
    void FocusList();

    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(Handle(), text); }
    bool IsOpen() const override { return m_open; }
    bool MayAsk() override { return WaitForBox(m_boxes); }
    bool Ask(Pass, std::string_view question) override { return m_boxes.Ask(Handle(), std::string(question)); }
    std::string AskReason(Pass, std::size_t count) override { return m_reason.Ask(Handle(), count); }
    void OpenForModify(Pass pass, const sOrderinfo& record) override { m_orderForm.open(pass, record); }
    void TellChanged(Pass pass, const sOrderinfo& record) override { m_orderForm.tell(pass, record); }
    void ShowRun() override { m_progress.Follow(Handle()); }
    BookList& Registered() override { return m_registered; }
    BookList& Cancelled() override { return m_cancelled; }

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void LayOut(UINT dpi) override;
    bool OnBoxGone() override { return m_book.Actions().OnBoxGone(); }
    void OnInit() override;
    void OnClose() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    void Arrange();
    void ShowPage();
    int CurrentPage() const;
    bool OnKey(UINT_PTR list, int key);
    bool OnEscape(WPARAM key, LPARAM keyData);
    void PlaceParts();
    void ShowCounts();
    void ShowStatus();
    void OnTime();
    std::optional<bool> IsConnected() const;
    void OpenMenu(HWND list, POINT at);
    void OpenHistory();
    void Refresh();

    Session& m_session;
    framework::MessageBoxes& m_boxes;
    OrderBook m_book;
    BookListWindow m_registered;
    BookListWindow m_cancelled;
    CQVBrickBar m_statusBar;
    CRejectReasonDlg m_reason;
    CRunProgressDlg m_progress;
    RowMenu m_menu;
    OrderForm m_orderForm;
    History m_history;
    RecordCommand m_recordCommand;
    framework::Font m_font;
    ConnectionNews m_connection;
    BookFilling m_filling;
    framework::Pace m_statusPace;
    bool m_open = false;
};

} // namespace planfold
