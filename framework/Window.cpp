#include "framework/Window.h"

namespace framework {

std::string Window::Text() const {
    if (!m_handle) return {};
    // The length is only an upper bound, and another thread's window may change in between.
    std::string text(static_cast<std::size_t>(GetWindowTextLengthA(m_handle)) + 1, '\0');
    text.resize(static_cast<std::size_t>(GetWindowTextA(m_handle, text.data(), static_cast<int>(text.size()))));
    return text;
}

void Window::SetText(const std::string& text) const {
    if (m_handle) SetWindowTextA(m_handle, text.c_str());
}

bool Window::BringToFront() const {
    if (!m_handle) return false;
    HWND first = m_handle, next = GetTopWindow(nullptr);
    while (next && !IsWindowEnabled(first)) {
        const bool isBefore = GetWindow(next, GW_OWNER) == first && IsWindowVisible(next);
        if (isBefore) first = next;
        next = isBefore ? GetTopWindow(nullptr) : GetWindow(next, GW_HWNDNEXT);
    }
    SetForegroundWindow(first);
    return first == m_handle;
}

void Window::Move(const RECT& rect) const {
    if (!m_handle) return;
    SetWindowPos(m_handle, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void Window::ChangeStyle(LONG_PTR set, LONG_PTR clear) const {
    if (!m_handle) return;
    const LONG_PTR style = GetWindowLongPtrA(m_handle, GWL_STYLE);
    SetWindowLongPtrA(m_handle, GWL_STYLE, (style & ~clear) | set);
}

UINT Window::Dpi() const {
    const UINT dpi = m_handle ? GetDpiForWindow(m_handle) : 0;
    return dpi ? dpi : USER_DEFAULT_SCREEN_DPI;
}

TextScale Window::Scale() const {
    const UINT dpi = Dpi();
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(Send(WM_GETFONT)), sizeof font, &font);
    // A positive height is one of the system's own fonts, with its leading.
    const int points = font.lfHeight < 0 ? MulDiv(-font.lfHeight, 72, static_cast<int>(dpi)) : 0;
    return {dpi, points ? points : TextScale::kUsualPoints};
}

RECT Window::ClientRect() const {
    RECT rect{};
    if (m_handle) GetClientRect(m_handle, &rect);
    return rect;
}

HINSTANCE ModuleHolding(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCSTR>(address), &module);
    return module;
}

int ComboBox::Add(const std::string& text) const {
    return static_cast<int>(Send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())));
}

int ComboBox::Find(const std::string& text) const {
    return static_cast<int>(
        Send(CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str())));
}

int ComboBox::FindStart(const std::string& text, int after) const {
    return static_cast<int>(
        Send(CB_FINDSTRING, static_cast<WPARAM>(after), reinterpret_cast<LPARAM>(text.c_str())));
}

std::string ComboBox::Item(int index) const {
    const LRESULT length = Send(CB_GETLBTEXTLEN, static_cast<WPARAM>(index));
    if (length <= 0) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    const LRESULT copied =
        Send(CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
    text.resize(copied > 0 ? static_cast<std::size_t>(copied) : 0);
    return text;
}

std::vector<std::string> ComboBox::Items() const {
    std::vector<std::string> items;
    for (int i = 0, count = Count(); i < count; ++i)
        items.push_back(Item(i));
    return items;
}

void ReportList::AddColumn(const Column& column) const {
    LVCOLUMNA insert{};
    insert.mask = LVCF_TEXT | LVCF_WIDTH;
    insert.cx = Scale()(column.width);
    insert.pszText = const_cast<char*>(column.heading);
    const LRESULT count = SendMessageA(ListView_GetHeader(Handle()), HDM_GETITEMCOUNT, 0, 0);
    Send(LVM_INSERTCOLUMNA, static_cast<WPARAM>(count), reinterpret_cast<LPARAM>(&insert));
}

void ReportList::SetColumnWidth(int index, int width) const {
    Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(index), Scale()(width));
}

void ReportList::SetCount(int count) const {
    Send(LVM_SETITEMCOUNT, static_cast<WPARAM>(count), 0);
    RedrawWindow(Handle(), nullptr, nullptr, RDW_INVALIDATE);
}

void ReportList::SelectRow(int row) const {
    LVITEMA state{};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
    if (row < 0) return;
    state.state = state.stateMask;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
    Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

int ReportList::SelectedRow() const {
    return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void ReportList::SetLook(int rowHeight) const {
    constexpr DWORD look = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, look, look);
    // A report list makes its rows one pixel higher than its images. It destroys the last list it was given.
    const HIMAGELIST images = ImageList_Create(1, Scale()(rowHeight) - 1, ILC_COLOR, 0, 1);
    const LRESULT previous = Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));
    if (previous) ImageList_Destroy(reinterpret_cast<HIMAGELIST>(previous));
}

SYSTEMTIME DatePicker::Time() const {
    SYSTEMTIME time{};
    Send(DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&time));
    return time;
}

} // namespace framework
