// What Doubts needs of the system: a clock's tick, a request control, and boxes.
#pragma once

#include "framework/CustomWindow.h"
#include "framework/MessageBoxes.h"
#include "plugin/doubts/Doubts.h"
#include "plugin/messaging/RxLink.h"

#include <functional>
#include <optional>

namespace planfold {

class CDoubtsWindow final : public framework::CustomWindow, private DoubtsView, private CKeloRxNotifierBase {
public:
    struct Actions {
        std::function<void(Pass)> showOrdersOfDay;
        std::function<std::size_t(Pass, std::span<const OrderPlace>)> takeBack;
    };

    CDoubtsWindow(HINSTANCE module, Session& session, framework::MessageBoxes& boxes, Actions actions)
        : m_module(module), m_session(session), m_boxes(boxes), m_actions(std::move(actions)) {}
    ~CDoubtsWindow() override { Destroy(); }

    // A window of the plug-in has come up.
    void OnPick();
    void Compare() { m_doubts.Compare(); }
    void ShutDown();

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnBroadcast(void*, std::uint32_t, void*) noexcept override {}
    void OnResponse(void*, void* message, void*) noexcept override;

    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(GetActiveWindow(), text); }
    bool MayAsk() override { return !m_boxes.IsBusy(); }
    Choice Choose(Pass, std::string_view question) override;
    bool Ask(Pass, std::string_view question) override {
        return m_boxes.Ask(GetActiveWindow(), std::string(question));
    }
    void ShowOrdersOfDay(Pass pass) override { m_actions.showOrdersOfDay(pass); }
    std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders) override {
        return m_actions.takeBack(pass, orders);
    }
    // Taken when it is needed for the first time.
    RxControl* Control();

    HINSTANCE m_module;
    Session& m_session;
    framework::MessageBoxes& m_boxes;
    const Actions m_actions;
    std::optional<RxLink> m_link;
    Doubts m_doubts{m_session, *this, [this] { return Control(); }};
};

} // namespace planfold
