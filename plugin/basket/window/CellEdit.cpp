#include "plugin/basket/window/CellEdit.h"

#include "framework/Files.h"
#include "framework/Window.h"

#include <commctrl.h>

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr UINT kLeave = WM_APP + 1;   // the focus has gone elsewhere
constexpr WPARAM kLongestText = 1022; // of a file's line

// Of the cell, in the list's client area.
RECT CellPlace(HWND list, int row, int column) {
    ListView_EnsureVisible(list, row, FALSE);
    RECT client{}, cell{};
    GetClientRect(list, &client);
    const auto read = [&] {
        ListView_GetSubItemRect(list, row, column, LVIR_LABEL, &cell);
        // The first column's is the whole row's.
        if (column == 0) cell.right = cell.left + ListView_GetColumnWidth(list, 0);
    };
    read();
    const LONG hidden =
        cell.left < 0 ? cell.left : std::min(cell.left, std::max(0L, cell.right - client.right));
    if (hidden != 0) {
        ListView_Scroll(list, hidden, 0);
        read();
    }
    cell.right = std::min(cell.right, client.right);
    return cell;
}

std::string Heading(HWND list, int column) {
    char text[64] = "";
    HDITEMA heading{};
    heading.mask = HDI_TEXT;
    heading.pszText = text;
    heading.cchTextMax = sizeof text;
    SendMessageA(ListView_GetHeader(list), HDM_GETITEMA, static_cast<WPARAM>(column),
                 reinterpret_cast<LPARAM>(&heading));
    return text;
}

} // namespace

void CellEdit::Open(HWND dialog, HWND list, int row, int column, const std::string& text, Take take, Go go) {
    Close();
    RECT place = CellPlace(list, row, column);
    MapWindowPoints(list, dialog, reinterpret_cast<POINT*>(&place), 2);
    const HWND edit = CreateWindowExA(
        0, WC_EDITA, text.c_str(), WS_CHILD | WS_BORDER | WS_CLIPSIBLINGS | ES_AUTOHSCROLL, place.left,
        place.top, place.right - place.left, place.bottom - place.top, dialog, nullptr, nullptr, nullptr);
    if (!Attach(edit)) return;
    m_list = list;
    m_take = std::move(take);
    m_go = std::move(go);
    const framework::Window window(edit);
    window.Send(WM_SETFONT, static_cast<WPARAM>(SendMessageA(list, WM_GETFONT, 0, 0)), FALSE);
    window.Send(EM_LIMITTEXT, kLongestText);
    window.Send(EM_SETSEL, 0, -1);
    SetWindowPos(edit, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    // A label directly before it names it for screen readers; this one takes no place.
    m_label = CreateWindowExA(0, WC_STATICA, Heading(list, column).c_str(), WS_CHILD | WS_VISIBLE | SS_NOPREFIX,
                              place.left, place.top, 0, 0, dialog, nullptr, nullptr, nullptr);
    SetWindowPos(m_label, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    SetFocus(edit);
}

void CellEdit::Close() {
    m_balloon.Hide();
    const HWND edit = Handle();
    Detach();
    m_balloon.Forget();
    if (edit) DestroyWindow(edit);
    if (const HWND label = std::exchange(m_label, nullptr); IsWindow(label)) DestroyWindow(label);
}

void CellEdit::Accept(int step) {
    const HWND edit = Handle();
    const Take take = m_take;
    const Go go = m_go;
    m_taking = true;
    const auto refusal = take(framework::Window(edit).Text());
    m_taking = false;
    // A box of the taking may have let the window be closed.
    if (Handle() != edit || !edit) return;
    if (refusal) {
        SetFocus(edit);
        m_balloon.Show(edit, L"Not taken", framework::Wide(*refusal, CP_ACP), TTI_WARNING);
        return;
    }
    const HWND list = m_list;
    Close();
    SetFocus(list);
    if (step != 0) go(step);
}

std::optional<LRESULT> CellEdit::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_GETDLGCODE:
        return Default(message, wParam, lParam) | DLGC_WANTALLKEYS;
    case WM_CHAR:
        // These are keys here, and no text.
        if (wParam == VK_RETURN || wParam == VK_TAB || wParam == VK_ESCAPE) return 0;
        m_balloon.Hide();
        return std::nullopt;
    case WM_KEYDOWN:
        if (wParam == VK_RETURN || wParam == VK_TAB) {
            Accept(wParam == VK_RETURN ? 0 : GetKeyState(VK_SHIFT) < 0 ? -1 : 1);
            return 0;
        }
        if (wParam == VK_ESCAPE) {
            SetFocus(m_list);
            Close();
            return 0;
        }
        return std::nullopt;
    case WM_KILLFOCUS:
        PostMessageA(Handle(), kLeave, 0, 0);
        return std::nullopt;
    case kLeave:
        if (!m_taking && GetFocus() != Handle()) Close();
        return 0;
    default:
        return std::nullopt;
    }
}

} // namespace planfold
