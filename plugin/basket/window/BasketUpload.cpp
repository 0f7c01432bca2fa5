#include "plugin/basket/window/BasketUpload.h"

#include "framework/Files.h"
#include "framework/Guard.h"
#include "plugin/base/Settings.h"
#include "plugin/dayreport/DayReport.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr int kDeleteCommand = 25002;
constexpr UINT kDeleteHotKeyMessage = WM_USER + Basket::kDeleteHotKey;
constexpr MenuEntry kRowMenu[] = {{"Delete\tDel", kDeleteCommand}};
constexpr int kPlaceSelectedCommand = 25006;
constexpr int kPlaceUnsentCommand = 25007;
constexpr int kPlaceRefusedCommand = 25008;
constexpr int kImportCommand = 25028;

struct ListKey {
    WORD letter; // with Ctrl, in the list
    int command;
};
constexpr ListKey kListKeys[] = {{'P', kPlaceSelectedCommand},
                                 {'U', kPlaceUnsentCommand},
                                 {'R', kPlaceRefusedCommand},
                                 {'I', kImportCommand}};
constexpr UINT kShowStatus = WM_APP + 1;
constexpr UINT_PTR kStatusSoon = 2;

// The rows' share of the room that they have with the rejected lines, of a hundred; least heights in pixels at
// 96 DPI.
constexpr int kRowsShare = 60;
constexpr int kLeastRows = 60;
constexpr int kLeastRejected = 80;

constexpr framework::FileQuestion kLoadQuestion{
    "All Files (*.*)|*.*|CSV Files(*.csv)|*.csv; *.csv|Text Documents(*.txt)|*.txt; *.txt||", "txt"};
constexpr framework::FileQuestion kExportQuestion{
    "All Files (*.*)|*.*|CSV Files(*.csv)|*.csv; *.csv|Text Documents(*.txt)|*.txt; *.txt|"
    "EXCEL Files(*.xls)|*.xls; *.xls||",
    "csv"};

struct Action {
    int command;
    void (*act)(Basket& basket);
};
constexpr Action kActions[] = {
    {IDC_SUBMIT, [](Basket& basket) { basket.Entry().AddOrModify(); }},
    {IDC_BASKET_LOAD, [](Basket& basket) { basket.Runs().Load(); }},
    {IDC_BASKET_EXPORT, [](Basket& basket) { basket.Saving().Export(); }},
    {IDC_BASKET_PLACE, [](Basket& basket) { basket.Runs().Place(); }},
    {kDeleteCommand, [](Basket& basket) { basket.Delete(); }},
    {BasketEditing::kSaveTableCommand, [](Basket& basket) { basket.Saving().SaveTable(false); }},
    {kImportCommand, [](Basket& basket) { basket.Runs().Import(); }},
    {kPlaceSelectedCommand, [](Basket& basket) { basket.Runs().Place(BasketRuns::Placed::selected); }},
    {kPlaceUnsentCommand, [](Basket& basket) { basket.Runs().Place(BasketRuns::Placed::unsent); }},
    {kPlaceRefusedCommand, [](Basket& basket) { basket.Runs().Place(BasketRuns::Placed::refused); }},
};

} // namespace

CBasketUpload::CBasketUpload(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                             RecordCommand recordCommand)
    : DialogWindowOf(module, IDD_BASKET, boxes), m_session(session),
      m_link(session.lookup, kRxRequests, this, this), m_unsent(session),
      m_basket(session, *this, m_link.Control()), m_list(m_basket, [this] { ShowStatusSoon(); }),
      m_panel(*this, m_basket), m_editing(module, *this, session, m_basket, m_list, m_panel),
      m_check(module, session), m_statusPace(kShowStatus, kStatusSoon),
      m_progress(module, session, m_basket.Runs(), CRunProgressDlg::Owner::disabled),
      m_import(module, session, boxes), m_controls(*this, session, m_basket.Life()),
      m_recordCommand(std::move(recordCommand)) {}

void CBasketUpload::Open() {
    BringUp(*this, m_session);
    if (HasWindow()) m_basket.Runs().OfferUnsent();
}

void CBasketUpload::Add(Pass pass, std::vector<sSipOrderData> orders) {
    const std::size_t count = orders.size(), added = m_basket.Coming().Add(pass, std::move(orders));
    if (added < count && !m_session.Ended())
        ShowLast(
            Format("%zu of %zu orders are not in the basket: the terminal does not know their scrip, or the "
                   "basket is busy.",
                   count - added, count));
}

