// The registration book: its docking pane in the host's main frame, and its line to the server.
#pragma once

#include "framework/CustomWindow.h"
#include "framework/Subclass.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/orderbook/window/OrderBookDlg.h"

namespace planfold {

// Keeps a pane at the bottom of the host's main frame until the frame lays it out itself.
class BottomDock final : public framework::Subclass {
public:
    // Places the pane and follows the frame's size.
    void Dock(HWND frame, HWND pane);
    // The pane's WM_WINDOWPOSCHANGED: when another hand than ours moves or sizes it, that takes over.
    void OnPaneMoved(const WINDOWPOS& position);

private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Place();

    HWND m_pane = nullptr;
    bool m_placing = false;
};

class COrderBookDlgBar final : public framework::CustomWindow, public CKeloRxNotifierBase, private Notices {
public:
    COrderBookDlgBar(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                     COrderBookDlg::OrderForm orderForm, COrderBookDlg::History history,
                     COrderBookDlg::RecordCommand recordCommand);
    ~COrderBookDlgBar() override { Destroy(); }

    // Makes the pane unless there is one, brings it up, and asks for the registrations.
    void Open(HWND mainFrame);
    // Takes the windows away and gives the controls back, for good.
    void ShutDown();
    // An empty client shows all rows. Nothing without a window.
    void FilterByClient(std::string_view client);

    // Of the registered rows that are selected, from the top.
    std::vector<std::string> SelectedNumbers() const { return m_dialog.SelectedNumbers(); }
    // As the book has them; its number of fillings tells that they are others.
    const OrderCache& Records() { return m_dialog.Book().Records(); }

    void OnBroadcast(void* message, std::uint32_t, void*) noexcept override;
    void OnResponse(void*, void* message, void*) noexcept override;

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(Handle(), text); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnDestroyed() override { m_dock.Detach(); }
    void MakePane(HWND mainFrame);

    HINSTANCE m_module;
    Session& m_session;
    framework::MessageBoxes& m_boxes;
    RxLink m_requests;
    RxLink m_identityStream;
    RxLink m_accountStream;
    COrderBookDlg m_dialog;
    BottomDock m_dock;
};

} // namespace planfold
