#include "plugin/changes/window/StepUpDlg.h"

#include "plugin/base/Text.h"
#include "plugin/resources/resource.h"

#include <utility>

namespace planfold {

CStepUpDlg::CStepUpDlg(HINSTANCE module, const Session& session, framework::MessageBoxes& boxes)
    : Dialog(module, IDD_STEP_UP), m_session(session), m_boxes(boxes) {}

std::optional<StepUp> CStepUpDlg::Ask(HWND owner, std::size_t count) {
    m_rule.reset();
    m_count = count;
    if (!HasWindow()) RunModal(owner);
    return std::exchange(m_rule, std::nullopt);
}

void CStepUpDlg::OnInit() {
    Item(IDC_STEP_NOTE)
        .SetText(Format("The amounts of %zu selected registration%s", m_count, m_count == 1 ? "" : "s"));
    const auto by = Item<framework::ComboBox>(IDC_STEP_BY);
    by.Add("per cent");
    by.Add("rupees");
    by.Select(0);
    const auto steps = Item<framework::ComboBox>(IDC_STEP_ROUND);
    for (const StepUpStep& step : kStepUpSteps)
        steps.Add(step.text);
    steps.Select(0);
}

bool CStepUpDlg::OnCommand(const framework::Command& command) {
    if (command.id != IDOK) return false;
    const auto by =
        Item<framework::ComboBox>(IDC_STEP_BY).Selected() == 1 ? StepUp::By::rupees : StepUp::By::percent;
    const StepUpRead read =
        ReadStepUp(by, Item(IDC_STEP_VALUE).Text(), Item<framework::ComboBox>(IDC_STEP_ROUND).Selected());
    if (!read.fault.empty()) {
        Item(IDC_STEP_VALUE).Focus();
        m_boxes.Show(Handle(), read.fault);
        return true;
    }
    m_rule = read.rule;
    Destroy();
    return true;
}

} // namespace planfold
