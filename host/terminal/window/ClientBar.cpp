#include "host/terminal/window/ClientBar.h"

namespace vesk {
namespace {

constexpr const char* kAllClients = "(all clients)";

} // namespace

bool ClientBar::Create(HWND parent, int labelId, int comboId) {
    const HINSTANCE module = GetModuleHandleA(nullptr);
    m_label = framework::Window(
        CreateWindowExA(0, WC_STATICA, "Active client", WS_CHILD | WS_VISIBLE | SS_CENTERIMAGE, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(labelId)), module, nullptr));
    m_combo = framework::ComboBox(CreateWindowExA(
        0, WC_COMBOBOXA, "", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0, 0, 0, 0,
        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(comboId)), module, nullptr));
    if (!m_label || !m_combo) return false;
    m_combo.Add(kAllClients);
    for (const Client& client : m_clients.Clients())
        m_combo.Add(client.id + "   " + client.name);
    m_combo.Select(0);
    return true;
}

void ClientBar::Place(const RECT& rect, const TextScale& scale) {
    RECT combo{};
    GetWindowRect(m_combo.Handle(), &combo);
    const int comboHeight = combo.bottom - combo.top;
    const int top = rect.top + (rect.bottom - rect.top - comboHeight) / 2;
    const int left = rect.left + scale.Pixels(10), labelWidth = scale.Pixels(90);
    m_label.Move({left, top, left + labelWidth, top + comboHeight});
    // The height given to a combo is that of its open list.
    m_combo.Move({left + labelWidth, top, left + labelWidth + scale.Pixels(240), top + scale.Pixels(360)});
}

void ClientBar::SetFont(HFONT font) {
    m_label.SetFont(font);
    m_combo.SetFont(font);
}

void ClientBar::Show(const std::string& client) {
    int index = 0;
    for (std::size_t i = 0; i < m_clients.Clients().size(); ++i)
        if (m_clients.Clients()[i].id == client) index = static_cast<int>(i) + 1;
    m_combo.Select(index);
}

std::string ClientBar::Picked() const {
    const int index = m_combo.Selected();
    return index < 1 ? std::string() : m_clients.Clients()[static_cast<std::size_t>(index) - 1].id;
}

} // namespace vesk
