#include "plugin/orderbook/window/OrderBookDlg.h"

#include "framework/DialogLayout.h"
#include "framework/KeyboardHook.h"
#include "plugin/base/Text.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/dayreport/DayReport.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <string>
#include <utility>

namespace planfold {

namespace {

constexpr WPARAM kMostCharacters = 250;

} // namespace

CRejectReasonDlg::CRejectReasonDlg(HINSTANCE module, const Session& session)
    : Dialog(module, IDD_REJECT_REASON), m_session(session) {}

std::string CRejectReasonDlg::Ask(HWND owner, std::size_t count) {
    m_reason.clear();
    m_count = count;
    if (!HasWindow()) RunModal(owner);
    return std::exchange(m_reason, {});
}

void CRejectReasonDlg::OnInit() {
    Item(IDC_REJECT_REASON).Send(EM_LIMITTEXT, kMostCharacters);
    Item(IDC_REJECT_NOTE)
        .SetText(m_count == 1
                     ? std::string("This order will be cancelled, also when you press Cancel here")
                     : Format("These %zu orders will be cancelled, also when you press Cancel here", m_count));
}

bool CRejectReasonDlg::OnCommand(const framework::Command& command) {
    if (command.id != IDOK) return false;
    m_reason = Item(IDC_REJECT_REASON).Text();
    Destroy();
    return true;
}

namespace {

constexpr int kUpcomingRunsKey = 'U', kRunsOfPeriodKey = 'R', kCopyToBasketKey = 'B'; // with Ctrl
constexpr int kCountWidth = 90, kConnectionWidth = 170;                               // pixels at 96 DPI
constexpr int kStatusPart = 2, kConnectionPart = 3;                                   // behind both counts
constexpr UINT_PTR kSecond = 1, kBookStatusSoon = 2;
constexpr UINT kShowBookStatus = WM_APP + 1;
constexpr const wchar_t* kFace = L"MS Shell Dlg";

struct Page {
    const char* caption;
    int list;
};
constexpr Page kBookPages[] = {{"Registered Orders", IDC_REGISTERED_LIST},
                           {"Cancelled Orders", IDC_CANCELLED_LIST}};

struct CommandRow {
    int command;
    void (BookActions::*act)();
};
constexpr CommandRow kCommands[] = {
    {kCancelCommand, &BookActions::Cancel},
    {kModifyCommand, &BookActions::Modify},
    {kPauseCommand, &BookActions::Pause},
    {kResumeCommand, &BookActions::Resume},
    {kPauseSelectedCommand, &BookActions::PauseSelected},
    {kResumeSelectedCommand, &BookActions::ResumeSelected},
};

} // namespace

COrderBookDlg::COrderBookDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                             const BookControls& controls, OrderForm orderForm, History history,
                             RecordCommand recordCommand)
    : Dialog(module, IDD_ORDER_BOOK), m_session(session), m_boxes(boxes), m_book(session, *this, controls),
      m_registered(m_book.Records(), session,
                   {kName, kRegisteredColumns, FirstCommand(NumberedList::registeredOrders), BookConditions()},
                   [this] { ShowCounts(); }),
      m_cancelled(m_book.Records(), session,
                  {"SIPCancelledBook", kCancelledColumns, FirstCommand(NumberedList::cancelledOrders),
                   BookConditions().last(1)},
                  [this] { ShowCounts(); }),
      m_reason(module, session), m_progress(module, session, m_book.Runs(), CRunProgressDlg::Owner::enabled),
      m_orderForm(std::move(orderForm)), m_history(std::move(history)),
      m_recordCommand(std::move(recordCommand)), m_statusPace(kShowBookStatus, kBookStatusSoon) {}

void COrderBookDlg::OnInit() {
    m_open = true;
    for (const Page& page : kBookPages) {
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<char*>(page.caption);
        Item(IDC_BOOK_TABS)
            .Send(TCM_INSERTITEMA, static_cast<WPARAM>(&page - kBookPages), reinterpret_cast<LPARAM>(&item));
    }
    m_registered.Attach(Item(IDC_REGISTERED_LIST).Handle());
    m_cancelled.Attach(Item(IDC_CANCELLED_LIST).Handle());
    for (BookListWindow* list : {&m_registered, &m_cancelled})
        list->SetDay(LocalNow().Midnight());
    m_filling.Begin();
    if (!m_statusBar.Create(Handle(), IDC_BOOK_STATUS, kName)
        && !m_book.Life().Across([&](Pass pass) { ShowMessage(pass, "Status Bar Creation Failed"); }))
        return;
    LayOut(Self().Dpi());
    ShowPage();
    ShowCounts();
    SetTimer(Handle(), kSecond, 1000, nullptr);
    m_book.Open(LocalNow());
}

// The pane is what is closed.
void COrderBookDlg::OnClose() {
    framework::Window(GetParent(Handle())).Send(WM_CLOSE);
}

void COrderBookDlg::OnDestroyed() {
    m_open = false;
    m_statusPace.NoteGone();
    m_book.Actions().Reset();
    m_reason.Destroy();
    m_progress.Destroy();
}

