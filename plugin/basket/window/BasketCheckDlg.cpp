#include "plugin/basket/window/BasketCheckDlg.h"

#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <utility>

namespace planfold {

BasketCheckDlg::BasketCheckDlg(HINSTANCE module, Session& session)
    : CListDialog(module, IDD_BASKET_CHECK, session,
                  {IDI_REPEAT,
                   IDC_CHECK_LIST,
                   {},
                   {},
                   {},
                   "SIPBasketCheck",
                   ListColumns<ListColumn<ReviewField>>(kReviewColumns),
                   FirstCommand(NumberedList::basketCheck)}) {}

void BasketCheckDlg::Show(std::vector<ReviewLine> lines) {
    BringUp(*this, m_session);
    if (!HasWindow()) return;
    List().RemoveAll();
    m_texts.clear();
    m_lines = std::move(lines);
    ListRows(m_lines.size());
    Item(IDC_CHECK_LIST).Focus();
}

std::string_view BasketCheckDlg::Cell(std::uint32_t line, std::int32_t column) const {
    return *m_texts.insert(ReviewText(m_lines[line], kReviewColumns[column].field)).first;
}

KorvexRowLook BasketCheckDlg::Look(std::uint32_t line) const {
    constexpr KorvexRowLook looks[] = {kKorvexBad, kKorvexAttention, kKorvexPlain, kKorvexPlain};
    static_assert(std::size(looks) == static_cast<std::size_t>(ReviewKind::count));
    return looks[static_cast<std::size_t>(m_lines[line].kind)];
}

} // namespace planfold
