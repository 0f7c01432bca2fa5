// What lies in the main frame's bands: the client bar, the market watch and the tabbed log.
#pragma once

#include "framework/Window.h"
#include "host/market/ClientList.h"
#include "host/market/ScripMaster.h"
#include "host/terminal/core/FrameLayout.h"
#include "host/terminal/core/Logs.h"

#include <optional>
#include <span>
#include <string>

namespace vesk {

// The strip above the market watch: which client is active.
class ClientBar {
public:
    explicit ClientBar(const ClientList& clients) : m_clients(clients) {}

    bool Create(HWND parent, int labelId, int comboId);
    // `rect` is the strip's place in the parent; the drop-down opens below it.
    void Place(const RECT& rect, const FrameScale& scale);
    void SetFont(HFONT font);
    void Show(const std::string& client);
    // The client that the user picked; empty for all.
    std::string Picked() const;

private:
    const ClientList& m_clients;
    framework::Window m_label;
    framework::ComboBox m_combo;
};

// The list of all scrips with their last prices.
class MarketWatch {
public:
    explicit MarketWatch(const ScripMaster& master) : m_master(master) {}

    bool Create(HWND parent, int id);
    HWND List() const { return m_list; }
    void SetFont(HFONT font) { framework::Window(m_list).SetFont(font); }
    void Place(const RECT& rect, const FrameScale& scale);
    std::optional<LRESULT> OnNotify(const NMHDR& header);

private:
    const ScripMaster& m_master;
    HWND m_list = nullptr;
};

// The tabbed log at the foot of the main frame.
class LogView {
public:
    explicit LogView(const TabbedLog& log) : m_log(log) {}

    bool Create(HWND parent, int tabsId, int listId);
    void Place(const RECT& rect, const FrameScale& scale);
    void SetFont(HFONT font);
    void Show(bool shown);
    // It is called after lines were added, and shows the newest.
    void Refresh();
    std::optional<LRESULT> OnNotify(const NMHDR& header);

private:
    LogTab Shown() const;

    const TabbedLog& m_log;
    HWND m_tabs = nullptr;
    HWND m_list = nullptr;
};

} // namespace vesk
