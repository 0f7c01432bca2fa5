#include "tests/support/BoxRecorder.h"

#include "tests/support/WindowProbe.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kBoxText = 0xFFFF;
constexpr UINT kHandleBox = WM_APP;
constexpr char kHelperClass[] = "BoxRecorderHelper";

// Message boxes share their class with every dialog, but have a text and nothing to type into.
bool IsMessageBox(HWND window) {
    return probe::ClassOf(window) == "#32770" && GetDlgItem(window, kBoxText)
           && !FindWindowExA(window, nullptr, "Edit", nullptr)
           && !FindWindowExA(window, nullptr, "ComboBox", nullptr);
}

} // namespace

BoxRecorder* BoxRecorder::s_current = nullptr;

BoxRecorder::BoxRecorder() {
    s_current = this;
    WNDCLASSA helper{};
    helper.lpfnWndProc = Procedure;
    helper.lpszClassName = kHelperClass;
    helper.hInstance = GetModuleHandleA(nullptr);
    RegisterClassA(&helper);
    m_helper = CreateWindowExA(0, kHelperClass, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    m_hook = SetWindowsHookExA(WH_CBT, OnCbt, nullptr, GetCurrentThreadId());
}

BoxRecorder::~BoxRecorder() {
    UnhookWindowsHookEx(m_hook);
    DestroyWindow(m_helper);
    s_current = nullptr;
}

std::string BoxRecorder::Texts(std::size_t from) const {
    std::string texts;
    for (; from < m_boxes.size(); ++from)
        texts += m_boxes[from].text + "|";
    return texts;
}

bool BoxRecorder::AnyNested() const {
    return std::ranges::any_of(m_boxes, &Box::nested);
}

LRESULT CALLBACK BoxRecorder::OnCbt(int code, WPARAM wParam, LPARAM lParam) {
    if (s_current) {
        const auto window = reinterpret_cast<HWND>(wParam);
        if (code == HCBT_ACTIVATE && IsMessageBox(window)) s_current->Opened(window);
        if (code == HCBT_DESTROYWND) std::erase(s_current->m_open, window);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void BoxRecorder::Opened(HWND box) {
    if (std::ranges::find(m_open, box) != m_open.end()) return;
    m_boxes.push_back(
        {probe::Text(box), probe::Text(GetDlgItem(box, kBoxText)), GetWindow(box, GW_OWNER), !m_open.empty()});
    m_open.push_back(box);
    PostMessageA(m_helper, kHandleBox, 0, reinterpret_cast<LPARAM>(box));
}

LRESULT CALLBACK BoxRecorder::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kHandleBox || !s_current) return DefWindowProcA(window, message, wParam, lParam);
    s_current->Handle(reinterpret_cast<HWND>(lParam));
    return 0;
}

void BoxRecorder::Handle(HWND box) {
    if (const auto action = std::exchange(during, nullptr)) action();
    int answer = IDOK;
    if (!answers.empty()) {
        answer = answers.front();
        answers.pop_front();
    }
    PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(answer), 0);
}