void CBasketUpload::ShutDown() {
    Destroy();
    m_link.Release();
    m_unsent.Release();
}

void CBasketUpload::OnInit() {
    m_controls.FilterValue(true);
    if (!m_basket.Life().Across([&](Pass pass) { m_controls.SetUp(pass, "Client_Search"); })) return;
    m_list.Attach(Item(IDC_BASKET_LIST).Handle());
    m_enter.Attach(Item(IDC_BASKET_LIST).Handle());
    m_panel.Attach();
    m_splitter.Create({Dialog::Handle(), Item(IDC_BASKET_LIST).Handle(), IDC_BASKET_SPLITTER, "SIPBasket",
                       kRowsShare, kLeastRows, kLeastRejected});
    m_statusBar.Create(Dialog::Handle(), IDC_BASKET_STATUS, "SIPBasket");
    if (!m_basket.Life().Across([&](Pass) { LayOut(Self().Dpi()); })) return;
    ShowAllColumns(Dialog::Handle(), Item(IDC_BASKET_LIST).Handle());
    KeepWindow(m_list.Control());
    m_basket.Initialise(SipFormControls::CustomProducts());
}

void CBasketUpload::OnDestroyed() {
    m_basket.OnClosed();
    m_import.Destroy();
    m_progress.Destroy();
    m_check.Destroy();
    m_editing.Destroy();
    m_frame.Forget();
}

RECT CBasketUpload::PlaceOf(int control) const {
    RECT place{};
    GetWindowRect(Item(control).Handle(), &place);
    MapWindowPoints(nullptr, Dialog::Handle(), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void CBasketUpload::LayOut(UINT dpi) {
    m_frame.Renew([&] {
        DialogWindowOf::LayOut(dpi);
        SetCaptionIcon(IDI_REPEAT);
        m_listTop = PlaceOf(IDC_BASKET_LIST).top;
        m_panel.FollowDpi();
    });
    Item(IDC_BASKET_STATUS).SetFont(reinterpret_cast<HFONT>(Item(IDC_SUBMIT).Send(WM_GETFONT)));
    Arrange();
    ShowStatus();
    m_controls.OnLaidOut();
}

// The lists take what the form above and the status line below leave.
void CBasketUpload::Arrange() {
    const RECT client = Self().ClientRect();
    m_statusBar.Place();
    const LONG letter = LetterWidth();
    const LONG margin = letter * 9 / 4;
    const LONG status = framework::Window(m_statusBar.Handle()).ClientRect().bottom;
    RECT rest{margin, m_listTop, client.right - margin, client.bottom - status - margin / 2};
    rest.bottom = std::max(rest.top, rest.bottom);
    // It belongs to the rows below, and ends where they do.
    RECT button = PlaceOf(IDC_BASKET_PLACE);
    OffsetRect(&button, rest.right - button.right, 0);
    Item(IDC_BASKET_PLACE).Move(button);
    m_splitter.Place(rest);
    Item(IDC_BASKET_SPLITTER).Show(m_panel.IsShown());
    if (m_panel.IsShown()) {
        RECT lines = m_splitter.Second();
        lines.top += margin / 3;
        m_panel.Arrange(lines);
        rest = m_splitter.First();
    }
    Item(IDC_BASKET_LIST).Move(rest);
}

std::optional<LRESULT> CBasketUpload::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_statusPace.IsTime(message, wParam)) {
        m_statusPace.NoteShown(Dialog::Handle());
        ShowStatus();
        ShowPanel();
        return 0;
    }
    switch (message) {
    case WM_MOVE:
        m_controls.OnMoved();
        return std::nullopt;
    case WM_SIZE:
        m_editing.Close();
        if (m_frame.HasRoom()) Arrange();
        return std::nullopt;
    case WM_GETMINMAXINFO:
        m_frame.SetLeastSize(lParam);
        return 0;
    case WM_DESTROY:
        m_statusPace.NoteGone();
        Boxes().Close(Dialog::Handle());
        m_editing.Close();
        m_menu.Close();
        m_panel.CloseMenu();
        return std::nullopt;
    case WM_CONTEXTMENU:
        OnContextMenu(reinterpret_cast<HWND>(wParam), lParam);
        return 0;
    case kDeleteHotKeyMessage:
        if (HotKeyIsForRows()) m_basket.Delete();
        return 0;
    default:
        return std::nullopt;
    }
}

