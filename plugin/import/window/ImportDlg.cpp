#include "plugin/import/window/ImportDlg.h"

#include "framework/Files.h"
#include "plugin/base/Text.h"
#include "plugin/import/PreviewTexts.h"
#include "plugin/resources/resource.h"

#include <utility>

namespace planfold {

namespace {

constexpr framework::FileQuestion kQuestion{
    "Tables (*.xlsx, *.csv, *.txt)|*.xlsx;*.csv;*.txt;*.tsv|All Files (*.*)|*.*||", "xlsx", "Import"};
constexpr framework::ReportList::Column kColumnsOfFile[] = {
    {"No", 30}, {"Heading", 150}, {"First value", 130}, {"Read as", 100}};
constexpr int kPreviewRowHeight = 18;
constexpr std::size_t kLongestName = 60;
constexpr UINT_PTR kTryTimer = 7;
constexpr UINT kTryPauseMs = 30;
constexpr ULONGLONG kTryPortionMs = 60;
constexpr int kRowsAtOnce = 64;

// Files are read in UTF-8.
std::string Ansi(std::string_view text) {
    return framework::Narrow(framework::Wide(text, CP_UTF8), CP_ACP);
}

} // namespace

CImportDlg::CImportDlg(HINSTANCE module, const Session& session, framework::MessageBoxes& boxes)
    : Dialog(module, IDD_IMPORT), m_session(session), m_boxes(boxes), m_scrips(session) {}

std::string CImportDlg::KeptName() const {
    return framework::Utf8(m_session.userDirectory + "\\PlanfoldImport.ini");
}

std::optional<ImportChoice> CImportDlg::Ask(Pass pass, HWND owner, const BasketRules& rules, int points) {
    if (HasWindow()) return std::nullopt;
    const auto path = framework::AskForFileToRead(owner, kQuestion);
    if (!path || !IsWindow(owner)) return std::nullopt;
    auto bytes = framework::ReadWhole(*path);
    std::string fault = bytes ? "" : "it cannot be opened";
    m_kept = {};
    // Choices that cannot be read any more are made anew.
    if (const auto kept = framework::ReadWhole(KeptName()); kept && !m_kept.Read(*kept).empty()) m_kept = {};
    if (bytes) fault = m_file.Open(std::move(*bytes), m_kept);
    if (!fault.empty()) {
        m_boxes.Show(owner, "The file cannot be imported: " + Ansi(fault) + ".");
        return std::nullopt;
    }
    m_path = *path;
    m_rules = rules;
    m_pass = pass;
    m_accepted = false;
    SetFontSize(points);
    RunModal(owner);
    m_pass.reset();
    const ImportFile file = std::exchange(m_file, {});
    if (!m_accepted || m_session.Ended()) return std::nullopt;
    return ImportChoice{m_path, file.Begin()};
}

void CImportDlg::OnInit() {
    const ScopedShowing showing(m_isShowing);
    for (const auto& column : kColumnsOfFile)
        List(IDC_IMPORT_COLUMNS).AddColumn(column);
    for (const PreviewColumn& column : kPreviewColumns)
        List(IDC_IMPORT_ROWS).AddColumn({column.heading, column.width});
    const auto readAs = Item<framework::ComboBox>(IDC_IMPORT_READ_AS);
    const auto withDefault = Item<framework::ComboBox>(IDC_IMPORT_DEFAULT);
    readAs.Add(FieldTitle(kNotRead));
    for (const ImportField& field : kImportFields) {
        readAs.Add(FieldTitle(field.field));
        if (field.hasDefault) withDefault.Add(FieldTitle(field.field));
    }
    for (int unit = 0; unit < static_cast<int>(AmountUnit::count); ++unit)
        Item<framework::ComboBox>(IDC_IMPORT_UNIT).Add(UnitTitle(static_cast<AmountUnit>(unit)));
    for (int pattern = 0; pattern < static_cast<int>(DatePattern::count); ++pattern)
        Item<framework::ComboBox>(IDC_IMPORT_DATES).Add(PatternTitle(static_cast<DatePattern>(pattern)));
    Item<framework::ComboBox>(IDC_IMPORT_DEFAULT).Select(0);
    Item(IDC_IMPORT_NAME).SetText(Ansi(m_file.Mapping().name));
    OnLaidOut();
    ShowColumns();
    List(IDC_IMPORT_COLUMNS).SelectRow(0);
    ShowChoices();
    TryRows();
}

void CImportDlg::OnLaidOut() {
    SetCaptionIcon(IDI_REPEAT);
    for (const int list : {IDC_IMPORT_COLUMNS, IDC_IMPORT_ROWS})
        List(list).SetLook(kPreviewRowHeight);
    for (int i = 0; i < static_cast<int>(std::size(kColumnsOfFile)); ++i)
        List(IDC_IMPORT_COLUMNS).SetColumnWidth(i, kColumnsOfFile[i].width);
    for (int i = 0; i < static_cast<int>(std::size(kPreviewColumns)); ++i)
        List(IDC_IMPORT_ROWS).SetColumnWidth(i, kPreviewColumns[i].width);
}

// The window may go while the host is asked about scrips.
void CImportDlg::OnDestroyed() {
    m_isShowing = false;
}

void CImportDlg::ShowColumns() {
    List(IDC_IMPORT_COLUMNS).SetCount(static_cast<int>(m_file.Columns().texts.size()));
    Item(IDC_IMPORT_FILE).SetText(Ansi(FileTitle(m_path, m_file)));
}

void CImportDlg::ShowChoices() {
    const ScopedShowing showing(m_isShowing);
    const ImportMapping& mapping = m_file.Mapping();
    const int column = List(IDC_IMPORT_COLUMNS).SelectedRow();
    Item(IDC_IMPORT_READ_AS).Enable(column >= 0);
    if (column >= 0)
        Item<framework::ComboBox>(IDC_IMPORT_READ_AS)
            .Select(PlaceOfField(mapping.columns[static_cast<std::size_t>(column)]));
    Item<framework::ComboBox>(IDC_IMPORT_UNIT).Select(static_cast<int>(mapping.unit));
    Item<framework::ComboBox>(IDC_IMPORT_DATES).Select(static_cast<int>(mapping.pattern));
    const auto found = mapping.defaults.find(ChosenDefault());
    Item(IDC_IMPORT_DEFAULT_VALUE).SetText(found == mapping.defaults.end() ? std::string() : found->second);
}

void CImportDlg::TryRows() {
    m_scrips.Admit(m_pass.value());
    m_file.Try(m_rules, m_scrips);
    if (!HasWindow()) return;
    List(IDC_IMPORT_ROWS).SetCount(static_cast<int>(m_file.Rows().size()));
    ShowFaults();
    if (m_file.HasMore()) SetTimer(Handle(), kTryTimer, kTryPauseMs, nullptr);
}

void CImportDlg::ShowFaults() {
    Item(IDC_IMPORT_DOUBT).SetText(Ansi(DoubtText(m_file)));
    Item(IDC_IMPORT_FAULTS).SetText(FaultsText(m_file));
}

// The faults of the whole file are counted while the user looks at its first rows.
void CImportDlg::TryMore() {
    if (std::exchange(m_isTrying, true)) return;
    const ULONGLONG end = GetTickCount64() + kTryPortionMs;
    bool more = true;
    while (more && HasWindow() && GetTickCount64() < end)
        more = m_file.TryMore(kRowsAtOnce);
    m_isTrying = false;
    if (!HasWindow()) return;
    ShowFaults();
    if (!more) KillTimer(Handle(), kTryTimer);
}

std::optional<LRESULT> CImportDlg::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_TIMER || wParam != kTryTimer) return std::nullopt;
    TryMore();
    return 0;
}

