#include "plugin/changes/window/ChangesDlg.h"

#include "framework/Files.h"
#include "framework/Guard.h"
#include "plugin/base/Text.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr char kName[] = "SIPChanges";
constexpr unsigned kListCommands = 26800; // of a hundred
constexpr framework::FileQuestion kLoadQuestion{"CSV Files (*.csv)|*.csv|All Files (*.*)|*.*|", "csv",
                                                "Load Changes"};
constexpr framework::FileQuestion kExportQuestion{"CSV Files (*.csv)|*.csv|All Files (*.*)|*.*|", "csv",
                                                  "Export for Changes"};
// A button's width in the template's units, of which four are a letter.
constexpr int kButtonUnits = 54;

std::string NameOf(const std::string& path) {
    return path.substr(path.find_last_of("\\/") + 1);
}

} // namespace

std::optional<LRESULT> CChangesDlg::ListNotice::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != framework::kReflected + WM_CTLCOLORSTATIC) return std::nullopt;
    SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
    SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOWTEXT));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
}

CChangesDlg::CChangesDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                         const OrderCache& book, Selected selected)
    : Dialog(module, IDD_CHANGES), m_session(session), m_boxes(boxes), m_book(book),
      m_selected(std::move(selected)), m_run(session, book, *this, [this] { return Control(); }),
      m_progress(module, session, m_run, CRunProgressDlg::Owner::disabled), m_stepUp(module, session, boxes) {}

void CChangesDlg::ShutDown() {
    Destroy();
    if (m_link) m_link->Release();
}

RxControl* CChangesDlg::Control() {
    CKeloRxNotifierBase* const notifier = this;
    if (!m_link) m_link.emplace(m_session.lookup, kRxRequests, notifier, nullptr);
    return m_link->Control();
}

void CChangesDlg::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_run.OnResponse(message);
    });
}

void CChangesDlg::OnBookCommand(int command, HWND owner) {
    if (command == kExportForChangesCommand) return Export(owner);
    planfold::BringUp(*this, m_session);
    if (!HasWindow()) return;
    Item(IDC_CHANGES_LIST).Focus();
    if (command == kLoadChangesCommand)
        Load();
    else
        Step();
}

// All that can still be changed, or the selected ones when there are several.
void CChangesDlg::Export(HWND owner) {
    const std::vector<std::string> selected = m_selected();
    std::vector<RecordId> records;
    if (selected.size() > 1)
        for (const std::string& number : selected)
            records.push_back(m_book.Find(number));
    else
        for (RecordId record = 0; record < m_book.Size(); ++record)
            records.push_back(record);
    std::erase_if(records, [&](RecordId record) {
        const std::string_view status =
            record == kNoRecord ? "expired" : m_book[record].Text(OrderField::sipStatus);
        return IsCancelled(status) || HasEnded(status);
    });
    const std::string text = ChangeFileText(m_book, records, m_session.m_nSipOperationMode != 0);
    const auto path = m_session.life.Across(
        [&](Pass) { return framework::AskForFileToWrite(owner, kExportQuestion, "Registrations.csv"); });
    if (!path || !*path) return;
    const std::string fault = framework::WriteWhole(**path, text);
    m_boxes.Show(owner, fault.empty() ? Format("%zu registrations were exported.", records.size())
                                      : "The file cannot be written: " + fault);
}

void CChangesDlg::Load() {
    if (m_run.TellsBusy()) return;
    const auto path = m_life.Across([&](Pass) { return framework::AskForFileToRead(Handle(), kLoadQuestion); });
    if (!path || !*path) return;
    auto text = framework::ReadWhole(**path);
    if (!text) return m_boxes.Show(Handle(), "The file cannot be read: " + **path);
    m_source = NameOf(**path);
    m_run.Load(std::move(*text), m_source);
}

void CChangesDlg::Step() {
    if (m_run.TellsBusy()) return;
    const std::vector<std::string> numbers = m_selected();
    if (numbers.empty()) return m_boxes.Show(Handle(), "Select the registrations in the book first.");
    const auto rule = m_life.Across([&](Pass) { return m_stepUp.Ask(Handle(), numbers.size()); });
    if (!rule || !*rule) return;
    m_source = Format("Step up of %zu registrations", numbers.size());
    m_run.Step(numbers, **rule);
}

void CChangesDlg::OnInit() {
    m_notice.Attach(Item(IDC_CHANGES_NOTICE).Handle());
    const auto columns = ListColumns<ChangeColumn>(kChangeColumns);
    m_list.Attach({Item(IDC_CHANGES_LIST).Handle(), kName, this, columns.data(),
                   static_cast<std::int32_t>(columns.size()), kListCommands});
    m_statusBar.Create(Handle(), IDC_CHANGES_STATUS, kName);
    LayOut(Self().Dpi());
    ShowAllColumns(Handle(), Item(IDC_CHANGES_LIST).Handle());
    m_source.clear();
    ShowRows(true);
}

