// The panel below the basket's rows, in two pages: the lines of a file that did not become rows, to be copied,
// saved, or corrected in the form; and the rows that were not registered, each with its reason.
#pragma once

#include "framework/Dialog.h"
#include "plugin/basket/Basket.h"
#include "plugin/controls/window/ListWindows.h"

#include <optional>
#include <string>
#include <vector>

namespace planfold {

class BasketPanel {
public:
    // What the user may do with the lines; commands of the parent.
    static constexpr int kCopyCommand = 25202;
    static constexpr int kSelectAllCommand = 25203;
    static constexpr int kOpenCommand = 25204; // correct the line in the form, or go to the row
    static constexpr int kSaveCommand = 25205;

    static constexpr int kSaveReasonsCommand = 25206; // the lines, or the results, as a table with reasons
    static constexpr int kTextColumn = 2;

    enum class Page { rejected, results };

    BasketPanel(framework::Dialog& dialog, const Basket& basket) : m_dialog(dialog), m_basket(basket) {}

    void Attach();
    // The lines or the results have changed. True when there is something to arrange by it.
    bool Refresh();
    bool IsShown() const { return !m_basket.Rejected().empty() || !m_results.empty(); }
    Page Shown() const { return m_page; }
    // Fills the rectangle of the dialog's client area.
    void Arrange(const RECT& place);
    void FollowDpi();

    void OpenMenu(LPARAM position);
    void CloseMenu() const { m_menu.Close(); }
    // The panel's own commands; false when it was another's.
    bool HandleCommand(int command);
    // -1 when none is selected.
    int FirstSelected() const;
    // Shows the rejected line alone selected, with the focus.
    void GoTo(int line);
    // The row of a result; kNoRecord when there is no such result.
    RecordId RowOf(int result) const;
    std::optional<LRESULT> HandleNotify(const NMHDR& notification);

private:
    std::size_t Lines() const {
        return m_page == Page::results ? m_results.size() : m_basket.Rejected().size();
    }
    void Show(Page page);
    void Copy() const;
    std::string CellText(std::size_t line, int column) const;
    std::string Report(std::size_t line) const;

    framework::Dialog& m_dialog;
    const Basket& m_basket;
    std::vector<BasketResult> m_results;
    Page m_page = Page::rejected;
    std::size_t m_listed = 0;         // lines in the list
    std::optional<bool> m_wasShown{}; // none in a new window
    ActivateOnEnter m_enter;
    RowMenu m_menu;
};

} // namespace planfold
