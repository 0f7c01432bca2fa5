// The menu of the plug-in's edits is the system's: its entries follow the edit's state, and what it pastes
// passes the edit's own filter.
#include "tests/window/PluginTest.h"

namespace {

void PutOnClipboard(std::string_view text) {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, text.size() + 1);
    text.copy(static_cast<char*>(GlobalLock(memory)), text.size());
    GlobalUnlock(memory);
    SetClipboardData(CF_TEXT, memory);
    CloseClipboard();
}

// The entries Undo, Cut, Copy, Paste, Delete, Select All, a greyed one as "."; the last key goes to the menu's
// `down`th.
std::string UseMenu(HWND edit, int down, WPARAM last) {
    std::string entries;
    SetFocus(edit);
    const probe::WhenShown menu(probe::OpenMenu, [&](HWND open) {
        HMENU shown = probe::MenuOf(open);
        for (int i = 0; i < GetMenuItemCount(shown); ++i) {
            const UINT state = GetMenuState(shown, static_cast<UINT>(i), MF_BYPOSITION);
            if (state & MF_SEPARATOR) continue;
            entries += state & (MF_GRAYED | MF_DISABLED) ? '.' : "UXCPDA"[entries.size()];
        }
        for (int key = 0; key < down; ++key)
            PostMessageA(open, WM_KEYDOWN, VK_DOWN, 1);
        PostMessageA(open, WM_KEYDOWN, last, 1);
    });
    SendMessageA(edit, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(edit), MAKELPARAM(60, 60));
    return entries;
}

TEST_F(PluginTest, TheMenuOfEditsFollowsTheirStateAndPastesThroughTheFilter) {
    HWND dialog = OpenWithDefaults();
    SetForegroundWindow(dialog);
    PutOnClipboard("12x.5.6");
    for (const int control : {IDC_VALUE, IDC_PERIOD, IDC_CLIENT_SEARCH}) {
        SCOPED_TRACE(control);
        HWND edit = GetDlgItem(dialog, control);
        probe::SetEdit(dialog, control, "");
        EXPECT_EQ(UseMenu(edit, 0, VK_ESCAPE), "...P..");
        probe::SetEdit(dialog, control, "7");
        EXPECT_EQ(UseMenu(edit, 0, VK_ESCAPE), "...P.A");
        SendMessageA(edit, EM_SETSEL, 0, -1);
        EXPECT_EQ(UseMenu(edit, 4, VK_RETURN), ".XCPD.");
    }
    EXPECT_EQ(probe::Text(dialog, IDC_VALUE), "12.56");
    EXPECT_TRUE(SelectedAt(dialog, IDC_VALUE).starts_with("5-5")) << "the caret stands at the end";
    // A clean text is left alone, and the caret where the user put it.
    SetFocus(GetDlgItem(dialog, IDC_VALUE));
    SendDlgItemMessageA(dialog, IDC_VALUE, EM_SETSEL, 2, 2);
    PostMessageA(GetFocus(), WM_CHAR, '9', 1);
    probe::Pump();
    EXPECT_EQ(probe::Text(dialog, IDC_VALUE) + " " + SelectedAt(dialog, IDC_VALUE), "129.56 3-3 focus");
}

} // namespace
