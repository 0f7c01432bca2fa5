#include "host/korvexcontrols/ListDialogs.h"

#include "base/Text.h"
#include "host/korvexcontrols/WindowPlace.h"
#include "host/korvexcontrols/resource.h"

#include <algorithm>

namespace korvex {

namespace {

constexpr char kInThisModule = 0;

} // namespace

CQVDialog::CQVDialog(std::weak_ptr<void> owner, int resource, std::string name)
    : Dialog(framework::ModuleHolding(&kInThisModule), resource), m_owner(std::move(owner)),
      m_name(std::move(name)) {}

void CQVDialog::Open(HWND list) {
    if (HasWindow()) Destroy();
    if (Create(GetAncestor(list, GA_ROOT))) ShowWindow(Handle(), SW_SHOW);
}

void CQVDialog::OnInit() {
    m_keys.emplace();
    RestorePlace(Handle(), m_name);
}

void CQVDialog::OnDestroyed() {
    m_keys.reset();
}

std::optional<LRESULT> CQVDialog::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) RememberPlace(Handle(), m_name);
    return std::nullopt;
}

FilterDialog::FilterDialog(std::weak_ptr<void> owner, Calls calls)
    : CQVDialog(std::move(owner), IDD_KORVEX_FILTER, "Filter"), m_calls(std::move(calls)) {}

void FilterDialog::Ask(HWND list, std::vector<std::int32_t> columns, std::int32_t current) {
    m_columns = std::move(columns);
    m_current = current;
    Open(list);
    Item(m_current < 0 ? IDC_FILTER_COLUMN : IDC_FILTER_VALUE).Focus();
}

void FilterDialog::OnInit() {
    CQVDialog::OnInit();
    m_fault.Attach(Item(IDC_FILTER_FAULT).Handle());
    const auto columns = Item<framework::ComboBox>(IDC_FILTER_COLUMN);
    for (const std::int32_t column : m_columns) {
        columns.Add(m_calls.about(column).heading);
        if (column == m_current) columns.Select(columns.Count() - 1);
    }
    ShowColumn();
}

void FilterDialog::ShowColumn() {
    const auto columns = Item<framework::ComboBox>(IDC_FILTER_COLUMN);
    const auto chosen = static_cast<std::size_t>(columns.Selected());
    m_current = chosen < m_columns.size() ? m_columns[chosen] : -1;
    m_column = m_current < 0 ? Column{} : m_calls.about(m_current);
    Self().SetText(m_current < 0 ? "Filter" : "Filter: " + m_column.heading);
    const auto operators = Item<framework::ComboBox>(IDC_FILTER_OPERATOR);
    operators.Clear();
    for (const OperatorName& known : OperatorsFor(m_column.type, m_column.content)) {
        operators.Add(std::string(known.name));
        if (m_column.now && m_column.now->id == known.id) operators.Select(operators.Count() - 1);
    }
    if (operators.Selected() < 0) operators.Select(0);
    if (m_column.now) {
        Item(IDC_FILTER_VALUE).SetText(m_column.now->value);
        Item(IDC_FILTER_SECOND).SetText(m_column.now->second);
    }
    Item(IDC_FILTER_CLEAR).Enable(m_column.now.has_value());
    ShowValues();
}

void FilterDialog::ShowValues() const {
    const int values = ValuesOf(Read().id);
    for (const int id : {IDC_FILTER_VALUE_LABEL, IDC_FILTER_VALUE})
        Item(id).Show(values > 0);
    for (const int id : {IDC_FILTER_SECOND_LABEL, IDC_FILTER_SECOND})
        Item(id).Show(values > 1);
}

FilterInput FilterDialog::Read() const {
    const auto known = OperatorsFor(m_column.type, m_column.content);
    const auto chosen = static_cast<std::size_t>(Item<framework::ComboBox>(IDC_FILTER_OPERATOR).Selected());
    return {known[chosen < known.size() ? chosen : 0].id, Item(IDC_FILTER_VALUE).Text(),
            Item(IDC_FILTER_SECOND).Text()};
}

