#include "host/korvexcontrols/ListDialogs.h"

#include "base/Text.h"
#include "host/korvexcontrols/RecoveryFiles.h"
#include "host/korvexcontrols/resource.h"

namespace korvex {

namespace {

constexpr char kSection[] = "Dialogs";

} // namespace

CQVDialog::CQVDialog(std::weak_ptr<void> owner, int resource, std::string name)
    : Dialog(framework::ModuleHolding(&kSection), resource), m_owner(std::move(owner)),
      m_name(std::move(name)) {}

void CQVDialog::Open(HWND list) {
    if (HasWindow()) Destroy();
    if (Create(GetAncestor(list, GA_ROOT))) ShowWindow(Handle(), SW_SHOW);
}

void CQVDialog::OnInit() {
    m_keys.emplace();
    Place();
}

void CQVDialog::OnDestroyed() {
    m_keys.reset();
}

std::optional<LRESULT> CQVDialog::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) RememberPlace();
    return std::nullopt;
}

// A place on a monitor that is no longer there is not taken.
void CQVDialog::Place() const {
    const std::string kept = ReadRecovered(RecoveryFile::dialogPositions, kSection, m_name);
    const std::size_t comma = kept.find(',');
    if (comma == kept.npos) return;
    const auto left = base::ReadNumber<int>(kept.substr(0, comma)),
               top = base::ReadNumber<int>(kept.substr(comma + 1));
    if (!left || !top) return;
    RECT rect{};
    GetWindowRect(Handle(), &rect);
    OffsetRect(&rect, *left - rect.left, *top - rect.top);
    if (MonitorFromRect(&rect, MONITOR_DEFAULTTONULL))
        SetWindowPos(Handle(), nullptr, *left, *top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CQVDialog::RememberPlace() const {
    RECT rect{};
    if (!GetWindowRect(Handle(), &rect)) return;
    const std::string place = std::to_string(rect.left) + "," + std::to_string(rect.top);
    if (place != ReadRecovered(RecoveryFile::dialogPositions, kSection, m_name))
        WriteRecovered(RecoveryFile::dialogPositions, kSection, m_name, place);
}

FilterDialog::FilterDialog(std::weak_ptr<void> owner)
    : CQVDialog(std::move(owner), IDD_KORVEX_FILTER, "Filter") {}

void FilterDialog::Ask(HWND list, const std::string& heading, ValueType type, const FilterInput* now,
                       Chosen chosen) {
    m_heading = heading;
    m_type = type;
    m_now = now ? std::optional(*now) : std::nullopt;
    m_chosen = std::move(chosen);
    Open(list);
    Item(IDC_FILTER_VALUE).Focus();
}

void FilterDialog::OnInit() {
    CQVDialog::OnInit();
    m_fault.Attach(Item(IDC_FILTER_FAULT).Handle());
    Self().SetText("Filter: " + m_heading);
    const auto operators = Item<framework::ComboBox>(IDC_FILTER_OPERATOR);
    const auto known = OperatorsFor(m_type);
    for (std::size_t i = 0; i < known.size(); ++i) {
        operators.Add(std::string(known[i].name));
        if (m_now && m_now->id == known[i].id) operators.Select(static_cast<int>(i));
    }
    if (operators.Selected() < 0) operators.Select(0);
    if (m_now) {
        Item(IDC_FILTER_VALUE).SetText(m_now->value);
        Item(IDC_FILTER_SECOND).SetText(m_now->second);
    }
    Item(IDC_FILTER_CLEAR).Enable(m_now.has_value());
    ShowSecond();
}

void FilterDialog::ShowSecond() const {
    const bool shown = Read().id == FilterOperator::between;
    Item(IDC_FILTER_SECOND_LABEL).Show(shown);
    Item(IDC_FILTER_SECOND).Show(shown);
}

FilterInput FilterDialog::Read() const {
    const auto known = OperatorsFor(m_type);
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
    case IDC_FILTER_OPERATOR:
        if (command.notification == CBN_SELCHANGE) ShowSecond();
        return true;
    default:
        return false;
    }
}

void FilterDialog::Accept() {
    const FilterInput input = Read();
    const std::string fault = ColumnFilter::FaultOf(input);
    if (fault.empty()) return Finish(&input);
    m_fault.Tell(fault, framework::Meaning::bad);
    Item(IDC_FILTER_VALUE).Focus();
    Item(IDC_FILTER_VALUE).Send(EM_SETSEL, 0, -1);
}

void FilterDialog::Finish(const FilterInput* input) {
    const Chosen chosen = std::move(m_chosen);
    Destroy();
    if (chosen) chosen(input);
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

bool FindDialog::OnCommand(const framework::Command& command) {
    const bool forward = command.id == IDOK;
    if (command.id == IDC_FIND_TEXT && command.notification == EN_CHANGE) Item(IDC_FIND_NOTICE).SetText("");
    if (!forward && command.id != IDC_FIND_PREVIOUS) return false;
    const bool found = m_step(Item(IDC_FIND_TEXT).Text(), forward);
    Item(IDC_FIND_NOTICE).SetText(found ? "" : "Not found");
    return true;
}

} // namespace korvex
