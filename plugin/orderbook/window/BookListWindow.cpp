#include "plugin/orderbook/window/BookListWindow.h"

#include "plugin/orderbook/BookLists.h"

#include <string>

namespace planfold {

bool BookListWindow::Attach(HWND list) {
    const auto columns = ListColumns(m_args.columns);
    return m_list.Attach({list, m_args.name, this, columns.data(), static_cast<std::int32_t>(columns.size()),
                          m_args.firstCommand});
}

void BookListWindow::FilterBy(int column, std::string_view text) {
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
