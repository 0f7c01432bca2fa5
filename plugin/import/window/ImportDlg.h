// The preview of an import: how each column is read, and what becomes of the first rows, before a row is made.
#pragma once

#include "framework/Dialog.h"
#include "framework/MessageBoxes.h"
#include "plugin/basket/BasketLoading.h"
#include "plugin/basket/BasketView.h"
#include "plugin/import/ImportFile.h"

#include <optional>
#include <string>

namespace planfold {

class CImportDlg final : public framework::Dialog {
public:
    CImportDlg(HINSTANCE module, const Session& session, framework::MessageBoxes& boxes);
    ~CImportDlg() override { Destroy(); }

    // Asks for the file, and then how it is read, in the owner's font size. None when the user thinks better of
    // it, or the file cannot be imported, which is told.
    std::optional<ImportChoice> Ask(Pass pass, HWND owner, const BasketRules& rules, int points);

private:
    void OnInit() override;
    void OnLaidOut() override;
    void OnDestroyed() override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    std::string KeptName() const;
    void Keep();
    void ShowColumns();
    void ShowChoices();
    void TryRows();
    void TryMore();
    void ShowFaults();
    void OnChosen(int combo);
    void OnDefaultTyped();
    BasketField ChosenDefault() const;
    std::string Cell(const framework::ReportList& list, int row, int column) const;
    framework::ReportList List(int list) const { return Item<framework::ReportList>(list); }

    const Session& m_session;
    framework::MessageBoxes& m_boxes;
    ImportFile m_file;
    KeptMappings m_kept;
    BasketRules m_rules;
    std::string m_path;
    HostScrips m_scrips;
    std::optional<Pass> m_pass; // of the question that is open
    bool m_isTrying = false;    // the host may let the window's timer in
    bool m_accepted = false;
    bool m_isShowing = false; // what changes is not the user's doing
};

} // namespace planfold
