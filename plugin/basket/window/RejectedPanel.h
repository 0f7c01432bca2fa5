// The lines of a file that did not become rows: where they stand, why, and what they say; to be copied, saved,
// or corrected in the form.
#pragma once

#include "framework/Colours.h"
#include "framework/Dialog.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/controls/window/ListWindows.h"

#include <vector>

namespace planfold {

class RejectedPanel {
public:
    // What the user may do with the lines; commands of the parent.
    static constexpr int kCopyCommand = 25202;
    static constexpr int kSelectAllCommand = 25203;
    static constexpr int kCorrectCommand = 25204;
    static constexpr int kSaveCommand = 25205;

    RejectedPanel(framework::Dialog& dialog, const std::vector<RejectedLine>& lines)
        : m_dialog(dialog), m_lines(lines) {}

    void Attach();
    // The lines have changed.
    void Refresh();
    bool IsShown() const { return !m_lines.empty(); }
    // Fills the rectangle of the dialog's client area.
    void Arrange(const RECT& place);
    void FollowDpi();

    void OpenMenu(LPARAM position);
    void CloseMenu() const { m_menu.Close(); }
    // The panel's own commands; false when it was another's.
    bool HandleCommand(int command);
    // -1 when none is selected.
    int FirstSelected() const;
    std::optional<LRESULT> HandleNotify(const NMHDR& notification);

private:
    void Copy() const;
    std::string CellText(std::size_t line, int column) const;

    framework::Dialog& m_dialog;
    const std::vector<RejectedLine>& m_lines;
    framework::ColorStatic m_label;
    ActivateOnEnter m_enter;
    RowMenu m_menu;
};

} // namespace planfold
