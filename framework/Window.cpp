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

void Window::Move(const RECT& rect) const {
    SetWindowPos(m_handle, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void Window::ChangeStyle(LONG_PTR set, LONG_PTR clear) const {
    const LONG_PTR style = GetWindowLongPtrA(m_handle, GWL_STYLE);
    SetWindowLongPtrA(m_handle, GWL_STYLE, (style & ~clear) | set);
}

UINT Window::Dpi() const {
    const UINT dpi = m_handle ? GetDpiForWindow(m_handle) : 0;
    return dpi ? dpi : USER_DEFAULT_SCREEN_DPI;
}

RECT Window::ClientRect() const {
    RECT rect{};
    if (m_handle) GetClientRect(m_handle, &rect);
    return rect;
}

int ComboBox::Add(const std::string& text) const {
    return static_cast<int>(Send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())));
}

int ComboBox::Find(const std::string& text) const {
    return static_cast<int>(
        Send(CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str())));
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

SYSTEMTIME DatePicker::Time() const {
    SYSTEMTIME time{};
    Send(DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&time));
    return time;
}

} // namespace framework
