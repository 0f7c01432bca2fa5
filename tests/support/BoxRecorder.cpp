#include "tests/support/BoxRecorder.h"

#include "tests/support/WindowProbe.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kBoxText = 0xFFFF;
BoxRecorder* g_recorder = nullptr;

// Message boxes share their class with every dialog, but have a text and nothing to type into.
bool IsMessageBox(HWND window) {
    return probe::ClassOf(window) == "#32770" && GetDlgItem(window, kBoxText)
           && !FindWindowExA(window, nullptr, "Edit", nullptr)
           && !FindWindowExA(window, nullptr, "ComboBox", nullptr);
}

} // namespace

BoxRecorder::BoxRecorder() : m_hook(SetWindowsHookExA(WH_CBT, OnCbt, nullptr, GetCurrentThreadId())) {
    g_recorder = this;
}

BoxRecorder::~BoxRecorder() {
    UnhookWindowsHookEx(m_hook);
    g_recorder = nullptr;
}

std::string BoxRecorder::Texts() {
    return std::exchange(m_texts, {});
}

LRESULT CALLBACK BoxRecorder::OnCbt(int code, WPARAM wParam, LPARAM lParam) {
    const auto window = reinterpret_cast<HWND>(wParam);
    if (g_recorder && code == HCBT_ACTIVATE && IsMessageBox(window)) g_recorder->Opened(window);
    if (g_recorder && code == HCBT_DESTROYWND) std::erase(g_recorder->m_open, window);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void BoxRecorder::Opened(HWND box) {
    if (std::ranges::find(m_open, box) != m_open.end()) return;
    m_texts += probe::Text(GetDlgItem(box, kBoxText)) + "|";
    lastOwner = GetWindow(box, GW_OWNER);
    anyNested |= !m_open.empty();
    m_open.push_back(box);
    m_unanswered.push_back(box);
    SetTimer(nullptr, 0, 1, OnTimer);
}

void CALLBACK BoxRecorder::OnTimer(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    if (g_recorder) g_recorder->Answer();
}

void BoxRecorder::Answer() {
    if (m_unanswered.empty()) return;
    HWND box = m_unanswered.back();
    m_unanswered.pop_back();
    if (const auto action = std::exchange(during, nullptr)) action();
    PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(GetDlgItem(box, IDYES) ? toQuestions : IDOK), 0);
}
