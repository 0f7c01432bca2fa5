// The registration book's dialog, inside its pane: two lists in tabs over a status bar with both counts.
#pragma once

#include "framework/Dialog.h"
#include "framework/MessageBoxes.h"
#include "host/korvexcontrols/BrickBar.h"
#include "plugin/orderbook/OrderBook.h"
#include "plugin/orderbook/window/BookListWindow.h"

namespace planfold {

class COrderBookDlg final : public framework::Dialog, public BookView {
public:
    // The name of the registered list's and the status bar's settings.
    static constexpr char kName[] = "SIPRegistrationBook";

    COrderBookDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                  const BookControls& controls);
    ~COrderBookDlg() override { Destroy(); }

    OrderBook& Book() { return m_book; }
    // The list of the open page takes the keyboard.
    void FocusList();

    void ShowMessage(std::string_view text) override { m_boxes.Show(Handle(), text); }
    bool IsOpen() const override { return m_open; }
    BookList& Registered() override { return m_registered; }
    BookList& Cancelled() override { return m_cancelled; }

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void LayOut(UINT dpi) override;
    void OnInit() override;
    void OnClose() override;
    void OnDestroyed() override { m_open = false; }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    void Arrange();
    void ShowPage();
    int CurrentPage() const;
    bool OnKey(int key);
    void ShowCounts();
    void OpenMenu(HWND list, POINT at);
    BookListWindow& ListOf(HWND list);

    Session& m_session;
    framework::MessageBoxes& m_boxes;
    OrderBook m_book;
    BookListWindow m_registered;
    BookListWindow m_cancelled;
    CQVBrickBar m_statusBar;
    framework::Font m_font;
    bool m_open = false;
};

} // namespace planfold
