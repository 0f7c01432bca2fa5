// What a screen reader and the keyboard need of every dialog template, and of the lists of the open windows:
// names by the system's rule, underlined letters that mean one control, a default button, headings.
#include "framework/Colours.h"
#include "tests/window/BookWindowTest.h"

#include <oleacc.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace {

constexpr int kDayReport = 25103, kUpcoming = 25105, kRuns = 25106;

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

// As a screen reader is told it: the label's text, or the control's own where that is not its value. Not every
// system looks for labels for every class, so that is done here.
std::string NameOf(HWND control) {
    if (probe::ClassOf(control) != "Edit") {
        const std::string label = probe::ClassOf(control) == "Button" ? "" : LabelOf(control);
        return label.empty() && !IsTyped(control) ? probe::Text(control) : label;
    }
    void* found = nullptr;
    if (FAILED(CreateStdAccessibleObject(control, OBJID_CLIENT, __uuidof(IAccessible), &found))) return "";
    auto* const object = static_cast<IAccessible*>(found);
    VARIANT self{};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR text = nullptr;
    std::string name;
    if (object->get_accName(self, &text) == S_OK && text) name.assign(text, text + SysStringLen(text));
    SysFreeString(text);
    object->Release();
    return name;
}

// A label that is there for another purpose would name the list, and its text changes.
bool IsNamedByItself(HWND list) {
    const HWND label = LabelBefore(list);
    return !label || MnemonicOf(probe::Text(label));
}

void ExpectNamed(HWND window) {
    for (HWND control = GetWindow(window, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
        const std::string kind = probe::ClassOf(control);
        SCOPED_TRACE(kind + " " + std::to_string(GetDlgCtrlID(control)) + " '" + probe::Text(control) + "'");
        if (!HasStyle(control, WS_VISIBLE) || kind == "Static" || kind == "msctls_statusbar32") continue;
        EXPECT_NE(NameOf(control), "");
        EXPECT_TRUE(kind != "SysListView32" || IsNamedByItself(control)) << "named " << LabelOf(control);
    }
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
            ExpectNamed(window);
            DestroyWindow(window);
            ++seen;
        }
    EXPECT_GE(seen, 21u);
}

TEST_F(Accessibility, EveryColumnOfEveryListHasAHeading) {
    Open();
    Pick("SIP Basket Entry");
    for (const int command : {kDayReport, kUpcoming, kRuns})
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

TEST_F(Accessibility, EveryControlOfTheOpenWindowsIsNamed) {
    Open();
    Pick("SIP Basket Entry");
    const HWND basket = probe::FindDialog("Planfold Basket Order"), rows = GetDlgItem(basket, IDC_BASKET_LIST);
    const Received modes(Fields("echoedRequest=get_sip_operation_mode frequency=0"));
    host.controls.at(1).notifier->OnResponse(nullptr, modes.Message(), nullptr);
    FillGoodOrder(basket);
    probe::SetDate(basket, IDC_START_DATE, DaysFromNow(40));
    probe::Press(basket, IDC_SUBMIT);
    EXPECT_EQ(boxes.Texts(), "");
    SetFocus(rows);
    ListView_SetItemState(rows, 0, LVIS_FOCUSED, LVIS_FOCUSED);
    probe::PressKey(VK_F2);
    const HWND cell = GetFocus();
    EXPECT_EQ(probe::ClassOf(cell), "Edit");
    EXPECT_EQ(LabelOf(cell), "Client ID") << "as its column";
    ExpectNamed(basket);
    for (const char* entry : {"Order Entry", "SIP Set Restricted Date"})
        Pick(entry);
    for (const int command : {kDayReport, kUpcoming, kRuns})
        Command(command);
    const HWND box = GetDlgItem(OrderEntry(), IDC_CLIENT_SEARCH);
    SetFocus(box);
    probe::SetEdit(OrderEntry(), IDC_CLIENT_SEARCH, "C");
    probe::PostKey(VK_DOWN);
    const auto isPopup = [](HWND window) {
        return IsWindowVisible(window) && GetDlgItem(window, IDC_CLIENT_RESULTS);
    };
    EXPECT_TRUE(probe::PumpUntil([&] { return std::ranges::any_of(PluginWindows(), isPopup); }));
    std::size_t seen = 0;
    for (const HWND window : PluginWindows()) {
        if (!IsWindowVisible(window)) continue;
        SCOPED_TRACE(probe::ClassOf(window) + " " + probe::Text(window));
        ExpectNamed(window);
        seen += probe::ClassOf(window) == "#32770" || isPopup(window);
    }
    EXPECT_GE(seen, 7u) << "with the list of clients";
    ExpectNamed(dialog);
}

// As a sum of what the eye takes of each colour, from 0 to 1.
double Brightness(COLORREF colour) {
    const auto part = [](int value) {
        const double share = value / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(GetRValue(colour)) + 0.7152 * part(GetGValue(colour))
           + 0.0722 * part(GetBValue(colour));
}

TEST(Colours, CanBeReadOnLightAndDarkWindows) {
    using framework::Meaning;
    constexpr double least = 4.5;
    for (const int grey : {255, 240, 48, 0})
        for (const Meaning meaning : {Meaning::muted, Meaning::attention, Meaning::good, Meaning::bad}) {
            const COLORREF window = RGB(grey, grey, grey);
            const auto [text, own] = framework::ColoursOf(meaning, window);
            const double first = Brightness(text), second = Brightness(own == CLR_DEFAULT ? window : own);
            EXPECT_GE((std::max(first, second) + 0.05) / (std::min(first, second) + 0.05), least)
                << static_cast<int>(meaning) << " on " << grey;
        }
}

} // namespace
