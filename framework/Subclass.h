// A control of the system with behaviour of our own in front of it: derive, Attach, override OnMessage.
#pragma once

#include "framework/MessageTarget.h"
#include "framework/Window.h"

namespace framework {

class Subclass : public MessageTarget {
public:
    Subclass() = default;
    Subclass(const Subclass&) = delete;
    Subclass& operator=(const Subclass&) = delete;
    ~Subclass() override { Detach(); }

    // Until Detach or the control's end. False when the system refuses.
    bool Attach(HWND control);
    void Detach();
    HWND Handle() const { return m_control; }

protected:
    // The control is gone; the object stays.
    virtual void OnGone() {}
    // What the control itself does with the message.
    LRESULT Default(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return m_control ? DefSubclassProc(m_control, message, wParam, lParam) : 0;
    }

private:
    static LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR self) noexcept;
    // Several may stand in front of one control.
    UINT_PTR Id() const { return reinterpret_cast<UINT_PTR>(this); }

    HWND m_control = nullptr;
};

} // namespace framework
