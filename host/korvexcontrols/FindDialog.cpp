#include "host/korvexcontrols/FindDialog.h"

#include "host/korvexcontrols/resource.h"

namespace korvex {

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
