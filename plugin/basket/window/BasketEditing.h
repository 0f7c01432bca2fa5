// Editing in the lists of the basket's window: its keys, menu entries, cells and the way from fault to fault.
#pragma once

#include "plugin/basket/window/BasketListWindow.h"
#include "plugin/basket/window/BasketPanel.h"
#include "plugin/basket/window/CellEdit.h"
#include "plugin/basket/window/ReplaceDlg.h"

#include <array>
#include <optional>

namespace planfold {

class BasketEditing {
public:
    BasketEditing(HINSTANCE module, framework::Dialog& dialog, const Session& session, Basket& basket,
                  BasketListWindow& list, BasketPanel& panel)
        : m_dialog(dialog), m_basket(basket), m_list(list), m_panel(panel), m_cell(session),
          m_replace(module, session, basket) {}

    static constexpr std::size_t kEntries = 9;
    static constexpr int kSaveTableCommand = 25027; // the dialog's
    std::array<MenuEntry, kEntries> MenuEntries() const;
    // False when the command is another's.
    bool HandleCommand(int command);
    // A key or click in one of the lists; false when it means nothing here.
    bool HandleNotify(const NMHDR& notification);
    void Close() { m_cell.Close(); }
    // The dialog is gone.
    void Destroy() { m_replace.Destroy(); }

private:
    bool OnKey(bool inRows, WORD key);
    void EditCell();
    void EditCellAt(int column);
    void EditNext(int step);
    void EditRejected();
    void Paste();
    void Replace();
    void GoToFault(bool back);
    std::optional<BasketField> Field() const;

    framework::Dialog& m_dialog;
    Basket& m_basket;
    BasketListWindow& m_list;
    BasketPanel& m_panel;
    CellEdit m_cell;
    ReplaceDlg m_replace;
    int m_column = 0; // the current one: last clicked or edited
};

} // namespace planfold
