#include "plugin/orderbook/window/OrderBookDlg.h"

#include <algorithm>
#include <string>
#include <utility>

namespace planfold {

bool BookListWindow::Attach(HWND list) {
    const auto columns = ListColumns(m_args.columns);
    if (!m_list.Attach({list, m_args.name, this, columns.data(), static_cast<std::int32_t>(columns.size()),
                        m_args.firstCommand}))
        return false;
    m_enter.Attach(list);
    m_extras = ExtrasOf(m_list);
    if (!m_extras) return true;
    m_extras->Watch(this);
    m_extras->SumBy(kSideColumn, kAmountColumn, kQuantityColumn);
    m_extras->StretchLastText(1);
    return true;
}

void BookListWindow::SetDay(const LocalDateTime& today) {
    if (!m_extras || today == m_today) return;
    m_today = today;
    std::vector<KorvexCondition> conditions;
    for (const BookCondition& condition : m_args.conditions)
        conditions.push_back({condition.name, condition.isSwitch, 1});
    m_extras->SetConditions(conditions.data(), static_cast<std::int32_t>(conditions.size()));
}

// The control follows once for what is selected, and once for what goes.
std::vector<RecordId> BookListWindow::RemoveSelected(std::span<const RecordId> records) {
    std::vector<RecordId> selected = Selected(), removed;
    std::ranges::sort(selected);
    m_list.BeginChanges();
    for (const RecordId record : records)
        if (std::ranges::binary_search(selected, record)) {
            m_list.Deselect(record);
            m_list.Remove(record);
            removed.push_back(record);
        }
    m_list.EndChanges();
    return removed;
}

void BookListWindow::SetEmptyText(const char* text) {
    if (m_extras && std::exchange(m_emptyText, text) != text) m_extras->SetEmptyText(text);
}

std::int32_t BookListWindow::Meets(std::uint32_t record, std::int32_t condition) noexcept {
    return framework::Guard(std::int32_t{0}, [&] {
        const BookDay day{m_today, m_session.identity.loginId};
        return std::int32_t{
            m_args.conditions[static_cast<std::size_t>(condition)].meets(m_records[record], day)};
    });
}

std::optional<std::vector<SideSum>> BookListWindow::Sums(bool ofSelected) const {
    constexpr std::int32_t mostSides = 4;
    KorvexSide sides[mostSides];
    const std::int32_t count = m_extras ? m_extras->Sums(ofSelected, sides, mostSides) : -1;
    if (count < 0) return std::nullopt;
    std::vector<SideSum> sums;
    for (const KorvexSide& side : std::span(sides, static_cast<std::size_t>(count)))
        sums.push_back({std::string(side.name.data, side.name.length), side.rows, side.paise, side.quantity});
    std::ranges::sort(sums, {}, &SideSum::side); // not as the rows came
    return sums;
}

BookStatus BookListWindow::Status() const {
    BookStatus status;
    status.rows = m_list.RowCount();
    status.shown = m_list.ShownCount();
    status.client = m_client;
    status.view = m_extras ? m_extras->ViewName() : "";
    status.selected = m_list.SelectedCount();
    status.sums = Sums(status.selected > 1);
    return status;
}

void BookListWindow::SelectFocused() {
    const std::uint32_t focused = m_list.Focused();
    if (m_list.SelectedCount() == 0 && focused != kNoRecord) m_list.SelectOnly(focused);
}

void BookListWindow::FilterBy(int column, std::string_view text) {
    m_client = text;
    m_list.SetOwnerFilter(column, text.empty() ? nullptr : std::string(text).c_str());
}

void BookListWindow::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                               KorvexText* texts) noexcept {
    const OrderField field = m_args.columns[static_cast<std::size_t>(column)].field;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string_view text = m_records[records[i]].Text(field);
        texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
    }
}

std::int32_t BookListWindow::RowLook(std::uint32_t record) noexcept {
    const std::string_view status = m_records[record].Text(OrderField::sipStatus);
    if (status == kPausedStatus) return kKorvexAttention;
    return IsCancelled(status) || status == "expired" ? kKorvexMuted : kKorvexPlain;
}

} // namespace planfold
