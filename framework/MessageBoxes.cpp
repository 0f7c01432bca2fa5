#include "framework/MessageBoxes.h"

#include "framework/FocusKeeper.h"
#include "framework/Guard.h"

#include <utility>

namespace framework {

namespace {

constexpr int kBoxText = 0xFFFF; // the one control that every box has

} // namespace

void MessageBoxes::Show(HWND owner, std::string_view text) {
    if (m_holds) {
        m_held.push_back({owner, std::string(text)});
        return;
    }
    m_pending.Add(owner, text);
    if (!m_open) ShowPending();
}

int MessageBoxes::AskWith(HWND owner, const std::string& question, UINT buttons) {
    if (IsBusy()) return IDCANCEL;
    const int answer = Open(owner, question, buttons | MB_ICONQUESTION | MB_DEFBUTTON2);
    ShowPending();
    return answer;
}

HWND MessageBoxes::NextBox(HWND box, HWND owner) const {
    while ((box = FindWindowExA(nullptr, box, "#32770", m_caption.c_str())) != nullptr)
        if (GetDlgItem(box, kBoxText) && GetWindow(box, GW_OWNER) == GetAncestor(owner, GA_ROOT)
            && GetWindowThreadProcessId(box, nullptr) == GetCurrentThreadId())
            break;
    return box;
}

bool MessageBoxes::BringToFront() const {
    const HWND box = m_open ? NextBox(nullptr, m_owner) : nullptr;
    if (box) SetForegroundWindow(box);
    return IsBusy();
}

void MessageBoxes::Close(HWND owner) {
    if (!m_open || owner != m_owner) return;
    for (HWND box = nullptr; (box = NextBox(box, owner)) != nullptr;)
        EndDialog(box, IDCANCEL);
}

void MessageBoxes::Forget() {
    m_pending = {};
    m_held.clear();
}

void MessageBoxes::ShowPending() {
    while (const auto box = m_pending.TakeNext())
        Open(box->owner, box->text, MB_OK);
}

MessageBoxes::Hold::~Hold() {
    if (--m_boxes.m_holds) return;
    Guard([&] {
        while (!m_boxes.m_held.empty()) {
            const Text held = std::move(m_boxes.m_held.front());
            m_boxes.m_held.pop_front();
            if (m_then == Then::each)
                m_boxes.Show(held.owner, held.text);
            else
                m_boxes.m_pending.Add(held.owner, held.text);
        }
        if (!m_boxes.m_open) m_boxes.ShowPending();
    });
}

int MessageBoxes::Open(HWND owner, const std::string& text, UINT kind) {
    const FocusKeeper focus;
    m_open = true;
    m_owner = owner;
    const int answer = MessageBoxA(IsWindow(owner) ? owner : nullptr, text.c_str(), m_caption.c_str(), kind);
    m_open = false;
    return answer;
}

} // namespace framework
