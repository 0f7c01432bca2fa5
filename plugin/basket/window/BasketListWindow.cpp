#include "plugin/basket/window/BasketListWindow.h"

namespace planfold {

namespace {

constexpr char kBasketListName[] = "SIPBasket";

} // namespace

bool BasketListWindow::Attach(HWND list) {
    const auto columns = ListColumns<BasketColumn>(kBasketListColumns);
    if (!m_list.Attach({list, kBasketListName, this, columns.data(), static_cast<std::int32_t>(columns.size()),
                        FirstCommand(NumberedList::basket)}))
        return false;
    StretchLastText(m_list);
    return true;
}

void BasketListWindow::RemoveAll() {
    m_list.RemoveAll();
    m_cells = {};
    m_states.clear();
}

void BasketListWindow::BeginChanges() {
    ++m_changes;
    m_list.BeginChanges();
}

void BasketListWindow::EndChanges() {
    m_list.EndChanges();
    if (--m_changes == 0) m_shownChanged();
}

void BasketListWindow::ShownRowsChanged(CFilterListCtrl*) noexcept {
    if (m_changes == 0) framework::Guard(m_shownChanged);
}

void BasketListWindow::RemoveSelected() {
    const HWND list = m_list.Handle();
    const std::vector<RecordId> selected = Selected();
    int last = -1;
    for (int row = -1; (row = ListView_GetNextItem(list, row, LVNI_SELECTED)) >= 0;)
        last = row;
    BeginChanges();
    for (const RecordId record : selected)
        m_list.Remove(record);
    EndChanges();
    // Where the last of them stood once those above it were gone.
    const int next = last + 1 - static_cast<int>(selected.size());
    if (next >= 0 && next < static_cast<int>(m_list.ShownCount()))
        ListView_SetItemState(list, next, LVIS_FOCUSED, LVIS_FOCUSED);
}

bool BasketListWindow::GoTo(RecordId record) {
    m_list.SelectOnly(record);
    if (!m_list.IsSelected(record)) return false;
    SetFocus(m_list.Handle());
    return true;
}

void BasketListWindow::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                                 KorvexText* texts) noexcept {
    framework::Guard([&] {
        const BasketField field = kBasketListColumns[column].field;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string_view text = field == kStateOfRow
                                              ? *m_states.insert(m_basket.Outcome().StateText(records[i])).first
                                              : m_cells.Text(m_rows[records[i]], field);
            texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
        }
    });
}

std::int32_t BasketListWindow::RowLook(std::uint32_t record) noexcept {
    constexpr KorvexRowLook looks[] = {kKorvexPlain, kKorvexMuted,     kKorvexGood, kKorvexBad,
                                       kKorvexBad,   kKorvexAttention, kKorvexBad};
    static_assert(std::size(looks) == static_cast<std::size_t>(RowState::count));
    const RowState state = m_rows.State(record);
    return state == RowState::notSent && m_rows.StandsTwice(record) ? kKorvexAttention
                                                                    : looks[static_cast<std::size_t>(state)];
}

} // namespace planfold
