#include "plugin/controls/window/ListDialog.h"

#include "framework/Guard.h"

#include <numeric>

namespace planfold {

std::optional<LRESULT> CListDialog::ListNotice::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != framework::kReflected + WM_CTLCOLORSTATIC) return std::nullopt;
    SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
    SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOWTEXT));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
}

void CListDialog::OnInit() {
    m_notice.Attach(Item(m_parts.notice).Handle());
    const HWND list = Item(m_parts.list).Handle();
    m_list.Attach({list, m_parts.name, this, m_parts.columns.data(),
                   static_cast<std::int32_t>(m_parts.columns.size()), m_parts.firstCommand});
    if (m_parts.status) m_statusBar.Create(Handle(), m_parts.status, m_parts.name);
    LayOut(Self().Dpi());
    if (m_parts.stretchesLast)
        StretchLastText(m_list);
    else
        ShowAllColumns(Handle(), list);
    KeepWindow(m_list);
}

void CListDialog::LayOut(UINT dpi) {
    m_frame.Renew([&] {
        Dialog::LayOut(dpi);
        SetCaptionIcon(m_parts.icon);
    });
    if (m_parts.status)
        Item(m_parts.status).SetFont(reinterpret_cast<HFONT>(Item(m_parts.button).Send(WM_GETFONT)));
    Arrange();
}

// The list takes what the line above and the status bar below leave.
void CListDialog::Arrange() {
    if (!m_frame.HasRoom()) return;
    if (!m_parts.status) return PlaceList(m_frame.Room(0));
    m_statusBar.Place();
    ShowStatus();
    PlaceList(m_frame.Room(framework::Window(m_statusBar.Handle()).ClientRect().bottom));
}

void CListDialog::ShowStatus() {
    ShowParts(m_statusBar, m_status, Item(m_parts.button).ClientRect().right * 4 / kButtonUnits);
}

void CListDialog::ShowTexts(const std::string& notice, std::array<std::string, 3> status) {
    Item(m_parts.notice).SetText(notice);
    Item(m_parts.notice).Show(!notice.empty());
    m_status = std::move(status);
    ShowStatus();
}

void CListDialog::ListRows(std::span<const std::uint32_t> rows) {
    const auto list = Item(m_parts.list);
    const auto top = list.Send(LVM_GETTOPINDEX);
    const framework::RedrawHold hold(list.Handle());
    m_list.BeginChanges();
    m_list.RemoveAll();
    for (std::size_t i = rows.size(); i-- > 0;)
        m_list.InsertFront(rows[i], kKorvexAsked);
    m_list.EndChanges();
    RECT row{LVIR_BOUNDS, 0, 0, 0};
    if (top <= 0 || !list.Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row))) return;
    list.Send(LVM_SCROLL, 0, (top - list.Send(LVM_GETTOPINDEX)) * (row.bottom - row.top));
}

void CListDialog::ListRows(std::size_t count) {
    std::vector<std::uint32_t> rows(count);
    std::iota(rows.begin(), rows.end(), 0u);
    ListRows(rows);
}

std::optional<LRESULT> CListDialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Arrange();
        return std::nullopt;
    case WM_GETMINMAXINFO:
        m_frame.SetLeastSize(lParam);
        return 0;
    case WM_SYSCOLORCHANGE:
        return Item(m_parts.list).Send(message);
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wParam) != m_list.Handle() || IsOnHeadings(m_list.Handle(), lParam))
            return std::nullopt;
        m_menu.Open(Handle(), RowMenuPlace(m_list.Handle(), lParam), m_list, Entries());
        return 0;
    case WM_DESTROY:
        m_menu.Close();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

bool CListDialog::OnCommand(const framework::Command& command) {
    return m_list.HandleCommand(static_cast<std::uint32_t>(command.id));
}

std::optional<LRESULT> CListDialog::OnNotify(const NMHDR& notification) {
    LRESULT result = 0;
    return m_list.HandleNotify(&notification, &result) ? std::optional(result) : std::nullopt;
}

void CListDialog::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                            KorvexText* texts) noexcept {
    framework::Guard([&] {
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string_view text = Cell(records[i], column);
            texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
        }
    });
}

void CListDialog::ShownRowsChanged(CFilterListCtrl*) noexcept {
    framework::Guard([&] { OnShownRows(); });
}

std::int32_t CListDialog::RowLook(std::uint32_t record) noexcept {
    return Look(record);
}

} // namespace planfold
