// The verbs of keyboard and mouse: what a user types, presses and chooses in controls. Keys are posted one a
// call: the timer that drives the script comes only when all posted messages are done, so each key is taken
// before the next is pressed.
#include "host/terminal/script/window/Stage.h"

#include "host/terminal/script/window/Screen.h"

#include <algorithm>

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

} // namespace

void StageKeyboard::PressInMenu(HWND popup, int key) {
    PostMessageA(popup, WM_KEYDOWN, static_cast<WPARAM>(key), KeyParameter(key, false, false));
}

void StageKeyboard::Press(const KeyStroke& stroke) {
    const HWND receiver = KeyReceiver();
    GetKeyboardState(m_before);
    BYTE keys[256];
    std::ranges::copy(m_before, keys);
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
    m_held = true;
    const bool system = stroke.alt && !stroke.ctrl;
    PostMessageA(receiver, system ? WM_SYSKEYDOWN : WM_KEYDOWN, static_cast<WPARAM>(stroke.key),
                 KeyParameter(stroke.key, stroke.alt, false));
    PostMessageA(receiver, system ? WM_SYSKEYUP : WM_KEYUP, static_cast<WPARAM>(stroke.key),
                 KeyParameter(stroke.key, stroke.alt, true));
}

void StageKeyboard::Release() {
    if (m_held) SetKeyboardState(m_before);
    m_held = false;
}

namespace verbs {

StepResult TypeText(ScriptStep& step) {
    step.stage.keyboard.Release();
    const std::string& text = step.Word(0);
    if (step.attempt == text.size()) return StepResult::Done();
    if (!KeyReceiver()) return StepResult::Failed("no window has the focus");
    const SHORT scan = VkKeyScanA(text[step.attempt]);
    if (scan == -1) {
        // This keyboard has no key for the character: it comes by itself, as from an input method.
        PostMessageA(KeyReceiver(), WM_CHAR, static_cast<unsigned char>(text[step.attempt]), 1);
    } else {
        const int modifiers = HIBYTE(scan);
        step.stage.keyboard.Press(
            {LOBYTE(scan), (modifiers & 2) != 0, (modifiers & 4) != 0, (modifiers & 1) != 0});
    }
    return StepResult::Again("typing is not finished");
}

StepResult PressKey(ScriptStep& step) {
    if (step.attempt) {
        step.stage.keyboard.Release();
        return StepResult::Done();
    }
    if (!KeyReceiver()) return StepResult::Failed("no window has the focus");
    step.stage.keyboard.Press(*ParseKeyStroke(step.Word(0)));
    return StepResult::Again("the key is not taken");
}

void FocusControl(ScriptStep& step) {
    framework::Window(step.control).Focus();
}

StepResult PressButton(ScriptStep& step) {
    const framework::Window button(step.control);
    if (!IsWindowEnabled(button.Handle())) return StepResult::Again("the button is disabled");
    PostMessageA(GetParent(button.Handle()), WM_COMMAND, MAKEWPARAM(step.Number(0), BN_CLICKED),
                 reinterpret_cast<LPARAM>(button.Handle()));
    return StepResult::Done();
}

void PostCommand(ScriptStep& step) {
    PostMessageA(step.stage.Current(), WM_COMMAND, static_cast<WPARAM>(step.Number(0)), 0);
}

void SetEdit(ScriptStep& step) {
    framework::Window(step.control).SetText(step.Word(1));
}

void SetDate(ScriptStep& step) {
    const framework::DatePicker picker(step.control);
    constexpr ULONGLONG ticksPerDay = 864'000'000'000;
    SYSTEMTIME date{};
    GetLocalTime(&date);
    FILETIME time{};
    SystemTimeToFileTime(&date, &time);
    ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
    ticks.QuadPart += static_cast<ULONGLONG>(step.Number(1)) * ticksPerDay;
    time = {ticks.LowPart, ticks.HighPart};
    FileTimeToSystemTime(&time, &date);
    picker.SetTime(date);
}

StepResult SelectEntry(ScriptStep& step) {
    const framework::ComboBox combo(step.control);
    const int index = combo.Find(step.Word(1));
    if (index < 0) return StepResult::Again("the combo has no entry \"" + step.Word(1) + '"');
    combo.Select(index);
    for (const int notification : {CBN_SELENDOK, CBN_SELCHANGE})
        PostMessageA(GetParent(combo.Handle()), WM_COMMAND, MAKEWPARAM(step.Number(0), notification),
                     reinterpret_cast<LPARAM>(combo.Handle()));
    return StepResult::Done();
}

} // namespace verbs
} // namespace vesk
