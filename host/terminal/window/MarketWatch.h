// The list of all scrips with their last prices.
#pragma once

#include "framework/Window.h"
#include "host/market/ScripMaster.h"
#include "host/terminal/window/ListColumns.h"

#include <optional>

namespace vesk {

class MarketWatch {
public:
    explicit MarketWatch(const ScripMaster& master) : m_master(master) {}

    bool Create(HWND parent, int id);
    HWND List() const { return m_list; }
    void SetFont(HFONT font) { framework::Window(m_list).SetFont(font); }
    void Place(const RECT& rect, const TextScale& scale);
    std::optional<LRESULT> OnNotify(const NMHDR& header);

private:
    const ScripMaster& m_master;
    HWND m_list = nullptr;
};

} // namespace vesk
