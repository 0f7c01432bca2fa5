// Colours by what they mean. Only a help to the eye: what a colour says must stand in a text as well.
#pragma once

#include "framework/Subclass.h"

#include <windows.h>

#include <commctrl.h>

#include <cstdint>

namespace framework {

enum class Meaning : std::int32_t { plain, muted, attention, good, bad };

struct Colours {
    COLORREF text = CLR_DEFAULT; // the window's own
    COLORREF background = CLR_DEFAULT;
};

bool IsHighContrast();
// The colours suit a window with that background. In high contrast, and for what is plain, they are its own.
Colours ColoursOf(Meaning meaning, COLORREF windowBackground);

// A static text in a colour that tells what it means, in a Dialog.
class ColorStatic final : public Subclass {
public:
    void Tell(const std::string& text, Meaning meaning);

private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    Meaning m_meaning = Meaning::plain;
};

} // namespace framework