// The host sends it whatever has the focus. In an edit it is about the text; elsewhere beside the list it is no
// key of the rows, but may be a command of the host's.
bool CBasketUpload::HotKeyIsForRows() const {
    const HWND focus = GetFocus();
    if (focus == Item(IDC_BASKET_LIST).Handle() || !IsChild(Dialog::Handle(), focus)) return true;
    const bool isEdit = (framework::Window(focus).Send(WM_GETDLGCODE) & DLGC_HASSETSEL) != 0;
    return !isEdit && GetKeyState(VK_DELETE) >= 0;
}

void CBasketUpload::OnContextMenu(HWND list, LPARAM position) {
    if (IsOnHeadings(list, position)) return;
    const BasketRows& rows = m_basket.Rows();
    const auto [dayReport, compare] = RecordEntries(m_session);
    std::vector<MenuEntry> further{
        {"Place Selected\tCtrl+P", kPlaceSelectedCommand, m_list.FirstSelected() == kNoRecord},
        {"Place Unsent\tCtrl+U", kPlaceUnsentCommand, m_list.RowCount() == rows.SentCount()},
        {"Place Refused Again\tCtrl+R", kPlaceRefusedCommand, rows.Count(RowState::refused) == 0},
        {nullptr, 0},
        {"Import...\tCtrl+I", kImportCommand, m_basket.Runs().IsBusy()},
        {nullptr, 0},
    };
    const std::array editing = m_editing.MenuEntries();
    further.insert(further.end(), editing.begin(), editing.end());
    further.insert(further.end(), {{nullptr, 0}, dayReport, compare});
    if (list == Item(IDC_BASKET_LIST).Handle())
        m_menu.Open(Dialog::Handle(), RowMenuPlace(list, position), m_list.Control(), kRowMenu, further);
    else if (list == Item(IDC_REJECTED_LIST).Handle())
        m_panel.OpenMenu(position);
}

bool CBasketUpload::OnCommand(const framework::Command& command) {
    m_controls.OnCommand(command);
    if (command.notification == BN_CLICKED) {
        OnButton(command.id);
        return command.id != IDCANCEL;
    }
    if (command.notification == CBN_SELCHANGE) m_basket.Form().OnChosen(command.id);
    return false;
}

// A button's click or a menu's choice.
void CBasketUpload::OnButton(int button) {
    if (m_list.Control().HandleCommand(static_cast<std::uint32_t>(button)) || m_panel.HandleCommand(button)
        || m_editing.HandleCommand(button))
        return;
    if (button == IDC_BASKET_CHECK) return ShowCheck();
    for (const auto& [command, act] : kActions)
        if (command == button) return act(m_basket);
    if (IsRecordCommand(button)) return Lifetime::Last([&](Pass pass) { m_recordCommand(pass, button); });
    const bool onResults = m_panel.Shown() == BasketPanel::Page::results;
    if (button == IDC_REJECTED_SAVE || button == BasketPanel::kSaveCommand)
        return onResults ? m_basket.Saving().SaveResults() : m_basket.Saving().SaveRejected();
    if (button == BasketPanel::kSaveReasonsCommand)
        return onResults ? m_basket.Saving().SaveTable(true) : m_basket.Saving().SaveReasons();
    if (button != BasketPanel::kOpenCommand) return;
    if (!onResults) return m_basket.Entry().ActivateRejected(static_cast<std::size_t>(m_panel.FirstSelected()));
    const RecordId row = m_panel.RowOf(m_panel.FirstSelected());
    if (row != kNoRecord && !m_list.GoTo(row)) ShowLast("A filter of the list hides this row.");
}

std::optional<LRESULT> CBasketUpload::OnNotify(const NMHDR& notification) {
    m_controls.OnNotify(notification);
    if (notification.code == kKorvexSplitterMoved) {
        // A control that moves onto another would take its picture along.
        const framework::RedrawHold hold(Dialog::Handle());
        Arrange();
        return 0;
    }
    if (m_editing.HandleNotify(notification)) return 0;
    if (notification.idFrom == IDC_REJECTED_LIST) {
        if (notification.code == LVN_ITEMACTIVATE) OnButton(BasketPanel::kOpenCommand);
        return m_panel.HandleNotify(notification);
    }
    if (notification.idFrom == IDC_BASKET_LIST)
        if (const auto answer = OnListNotify(notification)) return answer;
    LRESULT result = 0;
    if (m_list.Control().HandleNotify(&notification, &result)) return result;
    return std::nullopt;
}