BasketField CImportDlg::ChosenDefault() const {
    return FieldWithDefault(Item<framework::ComboBox>(IDC_IMPORT_DEFAULT).Selected());
}

void CImportDlg::OnChosen(int combo) {
    ImportMapping& mapping = m_file.Mapping();
    const int chosen = Item<framework::ComboBox>(combo).Selected();
    const int column = List(IDC_IMPORT_COLUMNS).SelectedRow();
    if (chosen < 0) return;
    if (combo == IDC_IMPORT_UNIT)
        mapping.unit = static_cast<AmountUnit>(chosen);
    else if (combo == IDC_IMPORT_DATES)
        mapping.pattern = static_cast<DatePattern>(chosen);
    else if (combo == IDC_IMPORT_READ_AS && column >= 0)
        m_file.ReadColumnAs(static_cast<std::size_t>(column), FieldAtPlace(chosen));
    else if (combo != IDC_IMPORT_DEFAULT)
        return;
    ShowColumns();
    ShowChoices();
    TryRows();
}

void CImportDlg::OnDefaultTyped() {
    const std::string value = framework::Utf8(Item(IDC_IMPORT_DEFAULT_VALUE).Text());
    auto& defaults = m_file.Mapping().defaults;
    if (value.empty())
        defaults.erase(ChosenDefault());
    else
        defaults[ChosenDefault()] = value;
    TryRows();
}

void CImportDlg::Keep() {
    std::string name = framework::Utf8(Item(IDC_IMPORT_NAME).Text()).substr(0, kLongestName);
    if (name.empty() || m_session.userDirectory.empty()) return;
    std::erase_if(name, [](char c) { return c == '[' || c == ']' || (c >= 0 && c < ' '); });
    m_file.Mapping().name = name;
    m_kept.Keep(m_file.Columns(), m_file.Mapping());
    const std::string fault = framework::WriteWhole(KeptName(), m_kept.Text());
    if (!fault.empty()) m_session.LogLast("The choices of the import were not kept: " + fault);
}

bool CImportDlg::OnCommand(const framework::Command& command) {
    if (m_isShowing) return false;
    if (command.id == IDOK) {
        Keep();
        m_accepted = true;
        Destroy();
        return true;
    }
    if (command.notification == CBN_SELCHANGE) OnChosen(command.id);
    if (command.id == IDC_IMPORT_DEFAULT_VALUE && command.notification == EN_CHANGE) OnDefaultTyped();
    return false;
}

std::optional<LRESULT> CImportDlg::OnNotify(const NMHDR& notification) {
    if (notification.code == LVN_GETDISPINFOA) {
        const LVITEMA& item = reinterpret_cast<const NMLVDISPINFOA&>(notification).item;
        const framework::ReportList list(notification.hwndFrom);
        if (item.mask & LVIF_TEXT)
            lstrcpynA(item.pszText, Cell(list, item.iItem, item.iSubItem).c_str(), item.cchTextMax);
        return 0;
    }
    if (notification.code == LVN_ITEMCHANGED && notification.idFrom == IDC_IMPORT_COLUMNS && !m_isShowing)
        ShowChoices();
    return std::nullopt;
}

std::string CImportDlg::Cell(const framework::ReportList& list, int row, int column) const {
    const auto place = static_cast<std::size_t>(row);
    if (list == List(IDC_IMPORT_COLUMNS)) return Ansi(ColumnText(m_file, place, column));
    return place < m_file.Rows().size() ? Ansi(PreviewText(m_file.Rows()[place], column)) : std::string();
}

} // namespace planfold
