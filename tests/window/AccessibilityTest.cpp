// What a screen reader and the keyboard need of every dialog template, and of the lists of the open windows:
// names by the system's rule, underlined letters that mean one control, a default button, headings.
#include "tests/window/BookWindowTest.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

bool HasStyle(HWND window, DWORD style) {
    return (static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)) & style) == style;
}

DWORD TypeOf(HWND window, DWORD mask) {
    return static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)) & mask;
}

bool IsLabel(HWND window) {
    return probe::ClassOf(window) == "Static" && TypeOf(window, SS_TYPEMASK) != SS_OWNERDRAW
           && TypeOf(window, SS_TYPEMASK) != SS_ICON;
}

bool IsDefault(HWND window) {
    return probe::ClassOf(window) == "Button" && TypeOf(window, BS_TYPEMASK) == BS_DEFPUSHBUTTON;
}

// The label directly before it, past what is hidden; null when something else is there.
HWND LabelBefore(HWND control) {
    HWND before = control;
    do {
        before = GetWindow(before, GW_HWNDPREV);
    } while (before && !HasStyle(before, WS_VISIBLE));
    return before && IsLabel(before) ? before : nullptr;
}

std::string LabelOf(HWND control) {
    const HWND label = LabelBefore(control);
    return label ? probe::Text(label) : "";
}

char MnemonicOf(const std::string& text) {
    for (std::size_t at = text.find('&'); at != text.npos && at + 1 < text.size(); at = text.find('&', at + 2))
        if (text[at + 1] != '&') return static_cast<char>(text[at + 1] | 0x20);
    return '\0';
}

bool IsTyped(HWND control) {
    static const std::set<std::string> kinds{"Edit", "ComboBox", "SysDateTimePick32"};
    return kinds.contains(probe::ClassOf(control));
}

// What a control shows is its value, not its name, where the user can change it.
bool IsNamed(HWND control) {
    return !LabelOf(control).empty() || (!IsTyped(control) && !probe::Text(control).empty());
}

// OK, Cancel, and what the forms of orders have always had: these are reached by Enter, Escape and Tab.
bool GoesWithoutMnemonic(HWND control) {
    static const std::set<int> ids{IDOK, IDCANCEL, IDC_SUBMIT, IDC_CLIENT_SEARCH_MODE};
    if (ids.contains(GetDlgCtrlID(control))) return true;
    const HWND label = LabelBefore(control);
    return IsTyped(control)
           && ((label && HasStyle(label, SS_NOPREFIX))
               || (probe::ClassOf(control) == "Edit" && HasStyle(control, ES_READONLY)));
}

class Accessibility : public BookWindowTest {
protected:
    static std::vector<WORD> Templates(HMODULE module) {
        std::vector<WORD> found;
        EnumResourceNamesA(
            module, RT_DIALOG,
            [](HMODULE, LPCSTR, LPSTR name, LONG_PTR to) -> BOOL {
                reinterpret_cast<std::vector<WORD>*>(to)->push_back(LOWORD(reinterpret_cast<ULONG_PTR>(name)));
                return TRUE;
            },
            reinterpret_cast<LONG_PTR>(&found));
        return found;
    }

    static void ExpectReachable(HWND window) {
        std::map<char, std::string> letters;
        int defaults = 0, lists = 0, needed = 0;
        for (HWND control : probe::Children(window)) {
            const std::string kind = probe::ClassOf(control), text = probe::Text(control);
            SCOPED_TRACE(kind + " " + std::to_string(GetDlgCtrlID(control)) + " '" + text + "'");
            defaults += IsDefault(control);
            lists += kind == "SysListView32";
            needed += GetDlgCtrlID(control) == IDOK;
            const bool isText = kind == "Button" || (IsLabel(control) && !HasStyle(control, SS_NOPREFIX));
            if (const char letter = isText ? MnemonicOf(text) : '\0') {
                EXPECT_TRUE(letters.emplace(letter, text).second)
                    << "the letter of '" << letters[letter] << "'";
            } else if (kind == "Button" && HasStyle(control, WS_VISIBLE | WS_TABSTOP)) {
                EXPECT_TRUE(GoesWithoutMnemonic(control)) << "no letter is underlined";
            }
            if (!HasStyle(control, WS_VISIBLE) || IsLabel(control)) continue;
            if (kind == "Static" && TypeOf(control, SS_TYPEMASK) == SS_ICON)
                continue; // beside a label that says it
            EXPECT_TRUE(IsNamed(control)) << "no name";
            EXPECT_TRUE(!IsTyped(control) || MnemonicOf(LabelOf(control)) || GoesWithoutMnemonic(control))
                << "no letter is underlined";
        }
        EXPECT_LE(defaults, 1);
        EXPECT_TRUE(defaults == 1 || (lists && !needed)) << "Enter does nothing";
    }
};

TEST_F(Accessibility, EveryTemplateNamesItsControlsAndIsReachedByKeys) {
    std::size_t seen = 0;
    for (const HMODULE module : {plugin->Module(), GetModuleHandleA("KorvexControls.dll")})
        for (const WORD id : Templates(module)) {
            SCOPED_TRACE(id);
            const HWND window = CreateDialogParamA(
                module, MAKEINTRESOURCEA(id), Frame(),
                [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
            ASSERT_NE(window, nullptr);
            ExpectReachable(window);
            DestroyWindow(window);
            ++seen;
        }
    EXPECT_GE(seen, 21u);
}

TEST_F(Accessibility, EveryColumnOfEveryListHasAHeading) {
    constexpr int dayReport = 25103, upcoming = 25105, runs = 25106;
    Open();
    Pick("SIP Basket Entry");
    for (const int command : {dayReport, upcoming, runs})
        Command(command);
    const HWND basket = probe::FindDialog("Planfold Basket Order");
    SendMessageA(basket, WM_COMMAND, IDC_BASKET_CHECK, 0);
    std::vector<HWND> windows = PluginWindows();
    windows.push_back(dialog);
    std::size_t lists = 0;
    for (const HWND window : windows)
        for (const HWND list : probe::Children(window)) {
            if (probe::ClassOf(list) != "SysListView32") continue;
            ++lists;
            const HWND headings = ListView_GetHeader(list);
            const int count = Header_GetItemCount(headings);
            EXPECT_GT(count, 0) << probe::Text(window);
            for (int column = 0; column < count; ++column) {
                char text[64] = "";
                HDITEMA heading{};
                heading.mask = HDI_TEXT;
                heading.pszText = text;
                heading.cchTextMax = sizeof text;
                SendMessageA(headings, HDM_GETITEMA, static_cast<WPARAM>(column),
                             reinterpret_cast<LPARAM>(&heading));
                EXPECT_STRNE(text, "") << probe::Text(window) << ", column " << column;
            }
        }
    EXPECT_GE(lists, 8u);
}

} // namespace
