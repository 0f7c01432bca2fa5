#include "plugin/basket/window/ReplaceDlg.h"

#include "plugin/base/Text.h"
#include "plugin/basket/CellJudge.h"

#include <algorithm>
#include <iterator>

namespace planfold {

ReplaceDlg::ReplaceDlg(HINSTANCE module, const Session& session, Basket& basket)
    : Dialog(module, IDD_REPLACE), m_session(session), m_basket(basket) {}

void ReplaceDlg::Open(HWND owner, int points, BasketField field) {
    m_field = field;
    SetFontSize(points);
    if (HasWindow() || !Create(owner)) return;
    DisableOwner(owner);
    Self().Show(true);
}

void ReplaceDlg::OnInit() {
    const auto columns = Item<framework::ComboBox>(IDC_REPLACE_COLUMN);
    int chosen = 0, place = 0;
    for (const BasketColumn& column : kBasketListColumns) {
        if (!IsEditable(column.field)) continue;
        columns.Add(column.heading);
        if (column.field == m_field) chosen = place;
        ++place;
    }
    columns.Select(chosen);
    const bool several = m_basket.Grid().IsAboutSelected();
    Item(IDC_REPLACE_SELECTED).Enable(several);
    Item(IDC_REPLACE_SELECTED).Send(BM_SETCHECK, several ? BST_CHECKED : BST_UNCHECKED);
    ShowCount();
}

CellReplacement ReplaceDlg::Replacement() const {
    int place = Item<framework::ComboBox>(IDC_REPLACE_COLUMN).Selected();
    const auto* column = std::ranges::find_if(
        kBasketListColumns, [&](const BasketColumn& each) { return IsEditable(each.field) && place-- == 0; });
    return {column == std::end(kBasketListColumns) ? kStateOfRow : column->field, Item(IDC_REPLACE_FIND).Text(),
            Item(IDC_REPLACE_BY).Text(), IsChecked(IDC_REPLACE_WHOLE), IsChecked(IDC_REPLACE_SELECTED)};
}

void ReplaceDlg::ShowCount() {
    const CellReplacement replacement = Replacement();
    const std::size_t found = m_basket.Grid().Matches(replacement);
    Item(IDC_REPLACE_COUNT).SetText(replacement.text.empty() ? "" : m_basket.Grid().MatchesText(replacement));
    Item(IDOK).Enable(found > 0);
}

bool ReplaceDlg::OnCommand(const framework::Command& command) {
    if (command.id != IDOK) {
        if (HasWindow() && command.id != IDCANCEL) ShowCount();
        return command.id != IDCANCEL;
    }
    const CellReplacement replacement = Replacement();
    Destroy();
    m_basket.Grid().Replace(replacement);
    return true;
}

} // namespace planfold
