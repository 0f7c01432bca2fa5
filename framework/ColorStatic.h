// A static text in a colour that tells what it means, in a Dialog.
#pragma once

#include "framework/Colours.h"
#include "framework/Subclass.h"

namespace framework {

class ColorStatic final : public Subclass {
public:
    void Tell(const std::string& text, Meaning meaning) {
        const Window control(Handle());
        if (meaning == m_meaning && control.Text() == text) return;
        m_meaning = meaning;
        control.SetText(text);
        InvalidateRect(Handle(), nullptr, TRUE);
    }

private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message != kReflected + WM_CTLCOLORSTATIC) return std::nullopt;
        const COLORREF text = ColoursOf(m_meaning, GetSysColor(COLOR_BTNFACE)).text;
        if (text == CLR_DEFAULT) return std::nullopt;
        const LRESULT brush = DefWindowProcA(GetParent(Handle()), WM_CTLCOLORSTATIC, wParam, lParam);
        SetTextColor(reinterpret_cast<HDC>(wParam), text);
        return brush;
    }

    Meaning m_meaning = Meaning::plain;
};

} // namespace framework
