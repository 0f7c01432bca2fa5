// The hollow rectangle that shows, while a pane is dragged, where it would go.
#pragma once

#include "framework/CustomWindow.h"

namespace vesk {

class DropPreview : public framework::CustomWindow {
public:
    // In screen pixels; `owner` keeps it above itself. An empty rectangle hides it.
    void Show(HWND owner, const RECT& rect);
    void Hide() { framework::Window(Handle()).Show(false); }
};

} // namespace vesk
