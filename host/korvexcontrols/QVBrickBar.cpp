#include "host/korvexcontrols/QVBrickBar.h"

#include "framework/Guard.h"
#include "framework/Window.h"

#include <string>
#include <vector>

using framework::Guard;

void CQVBrickBar::Attach(HWND bar, const char* name) noexcept {
    m_bar = bar;
    SetText(0, name);
}

void CQVBrickBar::SetParts(const std::int32_t* widths, std::int32_t count) noexcept {
    Guard([&] {
        const framework::Window bar(m_bar);
        std::vector<int> edges;
        int edge = 0;
        for (std::int32_t i = 0; i < count; ++i)
            edges.push_back(widths[i] < 0 ? -1 : edge += framework::Scaled(widths[i], bar.Dpi()));
        bar.Send(SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
    });
}

void CQVBrickBar::SetText(std::int32_t pane, const char* text) noexcept {
    Guard([&] {
        const framework::Window bar(m_bar);
        const auto part = static_cast<WPARAM>(pane);
        std::string shown(LOWORD(bar.Send(SB_GETTEXTLENGTHA, part)) + std::size_t{1}, '\0');
        bar.Send(SB_GETTEXTA, part, reinterpret_cast<LPARAM>(shown.data()));
        shown.pop_back();
        const std::string wanted = text ? text : "";
        if (shown != wanted) bar.Send(SB_SETTEXTA, part, reinterpret_cast<LPARAM>(wanted.c_str()));
    });
}