void COrderBookDlg::LayOut(UINT dpi) {
    framework::Font font = framework::MakeFont(kFace, TemplateFontSize(), dpi);
    for (const int id : {IDC_BOOK_TABS, IDC_REGISTERED_LIST, IDC_CANCELLED_LIST, IDC_BOOK_STATUS})
        Item(id).SetFont(font.Get());
    m_font = std::move(font);
    Arrange();
}

void COrderBookDlg::PlaceParts() {
    const UINT dpi = Self().Dpi();
    const int width = framework::Scaled(kCountWidth, dpi);
    const int free = static_cast<int>(Self().ClientRect().right) - framework::Scaled(kConnectionWidth, dpi);
    const int edges[] = {width, 2 * width, std::max(3 * width, free), -1};
    m_statusBar.SetParts(edges, static_cast<int>(std::size(edges)));
}

// The tabs are a strip of their own height, the lists fill what it and the status bar leave.
void COrderBookDlg::Arrange() {
    const RECT client = Self().ClientRect();
    m_statusBar.Place();
    PlaceParts();
    RECT status = framework::Window(m_statusBar.Handle()).ClientRect();
    RECT strip{0, 0, client.right, client.bottom};
    Item(IDC_BOOK_TABS).Send(TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&strip));
    Item(IDC_BOOK_TABS).Move({0, 0, client.right, strip.top});
    for (const Page& page : kBookPages)
        Item(page.list).Move({0, strip.top, client.right, std::max(strip.top, client.bottom - status.bottom)});
}

int COrderBookDlg::CurrentPage() const {
    return static_cast<int>(Item(IDC_BOOK_TABS).Send(TCM_GETCURSEL));
}

void COrderBookDlg::ShowPage() {
    const int current = CurrentPage();
    const bool focused =
        GetFocus() == Item(IDC_REGISTERED_LIST).Handle() || GetFocus() == Item(IDC_CANCELLED_LIST).Handle();
    for (int i = 0; i < static_cast<int>(std::size(kBookPages)); ++i)
        if (i == current) Item(kBookPages[i].list).Show(true);
    if (focused) FocusList();
    for (int i = 0; i < static_cast<int>(std::size(kBookPages)); ++i)
        if (i != current) Item(kBookPages[i].list).Show(false);
}

void COrderBookDlg::FocusList() {
    const int page = CurrentPage();
    if (page >= 0) Item(kBookPages[page].list).Focus();
}

void COrderBookDlg::ShowCounts() {
    const CFilterListCtrl* lists[] = {&m_registered.Control(), &m_cancelled.Control()};
    for (int pane = 0; pane < static_cast<int>(std::size(lists)); ++pane)
        m_statusBar.SetText(pane, Format("%d", static_cast<int>(lists[pane]->ShownCount())).c_str());
    if (m_open) m_statusPace.Ask(Handle());
}

void COrderBookDlg::ShowStatus() {
    m_statusPace.NoteShown(Handle());
    BookStatus status = (CurrentPage() == 1 ? m_cancelled : m_registered).Status();
    status.loading = m_filling.IsUnderWay() && m_book.IsFilling();
    m_statusBar.SetText(kStatusPart, status.Text().c_str());
    m_statusBar.SetText(kConnectionPart, m_connection.Text().c_str());
    for (BookListWindow* list : {&m_registered, &m_cancelled})
        list->SetEmptyText(status.EmptyText());
}

std::optional<bool> COrderBookDlg::IsConnected() const {
    const auto ask = reinterpret_cast<sdk::fn::pu_is_connected*>(m_session.lookup("pu_is_connected"));
    return ask ? std::optional(ask() != 0) : std::nullopt;
}

void COrderBookDlg::OnTime() {
    const LocalDateTime now = LocalNow();
    m_filling.OnTime(m_book.Records().Size());
    m_connection.Hear(IsConnected(), Format("%02d:%02d", now.hour, now.minute));
    for (BookListWindow* list : {&m_registered, &m_cancelled})
        list->SetDay(now.Midnight());
    ShowStatus();
}

std::optional<LRESULT> COrderBookDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_statusPace.IsTime(message, wParam)) {
        ShowStatus();
        return 0;
    }
    switch (message) {
    case WM_SIZE:
        if (!m_open) return 0;
        Arrange();
        // It went with the frame that the pane was in before.
        m_progress.Follow(Handle());
        return 0;
    case framework::kOfferedKey:
        return OnEscape(wParam, lParam);
    case WM_TIMER:
        if (wParam != kSecond) return std::nullopt;
        OnTime();
        return 0;
    case WM_DESTROY:
        m_boxes.Close(Handle());
        m_menu.Close();
        return std::nullopt;
    case WM_CONTEXTMENU: {
        const HWND list = reinterpret_cast<HWND>(wParam);
        if (list != m_registered.Control().Handle() && list != m_cancelled.Control().Handle())
            return std::nullopt;
        OpenMenu(list, RowMenuPlace(list, lParam));
        return 0;
    }
    case kCommandTextMessage:
        if (const char* text = reinterpret_cast<const char*>(lParam);
            text && text == std::string_view("Cancel Order"))
            m_book.Actions().Cancel();
        return 0;
    default:
        return std::nullopt;
    }
}

