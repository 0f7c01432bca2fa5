#include "framework/MessageBoxes.h"

#include <utility>

namespace framework {

void MessageBoxes::Show(HWND owner, std::string_view text) {
    if (m_holding) {
        m_held.push_back({owner, std::string(text)});
        return;
    }
    m_pending.Add(owner, text);
    if (m_open) return;
    while (const auto box = m_pending.TakeNext())
        Open(box->owner, box->text, MB_OK);
}

MessageBoxes::Hold::~Hold() {
    m_boxes.m_holding = false;
    for (const Text& held : std::exchange(m_boxes.m_held, {}))
        m_boxes.Show(held.owner, held.text);
}

int MessageBoxes::Ask(HWND owner, const std::string& text, UINT style) {
    if (m_open) return 0;
    const int answer = Open(owner, text, style);
    while (const auto box = m_pending.TakeNext())
        Open(box->owner, box->text, MB_OK);
    return answer;
}

int MessageBoxes::Open(HWND owner, const std::string& text, UINT style) {
    m_open = true;
    const int answer = MessageBoxA(IsWindow(owner) ? owner : nullptr, text.c_str(), m_caption.c_str(), style);
    m_open = false;
    return answer;
}

} // namespace framework
