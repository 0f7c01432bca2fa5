// A modeless dialog from a resource. The object outlives its window: Create makes one, Destroy (or the
// user's close) takes it away, and Create may be called again.
#pragma once

#include "framework/DialogLayout.h"
#include "framework/FocusKeeper.h"
#include "framework/Subclass.h"
#include "framework/Window.h"

#include <optional>

namespace framework {

class MessageBoxes;

class Dialog : public MessageTarget {
public:
    Dialog(HINSTANCE module, int resource) : m_module(module), m_resource(resource) {}
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    ~Dialog() override { Destroy(); }

    // False when the system refuses; GetLastError says why.
    bool Create(HWND parent = nullptr);
    // Makes the window over the one that holds `owner`, which is disabled meanwhile, and returns when it is
    // gone. False when the system refuses.
    bool RunModal(HWND owner);
    void Destroy();
    bool HasWindow() const { return m_handle != nullptr; }
    HWND Handle() const { return m_handle; }
    Window Self() const { return Window(m_handle); }

    template <class Control = Window>
    Control Item(int id) const {
        return Control(GetDlgItem(m_handle, id));
    }

    // Points; 0 keeps the template's size. Also called by itself when the DPI changes.
    void SetFontSize(int points);
    int FontSize() const { return m_points; }
    int TemplateFontSize();

protected:
    // The window and its controls exist; the focus goes to the first control afterwards.
    virtual void OnInit() {}
    // WM_CLOSE and Escape.
    virtual void OnClose() { Destroy(); }
    // The window is gone; the object stays.
    virtual void OnDestroyed() {}
    // For the window's font size and DPI, before OnInit and at each change of either. As the template says,
    // unless a dialog that fills another window does it itself.
    virtual void LayOut(UINT dpi);
    // Whether the window is to take the keyboard when it comes up.
    virtual bool TakesFocus() const { return true; }
    // Whether a question can be asked: no box is open. Otherwise that comes to the front, and OnBoxGone is
    // called once it is gone, unless this window goes before.
    bool WaitForBox(const MessageBoxes& boxes);
    // What waited begins anew. False when more has to wait, or it is not the time yet.
    virtual bool OnBoxGone() { return true; }
    // After each new layout.
    virtual void OnLaidOut() {}

    // The icon comes from the module's resources and is square; `side` is in pixels.
    Icon LoadModuleIcon(int resource, int side) const;
    // Puts it into the caption, at the size of the window's DPI.
    void SetCaptionIcon(int resource);

    // The user cannot reach it until this window is gone; then the keyboard is where it was in it.
    void DisableOwner(HWND owner);

    bool OnDpiChanged(UINT dpi, const RECT& suggested) override;

private:
    void EnableOwner();
    void OnBoxTimer();
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    INT_PTR HandleMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HINSTANCE m_module;
    int m_resource;
    HWND m_handle = nullptr;
    HWND m_disabledOwner = nullptr;
    std::optional<FocusKeeper> m_ownersFocus;
    const MessageBoxes* m_waitsFor = nullptr;
    int m_points = 0;
    std::optional<DialogLayout> m_layout;
    Icon m_captionIcon;
};

} // namespace framework
