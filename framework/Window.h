// Windows and controls by kind: small values that hold a handle and say what can be done with it.
// They own nothing; a null handle makes every call do nothing and every question answer empty.
// Positions and sizes are pixels of the window's own DPI.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <string_view>
#include <vector>

namespace framework {

// Pixels at 96 DPI as pixels at `dpi`.
inline int Scaled(int pixels, UINT dpi) {
    return MulDiv(pixels, static_cast<int>(dpi), USER_DEFAULT_SCREEN_DPI);
}

// How much larger a window's texts are than at 96 DPI and in 8 points, for which lengths are laid down.
class TextScale {
public:
    static constexpr int kUsualPoints = 8;

    TextScale() = default;
    TextScale(UINT dpi, int points) : m_factor(static_cast<int>(dpi) * points) {}

    int operator()(int pixels) const { return MulDiv(pixels, m_factor, kUsual); }
    // Back to the length that was laid down.
    int Undo(int pixels) const { return MulDiv(pixels, kUsual, m_factor); }
    bool operator==(const TextScale&) const = default;

private:
    static constexpr int kUsual = USER_DEFAULT_SCREEN_DPI * kUsualPoints;
    int m_factor = kUsual;
};

class Window {
public:
    Window() = default;
    explicit Window(HWND handle) : m_handle(handle) {}

    HWND Handle() const { return m_handle; }
    explicit operator bool() const { return m_handle && IsWindow(m_handle); }
    bool operator==(const Window&) const = default;

    std::string Text() const;
    void SetText(const std::string& text) const;
    void Enable(bool enabled) const {
        if (m_handle) EnableWindow(m_handle, enabled);
    }
    void Show(bool shown) const {
        if (m_handle) ShowWindow(m_handle, shown ? SW_SHOW : SW_HIDE);
    }
    void Focus() const {
        if (m_handle) SetFocus(m_handle);
    }
    // To the front of the others and to the keyboard. A disabled one gives way to the window that it waits for:
    // then, and without a window, false.
    bool BringToFront() const;
    void Move(const RECT& rect) const;
    void SetFont(HFONT font) const { Send(WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE); }
    // Sets and clears style bits.
    void ChangeStyle(LONG_PTR set, LONG_PTR clear) const;
    // Dots per inch of the monitor that the window is on; 96 without a window.
    UINT Dpi() const;
    // Its DPI and the font that it was given decide.
    TextScale Scale() const;
    RECT ClientRect() const;
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return m_handle ? SendMessageA(m_handle, message, wParam, lParam) : 0;
    }

private:
    HWND m_handle = nullptr;
};

// While one lives, what changes in the window is not drawn; afterwards all is drawn at once.
class RedrawHold {
public:
    // Switching drawing on again would also show a hidden window: that one is left alone.
    explicit RedrawHold(HWND window) : m_window(IsWindowVisible(window) ? window : nullptr) {
        m_window.Send(WM_SETREDRAW, FALSE);
    }
    RedrawHold(const RedrawHold&) = delete;
    RedrawHold& operator=(const RedrawHold&) = delete;
    ~RedrawHold() {
        if (!m_window) return;
        m_window.Send(WM_SETREDRAW, TRUE);
        RedrawWindow(m_window.Handle(), nullptr, nullptr,
                     RDW_ERASE | RDW_FRAME | RDW_INVALIDATE | RDW_ALLCHILDREN);
    }

private:
    Window m_window;
};

// The library or program that the address lies in.
HINSTANCE ModuleHolding(const void* address);

class ComboBox : public Window {
public:
    using Window::Window;

    void Clear() const { Send(CB_RESETCONTENT); }
    int Add(const std::string& text) const;
    int Count() const { return static_cast<int>(Send(CB_GETCOUNT)); }
    int Selected() const { return static_cast<int>(Send(CB_GETCURSEL)); }
    void Select(int index) const { Send(CB_SETCURSEL, static_cast<WPARAM>(index)); }
    // The first item that equals the text, ignoring case; -1 when there is none.
    int Find(const std::string& text) const;
    // The first item after `after` that begins with the text, ignoring case, going on from the top; -1 when
    // there is none.
    int FindStart(const std::string& text, int after) const;
    std::string Item(int index) const;
    std::vector<std::string> Items() const;
};

class Edit : public Window {
public:
    using Window::Window;

    void DigitsOnly(bool on) const { on ? ChangeStyle(ES_NUMBER, 0) : ChangeStyle(0, ES_NUMBER); }
};

// A report list that asks for its cells (owner data).
class ReportList : public Window {
public:
    struct Column {
        const char* heading;
        int width; // pixels at 96 DPI and 8 points
    };

    using Window::Window;

    void AddColumn(const Column& column) const;
    // The width grows with the list's DPI and font.
    void SetColumnWidth(int index, int width) const;
    void SetCount(int count) const;
    // Selects and focuses the row alone and scrolls it into view; -1 selects nothing.
    void SelectRow(int row) const;
    // -1 when none is.
    int SelectedRow() const;
    // Full rows, drawn without flicker, `rowHeight` pixels high at 96 DPI and 8 points.
    void SetLook(int rowHeight) const;
};

class DatePicker : public Window {
public:
    using Window::Window;

    // `format` is in the picker's own notation, for example "dd'/'MMM'/'yyyy".
    void SetFormat(const char* format) const { Send(DTM_SETFORMATA, 0, reinterpret_cast<LPARAM>(format)); }
    SYSTEMTIME Time() const;
    void SetTime(const SYSTEMTIME& time) const {
        Send(DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&time));
    }
};

} // namespace framework