void CChangesDlg::OnDestroyed() {
    m_progress.Destroy();
    m_stepUp.Destroy();
    m_run.Forget();
    m_life.Renew();
    m_frame.Forget();
}

void CChangesDlg::LayOut(UINT dpi) {
    m_frame.Renew([&] {
        Dialog::LayOut(dpi);
        SetCaptionIcon(IDI_REPEAT);
    });
    Item(IDC_CHANGES_STATUS).SetFont(reinterpret_cast<HFONT>(Item(IDC_CHANGES_SEND).Send(WM_GETFONT)));
    Arrange();
}

// The list takes what the line above and the status bar below leave.
void CChangesDlg::Arrange() {
    if (!m_frame.HasRoom()) return;
    m_statusBar.Place();
    const LONG status = framework::Window(m_statusBar.Handle()).ClientRect().bottom;
    ShowStatus();
    Item(IDC_CHANGES_LIST).Move(m_frame.Room(status));
}

void CChangesDlg::ShowStatus() {
    ShowParts(m_statusBar, m_status, Item(IDC_CHANGES_SEND).ClientRect().right * 4 / kButtonUnits);
}

std::optional<LRESULT> CChangesDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Arrange();
        return std::nullopt;
    case WM_GETMINMAXINFO:
        m_frame.SetLeastSize(lParam);
        return 0;
    case WM_SYSCOLORCHANGE:
        return Item(IDC_CHANGES_LIST).Send(message);
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wParam) != m_list.Handle() || IsOnHeadings(m_list.Handle(), lParam))
            return std::nullopt;
        m_menu.Open(Handle(), RowMenuPlace(m_list.Handle(), lParam), m_list, {});
        return 0;
    case WM_DESTROY:
        m_boxes.Close(Handle());
        m_menu.Close();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

bool CChangesDlg::OnCommand(const framework::Command& command) {
    switch (command.id) {
    case IDC_CHANGES_LOAD:
        Load();
        return true;
    case IDC_CHANGES_STEP:
        Step();
        return true;
    case IDC_CHANGES_SEND:
        m_run.Send();
        return true;
    default:
        return m_list.HandleCommand(static_cast<std::uint32_t>(command.id));
    }
}

std::optional<LRESULT> CChangesDlg::OnNotify(const NMHDR& notification) {
    LRESULT result = 0;
    return m_list.HandleNotify(&notification, &result) ? std::optional(result) : std::nullopt;
}

void CChangesDlg::ShowRun() {
    m_progress.Follow(Handle());
    if (HasWindow()) Item(IDC_CHANGES_SEND).Enable(m_run.CanSend());
}

void CChangesDlg::ShowRows(bool anew) {
    if (!HasWindow()) return;
    const std::string notice = m_run.Notice();
    Item(IDC_CHANGES_NOTICE).SetText(notice);
    Item(IDC_CHANGES_NOTICE).Show(!notice.empty());
    Item(IDC_CHANGES_SOURCE).SetText(m_run.Set() ? m_source : std::string());
    const ChangeSet* set = m_run.Set();
    const auto count = static_cast<std::uint32_t>(set && set->IsRead() ? set->Changes().size() : 0);
    m_list.BeginChanges();
    if (anew) {
        m_list.RemoveAll();
        for (std::uint32_t row = count; row-- > 0;)
            m_list.InsertFront(row, kKorvexAsked);
    } else {
        for (std::uint32_t row = 0; row < count; ++row)
            m_list.Repaint(row);
    }
    m_list.EndChanges();
    m_status = m_run.Status();
    Item(IDC_CHANGES_SEND).Enable(m_run.CanSend());
    ShowStatus();
}

void CChangesDlg::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                            KorvexText* texts) noexcept {
    framework::Guard([&] {
        const ChangeSet* set = m_run.Set();
        for (std::uint32_t i = 0; i < count; ++i) {
            if (!set || records[i] >= set->Changes().size()) continue;
            const std::string& text = set->Text(records[i], kChangeColumns[column].field);
            texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
        }
    });
}

std::int32_t CChangesDlg::RowLook(std::uint32_t record) noexcept {
    const ChangeSet* set = m_run.Set();
    if (!set || record >= set->Changes().size()) return kKorvexPlain;
    if (!set->Changes()[record].refusal.empty()) return kKorvexMuted;
    const ChangeResult& result = set->Result(record);
    if (!result.isTried || result.state == OrderState::sent) return kKorvexPlain;
    if (result.state == OrderState::done) return kKorvexGood;
    return result.state == OrderState::refused ? kKorvexBad : kKorvexAttention;
}

} // namespace planfold
