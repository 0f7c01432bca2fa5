#include "plugin/basket/window/BasketCheckDlg.h"

#include "framework/Guard.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <utility>

namespace planfold {

namespace {

constexpr char kName[] = "SIPBasketCheck";
constexpr unsigned kListCommands = 26900; // of a hundred

} // namespace

BasketCheckDlg::BasketCheckDlg(HINSTANCE module, const Session& session)
    : Dialog(module, IDD_BASKET_CHECK), m_session(session) {}

void BasketCheckDlg::Show(std::vector<ReviewLine> lines) {
    BringUp(*this, m_session);
    if (!HasWindow()) return;
    m_list.BeginChanges();
    m_list.RemoveAll();
    m_texts.clear();
    m_lines = std::move(lines);
    // Row 0 is the newest.
    for (std::size_t line = m_lines.size(); line-- > 0;)
        m_list.InsertFront(static_cast<RecordId>(line), kKorvexAsked);
    m_list.EndChanges();
    Item(IDC_CHECK_LIST).Focus();
}

void BasketCheckDlg::OnInit() {
    const auto columns = ListColumns<ListColumn<ReviewField>>(kReviewColumns);
    m_list.Attach({Item(IDC_CHECK_LIST).Handle(), kName, this, columns.data(),
                   static_cast<std::int32_t>(columns.size()), kListCommands});
    LayOut(Self().Dpi());
    ShowAllColumns(Handle(), Item(IDC_CHECK_LIST).Handle());
}

void BasketCheckDlg::LayOut(UINT dpi) {
    m_margin = 0;
    Dialog::LayOut(dpi);
    SetCaptionIcon(IDI_REPEAT);
    RECT list{};
    GetWindowRect(Item(IDC_CHECK_LIST).Handle(), &list);
    POINT corner{list.left, list.top};
    ScreenToClient(Handle(), &corner);
    m_margin = corner.x;
    Arrange();
}

void BasketCheckDlg::Arrange() {
    if (m_margin == 0) return;
    const RECT client = Self().ClientRect();
    Item(IDC_CHECK_LIST).Move({m_margin, m_margin, client.right - m_margin, client.bottom - m_margin});
}

std::optional<LRESULT> BasketCheckDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Arrange();
        return std::nullopt;
    case WM_SYSCOLORCHANGE:
        return Item(IDC_CHECK_LIST).Send(message);
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wParam) != m_list.Handle() || IsOnHeadings(m_list.Handle(), lParam))
            return std::nullopt;
        m_menu.Open(Handle(), RowMenuPlace(m_list.Handle(), lParam), m_list, {});
        return 0;
    case WM_DESTROY:
        m_menu.Close();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

bool BasketCheckDlg::OnCommand(const framework::Command& command) {
    return m_list.HandleCommand(static_cast<std::uint32_t>(command.id));
}

std::optional<LRESULT> BasketCheckDlg::OnNotify(const NMHDR& notification) {
    LRESULT result = 0;
    if (m_list.HandleNotify(&notification, &result)) return result;
    return std::nullopt;
}

void BasketCheckDlg::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                               KorvexText* texts) noexcept {
    framework::Guard([&] {
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string& text =
                *m_texts.insert(ReviewText(m_lines[records[i]], kReviewColumns[column].field)).first;
            texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
        }
    });
}

std::int32_t BasketCheckDlg::RowLook(std::uint32_t record) noexcept {
    constexpr KorvexRowLook looks[] = {kKorvexBad, kKorvexAttention, kKorvexPlain, kKorvexPlain};
    static_assert(std::size(looks) == static_cast<std::size_t>(ReviewKind::count));
    return looks[static_cast<std::size_t>(m_lines[record].kind)];
}

} // namespace planfold
