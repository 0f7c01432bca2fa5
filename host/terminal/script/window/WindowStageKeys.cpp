// The commands that work through the keyboard. Keys are posted one a call: the timer that drives the script
// comes only when all posted messages are done, so each key is taken before the next is pressed.
#include "host/files/Paths.h"
#include "host/terminal/script/window/StageTexts.h"
#include "host/terminal/script/window/WindowFinder.h"
#include "host/terminal/script/window/WindowStage.h"
#include "host/terminal/window/Application.h"
#include "host/terminal/window/MenuBar.h"

#include <algorithm>
#include <array>

namespace vesk {
namespace {

constexpr BYTE kDown = 0x80;

HWND KeyReceiver() {
    HWND menu = nullptr;
    if (FindOpenMenu(menu)) return menu;
    if (const HWND focus = GetFocus()) return focus;
    return GetActiveWindow();
}

LPARAM KeyParameter(int key, bool alt, bool up) {
    const UINT scan = MapVirtualKeyA(static_cast<UINT>(key), MAPVK_VK_TO_VSC);
    UINT bits = 1u | (scan << 16);
    if (alt) bits |= 1u << 29;
    if (up) bits |= 3u << 30;
    return static_cast<LPARAM>(bits);
}

void PressInMenu(HWND popup, int key) {
    PostMessageA(popup, WM_KEYDOWN, static_cast<WPARAM>(key), KeyParameter(key, false, false));
}

} // namespace

void WindowStage::PressKey(const KeyStroke& stroke) {
    const HWND receiver = KeyReceiver();
    GetKeyboardState(m_keysBefore);
    BYTE keys[256];
    std::ranges::copy(m_keysBefore, keys);
    const struct {
        bool held;
        int key, side;
    } modifiers[] = {
        {stroke.ctrl, VK_CONTROL, VK_LCONTROL},
        {stroke.alt, VK_MENU, VK_LMENU},
        {stroke.shift, VK_SHIFT, VK_LSHIFT},
    };
    for (const auto& modifier : modifiers)
        keys[modifier.key] = keys[modifier.side] = modifier.held ? kDown : BYTE{0};
    keys[stroke.key & 0xFF] = kDown;
    SetKeyboardState(keys);
    m_keysHeld = true;
    const bool system = stroke.alt && !stroke.ctrl;
    PostMessageA(receiver, system ? WM_SYSKEYDOWN : WM_KEYDOWN, static_cast<WPARAM>(stroke.key),
                 KeyParameter(stroke.key, stroke.alt, false));
    PostMessageA(receiver, system ? WM_SYSKEYUP : WM_KEYUP, static_cast<WPARAM>(stroke.key),
                 KeyParameter(stroke.key, stroke.alt, true));
}

void WindowStage::ReleaseKeys() {
    if (m_keysHeld) SetKeyboardState(m_keysBefore);
    m_keysHeld = false;
}

StepResult WindowStage::Key(const ScriptCommand& command, std::size_t attempt) {
    if (attempt) {
        ReleaseKeys();
        return StepResult::Done();
    }
    if (!KeyReceiver()) return StepResult::Failed("no window has the focus");
    PressKey(*ParseKeyStroke(command.words[0]));
    return StepResult::Again("the key is not taken");
}

StepResult WindowStage::Type(const ScriptCommand& command, std::size_t attempt) {
    ReleaseKeys();
    const std::string& text = command.words[0];
    if (attempt == text.size()) return StepResult::Done();
    if (!KeyReceiver()) return StepResult::Failed("no window has the focus");
    const SHORT scan = VkKeyScanA(text[attempt]);
    if (scan == -1) {
        // Not on this keyboard: the character comes by itself, as from an input method.
        PostMessageA(KeyReceiver(), WM_CHAR, static_cast<unsigned char>(text[attempt]), 1);
    } else {
        const int modifiers = HIBYTE(scan);
        PressKey({LOBYTE(scan), (modifiers & 2) != 0, (modifiers & 4) != 0, (modifiers & 1) != 0});
    }
    return StepResult::Again("typing is not finished");
}

// The list's context menu, asked for at the first attempt; null while it is not open.
HMENU WindowStage::OpenContextMenu(HWND list, std::size_t attempt, HWND& popup) {
    if (attempt == 0) {
        m_menuSteps = -1;
        SetFocus(list);
        PostMessageA(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list), -1);
    }
    return FindOpenMenu(popup);
}

StepResult WindowStage::Context(const ScriptCommand& command, std::size_t attempt) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    HWND popup = nullptr;
    const HMENU menu = OpenContextMenu(list, attempt, popup);
    if (m_menuSteps == 0) {
        if (!menu) return StepResult::Done();
        return StepResult::Again("the context menu stays open");
    }
    if (!menu) return StepResult::Again("no context menu opens");
    if (m_menuSteps < 0) {
        const std::vector<MenuEntry> entries = MenuEntries(menu);
        const auto entry = std::ranges::find(entries, command.words[1], &MenuEntry::text);
        if (entry == entries.end() || !entry->enabled) {
            PressInMenu(popup, VK_ESCAPE);
            return StepResult::Failed("the context menu has no entry \"" + command.words[1] + '"');
        }
        m_menuSteps = static_cast<int>(entry - entries.begin()) + 2;
    }
    // The first Down key marks the first entry; Enter picks.
    --m_menuSteps;
    PressInMenu(popup, m_menuSteps ? VK_DOWN : VK_RETURN);
    return StepResult::Again("the context menu is not finished");
}

StepResult WindowStage::ExpectContext(const ScriptCommand& command, std::size_t attempt) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    HWND popup = nullptr;
    const HMENU menu = OpenContextMenu(list, attempt, popup);
    if (m_menuSteps < 0 && !menu) return StepResult::Again("no context menu opens");
    if (!menu) return StepResult::Done();
    m_menuSteps = 0;
    const StepResult result = Compare("the context menu", Joined(MenuLines(menu)), Joined(command, 1));
    PressInMenu(popup, VK_ESCAPE);
    if (result.state != StepResult::State::done) return StepResult::Failed(result.why);
    return StepResult::Again("the context menu stays open");
}

// The dialog would take it as beside the file that was opened last.
std::string BesideProgram(const std::string& path) {
    return path.find(':') == path.npos ? ProgramFolder() + '\\' + path : path;
}

// The system's file dialogs keep their edit under one of these identifiers, by version.
StepResult WindowStage::GiveFile(const ScriptCommand& command, std::size_t attempt) {
    if (attempt == 0) m_fileDialog = nullptr;
    if (m_fileDialog) {
        if (IsWindow(m_fileDialog)) return StepResult::Again("the file dialog stays open");
        return StepResult::Done();
    }
    const HWND dialog = GetActiveWindow();
    if (!dialog || !IsOfClass(dialog, "#32770")) return StepResult::Again("there is no file dialog");
    for (const int id : {0x47C, 0x480}) {
        const HWND edit = FindControl(dialog, id);
        if (!edit) continue;
        SetWindowTextW(edit, PathOf(BesideProgram(command.words[0])).c_str());
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
        m_fileDialog = dialog;
        return StepResult::Again("the file dialog stays open");
    }
    return StepResult::Again("there is no file dialog");
}

} // namespace vesk
