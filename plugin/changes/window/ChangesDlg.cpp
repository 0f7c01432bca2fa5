#include "plugin/changes/window/ChangesDlg.h"

#include "framework/Files.h"
#include "framework/Guard.h"
#include "plugin/base/Text.h"
#include "plugin/changes/ChangeSet.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/orderbook/BookLists.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr framework::FileQuestion kLoadChanges{"CSV Files (*.csv)|*.csv|All Files (*.*)|*.*|", "csv",
                                               "Load Changes"};
constexpr framework::FileQuestion kExportChanges{"CSV Files (*.csv)|*.csv|All Files (*.*)|*.*|", "csv",
                                                 "Export for Changes"};

std::string NameOf(const std::string& path) {
    return path.substr(path.find_last_of("\\/") + 1);
}

} // namespace

CChangesDlg::CChangesDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                         const OrderCache& book, Selected selected)
    : CListDialog(module, IDD_CHANGES, session,
                  {IDI_REPEAT, IDC_CHANGES_LIST, IDC_CHANGES_NOTICE, IDC_CHANGES_STATUS, IDC_CHANGES_STEP,
                   "SIPChanges", ListColumns<ChangeColumn>(kChangeColumns),
                   FirstCommand(NumberedList::changes)}),
      m_boxes(boxes), m_book(book), m_selected(std::move(selected)),
      m_run(session, book, *this, [this] { return Control(); }),
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
    if (!planfold::BringUp(*this, m_session)) return;
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
        [&](Pass) { return framework::AskForFileToWrite(owner, kExportChanges, "Registrations.csv"); });
    if (!path || !*path) return;
    const std::string fault = framework::WriteWhole(**path, text);
    m_boxes.Show(owner, fault.empty() ? Format("%zu registrations were exported.", records.size())
                                      : "The file cannot be written: " + fault);
}

void CChangesDlg::Load() {
    if (m_run.TellsBusy()) return;
    const auto path = m_life.Across([&](Pass) { return framework::AskForFileToRead(Handle(), kLoadChanges); });
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
    CListDialog::OnInit();
    m_source.clear();
    ShowRows(true);
}

void CChangesDlg::OnDestroyed() {
    m_progress.Destroy();
    m_stepUp.Destroy();
    m_run.Forget();
    m_life.Renew();
    CListDialog::OnDestroyed();
}

std::optional<LRESULT> CChangesDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DESTROY) m_boxes.Close(Handle());
    return CListDialog::OnMessage(message, wParam, lParam);
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
        return CListDialog::OnCommand(command);
    }
}

void CChangesDlg::ShowRun() {
    m_progress.Follow(Handle());
    if (HasWindow()) Item(IDC_CHANGES_SEND).Enable(m_run.CanSend());
}

void CChangesDlg::ShowRows(bool anew) {
    if (!HasWindow()) return;
    Item(IDC_CHANGES_SOURCE).SetText(m_run.Set() ? m_source : std::string());
    const ChangeSet* set = m_run.Set();
    const auto count = static_cast<std::uint32_t>(set && set->IsRead() ? set->Changes().size() : 0);
    if (anew) ListRows(count);
    List().BeginChanges();
    for (std::uint32_t row = 0; row < count && !anew; ++row)
        List().Repaint(row);
    List().EndChanges();
    Item(IDC_CHANGES_SEND).Enable(m_run.CanSend());
    ShowTexts(NoticeOf(m_run.Set()), StatusOf(m_run.Set()));
}

std::string_view CChangesDlg::Cell(std::uint32_t row, std::int32_t column) const {
    const ChangeSet* set = m_run.Set();
    if (!set || row >= set->Changes().size()) return {};
    return set->Text(row, kChangeColumns[column].field);
}

KorvexRowLook CChangesDlg::Look(std::uint32_t record) const {
    const ChangeSet* set = m_run.Set();
    if (!set || record >= set->Changes().size()) return kKorvexPlain;
    if (!set->Changes()[record].refusal.empty()) return kKorvexMuted;
    const ChangeResult& result = set->Result(record);
    if (!result.isTried || result.state == OrderState::sent) return kKorvexPlain;
    if (result.state == OrderState::done) return kKorvexGood;
    return result.state == OrderState::refused ? kKorvexBad : kKorvexAttention;
}

} // namespace planfold
