// A window of a class of our own: derive, override what is wanted, Create.
#pragma once

#include "framework/Subclass.h"
#include "framework/Window.h"

namespace framework {

class CustomWindow : public MessageTarget {
public:
    struct Args {
        HINSTANCE module = nullptr;
        const char* className = nullptr; // registered at the first use
        UINT classStyle = 0;
        const char* caption = "";
        DWORD style = WS_OVERLAPPEDWINDOW;
        DWORD exStyle = 0;
        RECT rect{CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT}; // left, top, right, bottom
        HWND parent = nullptr;
        HMENU menuOrId = nullptr;
        HICON icon = nullptr;
        HBRUSH background = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    };

    CustomWindow() = default;
    CustomWindow(const CustomWindow&) = delete;
    CustomWindow& operator=(const CustomWindow&) = delete;
    ~CustomWindow() override;

    // False when the system refuses; GetLastError says why.
    bool Create(const Args& args);
    void Destroy();
    Window Self() const { return Window(m_handle); }
    HWND Handle() const { return m_handle; }

protected:
    // After the window is gone; the object stays.
    virtual void OnDestroyed() {}
    LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) const {
        return DefWindowProcA(m_handle, message, wParam, lParam);
    }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    HWND m_handle = nullptr;
    HINSTANCE m_module = nullptr;
    const char* m_className = nullptr;
};

} // namespace framework
