// The strip above the market watch: which client is active.
#pragma once

#include "framework/Window.h"
#include "host/market/ClientList.h"
#include "host/terminal/window/ListColumns.h"

#include <string>

namespace vesk {

class ClientBar {
public:
    explicit ClientBar(const ClientList& clients) : m_clients(clients) {}

    bool Create(HWND parent, int labelId, int comboId);
    // `rect` is the strip's place in the parent; the drop-down opens below it.
    void Place(const RECT& rect, const TextScale& scale);
    void SetFont(HFONT font);
    void Show(const std::string& client);
    // The client that the user picked; empty for all.
    std::string Picked() const;

private:
    const ClientList& m_clients;
    framework::Window m_label;
    framework::ComboBox m_combo;
};

} // namespace vesk
