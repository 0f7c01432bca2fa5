#include "framework/MessageBoxes.h"

#include "framework/Guard.h"

#include <utility>

namespace framework {

void MessageBoxes::Show(HWND owner, std::string_view text) {
    if (m_holding) {
        m_held.push_back({owner, std::string(text)});
        return;
    }
    m_pending.Add(owner, text);
    if (!m_open) ShowPending();
}

bool MessageBoxes::Ask(HWND owner, const std::string& question) {
    if (m_open || m_holding) return false;
    const int answer = Open(owner, question, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2);
    ShowPending();
    return answer == IDYES;
}

void MessageBoxes::ShowPending() {
    while (const auto box = m_pending.TakeNext())
        Open(box->owner, box->text, MB_OK);
}

MessageBoxes::Hold::~Hold() {
    m_boxes.m_holding = false;
    Guard([&] {
        for (const Text& held : std::exchange(m_boxes.m_held, {}))
            m_boxes.Show(held.owner, held.text);
    });
}

int MessageBoxes::Open(HWND owner, const std::string& text, UINT kind) {
    m_open = true;
    const int answer = MessageBoxA(IsWindow(owner) ? owner : nullptr, text.c_str(), m_caption.c_str(), kind);
    m_open = false;
    return answer;
}

} // namespace framework
