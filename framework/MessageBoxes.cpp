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
    if (m_open) return;
    while (const auto box = m_pending.TakeNext())
        Open(box->owner, box->text);
}

MessageBoxes::Hold::~Hold() {
    m_boxes.m_holding = false;
    Guard([&] {
        for (const Text& held : std::exchange(m_boxes.m_held, {}))
            m_boxes.Show(held.owner, held.text);
    });
}

void MessageBoxes::Open(HWND owner, const std::string& text) {
    m_open = true;
    MessageBoxA(IsWindow(owner) ? owner : nullptr, text.c_str(), m_caption.c_str(), MB_OK);
    m_open = false;
}

} // namespace framework
