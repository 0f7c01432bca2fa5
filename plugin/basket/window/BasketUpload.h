// The basket window.
#pragma once

#include "framework/Pace.h"
#include "plugin/basket/Basket.h"
#include "plugin/basket/window/BasketCheckDlg.h"
#include "plugin/basket/window/BasketEditing.h"
#include "plugin/basket/window/BasketListWindow.h"
#include "plugin/basket/window/BasketPanel.h"
#include "plugin/basket/window/UnsentOrdersFile.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/controls/window/ListFrame.h"
#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/import/window/ImportDlg.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/orderentry/window/SipFormControls.h"
#include "sdk/korvex/FlatSplitterWnd.h"
#include "sdk/korvex/QVBrickBar.h"

namespace planfold {

class CBasketUpload final : public DialogWindowOf<BasketView>, private CKeloRxNotifierBase {
public:
    // A command of the order record's menu entries was chosen.
    using RecordCommand = std::function<void(Pass, int)>;

    CBasketUpload(HINSTANCE module, Session& session, framework::MessageBoxes& boxes,
                  RecordCommand recordCommand);
    ~CBasketUpload() override { Destroy(); }

    // Makes the window unless there is one, and brings it up.
    void Open();
    // Into the open window; see Basket.
    std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders) {
        return m_basket.Coming().TakeBack(pass, orders);
    }
    // The same of new orders; tells of those that it cannot take.
    void Add(Pass pass, std::vector<sSipOrderData> orders);
    // Takes the window away and gives the control back, for good.
    void ShutDown();

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnBroadcast(void*, std::uint32_t, void*) noexcept override {}
    void OnResponse(void*, void* message, void*) noexcept override;

    void LayOut(UINT dpi) override;
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;

    void SetText(int control, std::string_view text) override;
    BasketList& List() override { return m_list; }
    std::string Title() const override { return Self().Text(); }
    bool MayAsk() override { return WaitForBox(Boxes()); }
    bool OnBoxGone() override { return m_basket.OnBoxGone(); }
    bool Ask(Pass, std::string_view question) override {
        return Boxes().Ask(Dialog::Handle(), std::string(question));
    }
    Choice Choose(Pass, std::string_view question) override;
    UnsentFile& Unsent() override { return m_unsent; }
    std::optional<std::string> AskLoadPath(Pass) override;
    std::optional<std::string> AskExportPath(Pass) override;
    std::optional<std::string> AskRejectsPath(Pass) override;
    std::optional<ImportChoice> AskImport(Pass pass, const BasketRules& rules) override {
        return m_import.Ask(pass, Dialog::Handle(), rules, FontSize());
    }
    std::optional<std::string> ReadFile(const std::string& path) override;
    bool WriteFileWhole(const std::string& path, std::string_view text) override;
    std::string DeskLimit(const std::string& key) override;
    void ShowWaiting(bool waiting) override;
    void ShowStatus() override;
    void ShowStatusSoon() override;
    void ShowPanel() override;
    void ShowRun() override { m_progress.Follow(Dialog::Handle()); }
    LocalDateTime Now() const override { return LocalNow(); }
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }

    LONG LetterWidth() const;
    void Arrange();
    void OnButton(int button);
    void ShowCheck();
    void OnContextMenu(HWND list, LPARAM position);
    bool HotKeyIsForRows() const;
    std::optional<LRESULT> OnListNotify(const NMHDR& notification);
    RECT PlaceOf(int control) const; // in the client area

    Session& m_session;
    RxLink m_link;
    UnsentOrdersFile m_unsent;
    Basket m_basket;
    BasketListWindow m_list;
    BasketPanel m_panel;
    BasketEditing m_editing;
    BasketCheckDlg m_check;
    CFlatSplitterWnd m_splitter; // between the rows and the rejected lines
    CQVBrickBar m_statusBar;
    framework::Pace m_statusPace;
    CRunProgressDlg m_progress;
    CImportDlg m_import;
    SipFormControls m_controls;
    RecordCommand m_recordCommand;
    ActivateOnEnter m_enter;
    RowMenu m_menu;
    ListFrame m_frame{*this, IDC_BASKET_LIST};
    LONG m_listTop = 0;                          // pixels
    std::pair<std::size_t, std::size_t> m_marks; // rows that stand twice and that were sent, as drawn
    HCURSOR m_cursor = nullptr;                  // before the wait cursor
};

} // namespace planfold
