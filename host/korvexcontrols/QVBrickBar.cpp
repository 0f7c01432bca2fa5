#include "sdk/korvex/QVBrickBar.h"

#include "framework/Guard.h"
#include "framework/Subclass.h"

#include <map>
#include <string>
#include <utility>

using framework::Guard;

// Texts wait until something else reaches the bar, at the latest its own posted message.
class CQVBrickBar::Impl final : public framework::Subclass {
public:
    void SetText(int pane, const char* text) {
        if (!Handle()) return;
        if (m_waiting.empty()) PostMessageA(Handle(), kShow, 0, 0);
        m_waiting[pane] = text;
    }

private:
    static constexpr UINT kShow = WM_APP + 1;

    std::optional<LRESULT> OnMessage(UINT message, WPARAM, LPARAM) override {
        for (const auto& [pane, text] : std::exchange(m_waiting, {}))
            Default(SB_SETTEXTA, static_cast<WPARAM>(pane), reinterpret_cast<LPARAM>(text.c_str()));
        return message == kShow ? std::optional<LRESULT>(0) : std::nullopt;
    }
    void OnGone() override { m_waiting.clear(); }

    std::map<int, std::string> m_waiting;
};

CQVBrickBar::CQVBrickBar() noexcept : m_impl(Guard(static_cast<Impl*>(nullptr), [] { return new Impl; })) {}

CQVBrickBar::~CQVBrickBar() {
    delete m_impl;
}

bool CQVBrickBar::Create(HWND parent, std::int32_t id, const char* name) noexcept {
    return Guard(false, [&] {
        const HWND bar = CreateWindowExA(0, STATUSCLASSNAMEA, name, WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent,
                                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
        return m_impl && m_impl->Attach(bar);
    });
}

HWND CQVBrickBar::Handle() const noexcept {
    return m_impl ? m_impl->Handle() : nullptr;
}

void CQVBrickBar::SetParts(const std::int32_t* edges, std::int32_t count) noexcept {
    SendMessageA(Handle(), SB_SETPARTS, static_cast<WPARAM>(count), reinterpret_cast<LPARAM>(edges));
}

void CQVBrickBar::SetText(std::int32_t pane, const char* text) noexcept {
    Guard([&] {
        if (m_impl) m_impl->SetText(pane, text);
    });
}

void CQVBrickBar::Place() noexcept {
    SendMessageA(Handle(), WM_SIZE, 0, 0);
}