bool FilterDialog::OnCommand(const framework::Command& command) {
    switch (command.id) {
    case IDOK:
        Accept();
        return true;
    case IDC_FILTER_CLEAR:
        Finish(nullptr);
        return true;
    case IDC_FILTER_COLUMN:
        if (command.notification == CBN_SELCHANGE) ShowColumn();
        return true;
    case IDC_FILTER_OPERATOR:
        if (command.notification == CBN_SELCHANGE) ShowValues();
        return true;
    default:
        return false;
    }
}

void FilterDialog::Tell(const std::string& fault, int id) {
    m_fault.Tell(fault, framework::Meaning::bad);
    Item(id).Focus();
}

void FilterDialog::Accept() {
    if (m_current < 0) return Tell("Choose the column.", IDC_FILTER_COLUMN);
    const FilterInput input = Read();
    const std::string fault = ColumnFilter::FaultOf(input);
    if (fault.empty()) return Finish(&input);
    Tell(fault, IDC_FILTER_VALUE);
    Item(IDC_FILTER_VALUE).Send(EM_SETSEL, 0, -1);
}

void FilterDialog::Finish(const FilterInput* input) {
    const auto chosen = m_calls.chosen;
    const std::int32_t column = m_current;
    Destroy();
    chosen(column, input);
}

ViewDialog::ViewDialog(std::weak_ptr<void> owner, Named named)
    : CQVDialog(std::move(owner), IDD_KORVEX_VIEW, "View"), m_named(std::move(named)) {}

void ViewDialog::Show(HWND list, const std::string& name) {
    m_name = name;
    Open(list);
}

void ViewDialog::OnInit() {
    CQVDialog::OnInit();
    constexpr WPARAM mostLetters = 60;
    Item(IDC_VIEW_NAME).Send(EM_LIMITTEXT, mostLetters);
    Item(IDC_VIEW_NAME).SetText(m_name);
    Item(IDC_VIEW_NAME).Send(EM_SETSEL, 0, -1);
}

bool ViewDialog::OnCommand(const framework::Command& command) {
    if (command.id != IDOK) return false;
    const std::string name(base::Trimmed(Item(IDC_VIEW_NAME).Text(), " "));
    if (name.empty()) return true;
    const Named named = m_named;
    Destroy();
    named(name);
    return true;
}

FindDialog::FindDialog(std::weak_ptr<void> owner, Step step)
    : CQVDialog(std::move(owner), IDD_KORVEX_FIND, "Find"), m_step(std::move(step)) {}

void FindDialog::Show(HWND list, const std::string& text) {
    m_text = text;
    Open(list);
}

void FindDialog::OnInit() {
    CQVDialog::OnInit();
    Item(IDC_FIND_TEXT).SetText(m_text);
    Item(IDC_FIND_TEXT).Send(EM_SETSEL, 0, -1);
}

void FindDialog::Uncover(const RECT& place) const {
    RECT box{}, both{};
    if (!HasWindow() || !GetWindowRect(Handle(), &box) || !IntersectRect(&both, &box, &place)) return;
    const RECT area = framework::WorkArea(Handle());
    const LONG height = box.bottom - box.top;
    const LONG top =
        place.bottom + height <= area.bottom ? place.bottom : std::max(area.top, place.top - height);
    SetWindowPos(Handle(), nullptr, box.left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

bool FindDialog::OnCommand(const framework::Command& command) {
    const bool forward = command.id == IDOK;
    if (command.id == IDC_FIND_TEXT && command.notification == EN_CHANGE) Item(IDC_FIND_NOTICE).SetText("");
    if (!forward && command.id != IDC_FIND_PREVIOUS) return false;
    const bool found = m_step(Item(IDC_FIND_TEXT).Text(), forward);
    Item(IDC_FIND_NOTICE).SetText(found ? "" : "Not found");
    return true;
}

OutputProgress::OutputProgress(std::weak_ptr<void> owner, base::LongRun& run)
    : RunProgressDlg(framework::ModuleHolding(&kInThisModule), run, Owner::enabled, "Rows of the List",
                     "Alt+S here stops it."),
      m_owner(std::move(owner)) {}

} // namespace korvex
