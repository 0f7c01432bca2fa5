#include "plugin/doubts/window/DoubtsWindow.h"

#include "framework/Guard.h"

namespace planfold {

namespace {

constexpr UINT_PTR kTick = 1;
constexpr UINT kTickMs = 1000;

} // namespace

void CDoubtsWindow::OnPick() {
    if (!Handle()) {
        Create({.module = m_module, .className = "PlanfoldDoubts", .style = 0, .parent = HWND_MESSAGE});
        SetTimer(Handle(), kTick, kTickMs, nullptr);
    }
    m_doubts.OnPick();
}

void CDoubtsWindow::ShutDown() {
    Destroy();
    if (m_link) m_link->Release();
}

RxControl* CDoubtsWindow::Control() {
    CKeloRxNotifierBase* const notifier = this;
    if (!m_link) m_link.emplace(m_session.lookup, kRxRequests, notifier, nullptr);
    return m_link->Control();
}

Choice CDoubtsWindow::Choose(Pass, std::string_view question) {
    const int answer = m_boxes.AskOrCancel(GetActiveWindow(), std::string(question));
    return answer == IDYES ? Choice::yes : answer == IDNO ? Choice::no : Choice::cancel;
}

std::optional<LRESULT> CDoubtsWindow::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != WM_TIMER || wParam != kTick) return std::nullopt;
    m_doubts.OnTime();
    return 0;
}

void CDoubtsWindow::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_doubts.OnResponse(message);
    });
}

} // namespace planfold
