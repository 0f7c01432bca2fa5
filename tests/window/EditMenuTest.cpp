// The menu of the plug-in's edits is the system's: its entries follow the edit's state, and what it pastes
// passes the edit's own filter.
#include "tests/window/PluginTest.h"

#include <cstring>

namespace {

class EditMenu : public PluginTest {
protected:
    static void PutOnClipboard(const char* text) {
        ASSERT_TRUE(OpenClipboard(nullptr));
        EmptyClipboard();
        if (text) {
            HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, std::strlen(text) + 1);
            std::strcpy(static_cast<char*>(GlobalLock(memory)), text);
            GlobalUnlock(memory);
            SetClipboardData(CF_TEXT, memory);
        }
        CloseClipboard();
    }
    // The system's entries (Undo, Cut, Copy, Paste, Delete, Select All), a greyed one as "."; `pick` counts
    // all of them, from 1.
    static std::string Menu(HWND edit, int pick = 0) {
        std::string entries;
        SetFocus(edit);
        const probe::WhenShown menu(probe::OpenMenu, [&](HWND open) {
            HMENU shown = probe::MenuOf(open);
            for (int i = 0; i < GetMenuItemCount(shown); ++i) {
                const UINT state = GetMenuState(shown, static_cast<UINT>(i), MF_BYPOSITION);
                if (!(state & MF_SEPARATOR))
                    entries += state & (MF_GRAYED | MF_DISABLED) ? '.' : "UXCPDA"[entries.size()];
            }
            for (int down = 0; down < pick; ++down)
                PostMessageA(open, WM_KEYDOWN, VK_DOWN, 1);
            PostMessageA(open, WM_KEYDOWN, pick ? WPARAM{VK_RETURN} : WPARAM{VK_ESCAPE}, 1);
        });
        SendMessageA(edit, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(edit), MAKELPARAM(60, 60));
        return entries;
    }
};

TEST_F(EditMenu, IsTheSystemsAndPastesThroughTheFilter) {
    HWND dialog = OpenWithDefaults();
    SetForegroundWindow(dialog);
    for (const int control : {order::kValue, order::kPeriod, order::kClientSearch}) {
        SCOPED_TRACE(control);
        HWND edit = GetDlgItem(dialog, control);
        probe::SetEdit(dialog, control, "");
        SendMessageA(edit, EM_EMPTYUNDOBUFFER, 0, 0);
        PutOnClipboard(nullptr);
        EXPECT_EQ(Menu(edit), "......");
        PutOnClipboard("12x.5.6");
        EXPECT_EQ(Menu(edit), "...P..");
        probe::SetEdit(dialog, control, "7");
        EXPECT_EQ(Menu(edit), "...P.A");
        SendMessageA(edit, EM_SETSEL, 0, -1);
        constexpr int paste = 4;
        EXPECT_EQ(Menu(edit, paste), ".XCPD.");
        EXPECT_NE(probe::Text(edit), "7");
    }
    EXPECT_EQ(probe::Text(dialog, order::kValue), "12.56");
}

} // namespace
