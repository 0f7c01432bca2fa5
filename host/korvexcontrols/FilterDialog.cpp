#include "host/korvexcontrols/FilterDialog.h"

#include "host/korvexcontrols/resource.h"

namespace korvex {

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

} // namespace korvex