void COrderBookDlg::OpenMenu(HWND list, POINT at) {
    const bool cancelled = list == m_cancelled.Control().Handle();
    CFilterListCtrl& control = (cancelled ? m_cancelled : m_registered).Control();
    const RecordId first = m_registered.FirstSelected();
    const auto ofRecord = RecordEntries(m_session);
    std::vector<MenuEntry> further =
        cancelled ? std::vector<MenuEntry>() : SeveralRowsMenu(control.SelectedCount());
    further.insert(further.end(), ofRecord.begin(), ofRecord.end());
    further.insert(further.end(), std::begin(kMorningMenu), std::end(kMorningMenu));
    if (!cancelled) further.insert(further.end(), std::begin(kChangesMenu), std::end(kChangesMenu));
    if (cancelled) return m_menu.Open(Handle(), at, control, CancelledMenu(), further);
    m_menu.Open(Handle(), at, control, RegisteredMenu(first == kNoRecord ? nullptr : &m_book.Records()[first]),
                further);
}

bool COrderBookDlg::OnCommand(const framework::Command& command) {
    const auto id = static_cast<std::uint32_t>(command.id);
    if (m_registered.Control().HandleCommand(id) || m_cancelled.Control().HandleCommand(id)) return true;
    if (command.id == kRefreshCommand) Refresh();
    if (command.id == kOrderHistoryCommand) OpenHistory();
    if (IsRecordCommand(command.id) || IsMorningCommand(command.id) || IsChangesCommand(command.id))
        Lifetime::Last([&](Pass pass) { m_recordCommand(pass, command.id); });
    for (const CommandRow& row : kCommands)
        if (row.command == command.id) (m_book.Actions().*row.act)();
    // Escape is no wish to be rid of the book.
    return true;
}

std::vector<std::string> COrderBookDlg::SelectedNumbers() const {
    std::vector<std::string> numbers;
    if (!m_open) return numbers;
    for (const RecordId record : (CurrentPage() == 1 ? m_cancelled : m_registered).Selected())
        numbers.emplace_back(m_book.Records()[record].Number());
    return numbers;
}

void COrderBookDlg::Refresh() {
    m_filling.Begin();
    m_book.Refresh();
}

// The history is that of the first selected row of the open page.
void COrderBookDlg::OpenHistory() {
    const RecordId first = (CurrentPage() == 1 ? m_cancelled : m_registered).FirstSelected();
    if (first != kNoRecord)
        Lifetime::Last([&](Pass pass) { m_history(pass, std::string(m_book.Records()[first].Number())); });
}

std::optional<LRESULT> COrderBookDlg::OnNotify(const NMHDR& notification) {
    if (!m_open) return std::nullopt;
    if (notification.idFrom == IDC_BOOK_TABS && notification.code == TCN_SELCHANGE) {
        ShowPage();
        ShowStatus();
    }
    if (notification.code == LVN_ITEMACTIVATE) {
        if (notification.idFrom != IDC_REGISTERED_LIST && notification.idFrom != IDC_CANCELLED_LIST)
            return std::nullopt;
        (CurrentPage() == 1 ? m_cancelled : m_registered).SelectFocused();
        OpenHistory();
        return 0;
    }
    if (notification.code == LVN_KEYDOWN
        && OnKey(notification.idFrom, reinterpret_cast<const NMLVKEYDOWN&>(notification).wVKey))
        return 0;
    LRESULT result = 0;
    for (BookListWindow* list : {&m_registered, &m_cancelled})
        if (list->Control().HandleNotify(&notification, &result)) return result;
    return std::nullopt;
}

// Stops the run that is under way. The one that closed a box may still be held down.
bool COrderBookDlg::OnEscape(WPARAM key, LPARAM keyData) {
    LongRun& run = m_book.Runs();
    if (key != VK_ESCAPE || !run.IsUnderWay() || !run.CanStop()) return false;
    if (!framework::IsRepeated(keyData)) run.Stop();
    return true;
}

// True when the key was the book's.
bool COrderBookDlg::OnKey(UINT_PTR list, int key) {
    if (key == VK_DELETE && list == IDC_REGISTERED_LIST) {
        m_book.Actions().Cancel();
        return true;
    }
    if (key == VK_F5) {
        Refresh();
        return true;
    }
    if (GetKeyState(VK_CONTROL) >= 0) return false;
    if (key == kUpcomingRunsKey || key == kRunsOfPeriodKey || key == kCopyToBasketKey) {
        OnCommand({key == kUpcomingRunsKey   ? kUpcomingRunsCommand
                   : key == kRunsOfPeriodKey ? kRunsOfPeriodCommand
                                             : kCopyToBasketCommand,
                   0, nullptr});
        return true;
    }
    if (key != VK_PRIOR && key != VK_NEXT) return false;
    Item(IDC_BOOK_TABS).Send(TCM_SETCURSEL, key == VK_NEXT ? 1 : 0);
    ShowPage();
    ShowStatus();
    return true;
}

} // namespace planfold