std::optional<LRESULT> CBasketUpload::OnListNotify(const NMHDR& notification) {
    if (notification.code == LVN_ITEMACTIVATE) {
        CFilterListCtrl& list = m_list.Control();
        // A new row has the focus alone; what is modified is the selected row.
        if (m_list.FirstSelected() == kNoRecord && list.Focused() != kNoRecord) list.SelectOnly(list.Focused());
        m_basket.Entry().Activate(m_list.FirstSelected());
        return 0;
    }
    if (notification.code != LVN_KEYDOWN) return std::nullopt;
    const WORD pressed = reinterpret_cast<const NMLVKEYDOWN&>(notification).wVKey;
    for (const auto& [letter, command] : kListKeys)
        if (pressed == letter && GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_SHIFT) >= 0) {
            OnButton(command);
            return 0;
        }
    if (pressed != VK_DELETE || m_basket.HostOwnsDeleteKey()) return std::nullopt;
    m_basket.Delete();
    return 0;
}

void CBasketUpload::SetText(int control, std::string_view text) {
    // What the user did not type is not searched for.
    if (control == IDC_CLIENT_SEARCH)
        m_controls.SetClient(text);
    else
        DialogWindowOf::SetText(control, text);
}

Choice CBasketUpload::Choose(Pass, std::string_view question) {
    const int answer = Boxes().AskOrCancel(Dialog::Handle(), std::string(question));
    return answer == IDYES ? Choice::yes : answer == IDNO ? Choice::no : Choice::cancel;
}

std::optional<std::string> CBasketUpload::AskLoadPath(Pass) {
    return framework::AskForFileToRead(Dialog::Handle(), kLoadQuestion);
}

std::optional<std::string> CBasketUpload::AskExportPath(Pass) {
    return framework::AskForFileToWrite(Dialog::Handle(), kExportQuestion, "BasketOrderSip..csv");
}

std::optional<std::string> CBasketUpload::AskRejectsPath(Pass) {
    return framework::AskForFileToWrite(Dialog::Handle(), kExportQuestion, "RejectedLines.csv");
}

std::optional<std::string> CBasketUpload::ReadFile(const std::string& path) {
    return framework::ReadWhole(path);
}

bool CBasketUpload::WriteFileWhole(const std::string& path, std::string_view text) {
    return framework::WriteWhole(path, framework::WithLineEnds(text)).empty();
}

std::string CBasketUpload::DeskLimit(const std::string& key) {
    std::string value;
    const bool isRead = ReadWriteSetting(SettingMode::read, kLimitsSection, key, value);
    return isRead && value != "Settings not found" ? value : std::string();
}

void CBasketUpload::ShowCheck() {
    auto lines = m_basket.Check();
    if (!lines || !HasWindow()) return;
    m_check.SetFontSize(FontSize());
    m_check.Show(std::move(*lines));
}

void CBasketUpload::ShowWaiting(bool waiting) {
    if (waiting)
        m_cursor = SetCursor(LoadCursorA(nullptr, IDC_WAIT));
    else
        SetCursor(m_cursor);
}

// Four units of the dialog.
LONG CBasketUpload::LetterWidth() const {
    return Item(IDC_SUBMIT).ClientRect().right * 4 / 70;
}

void CBasketUpload::ShowStatus() {
    if (!HasWindow()) return;
    ShowParts(m_statusBar, m_basket.Outcome().Status(), LetterWidth());
    // A row that came or went may have changed the look of another.
    const BasketRows& rows = m_basket.Rows();
    const std::pair marks(rows.StandingTwice(), rows.SentCount());
    if (std::exchange(m_marks, marks) != marks) InvalidateRect(Item(IDC_BASKET_LIST).Handle(), nullptr, FALSE);
}

void CBasketUpload::ShowStatusSoon() {
    if (HasWindow()) m_statusPace.Ask(Dialog::Handle());
}

void CBasketUpload::ShowPanel() {
    if (!HasWindow() || !m_panel.Refresh()) return;
    const framework::RedrawHold hold(Dialog::Handle());
    Arrange();
}

void CBasketUpload::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_basket.OnResponse(message);
    });
}

} // namespace planfold
