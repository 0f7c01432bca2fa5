// The window of the changes that a file or a step makes of the book: old beside new in a list, sent from here.
#pragma once

#include "framework/Dialog.h"
#include "framework/MessageBoxes.h"
#include "plugin/changes/ChangeRun.h"
#include "plugin/changes/window/StepUpDlg.h"
#include "plugin/controls/window/ListFrame.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/messaging/RxLink.h"
#include "plugin/resources/resource.h"
#include "sdk/korvex/QVBrickBar.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace planfold {

class CChangesDlg final : public framework::Dialog,
                          public CKeloRxNotifierBase,
                          private ChangeView,
                          private CListOwner {
public:
    // The numbers of the rows that are selected in the book.
    using Selected = std::function<std::vector<std::string>()>;

    CChangesDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes, const OrderCache& book,
                Selected selected);
    ~CChangesDlg() override { Destroy(); }

    // One of the book's: it comes from a window that may be gone afterwards.
    void OnBookCommand(int command, HWND owner);
    // Takes the window away and gives the control back, for good.
    void ShutDown();

    void OnBroadcast(void*, std::uint32_t, void*) noexcept override {}
    void OnResponse(void*, void* message, void*) noexcept override;

private:
    // On the list's background.
    class ListNotice final : public framework::Subclass {
        std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    };

    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void LayOut(UINT dpi) override;
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    bool OnBoxGone() override { return m_run.OnBoxGone(); }

    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(Handle(), text); }
    bool IsOpen() const override { return HasWindow(); }
    bool MayAsk() override { return WaitForBox(m_boxes); }
    bool Ask(Pass, std::string_view question) override { return m_boxes.Ask(Handle(), std::string(question)); }
    void ShowRows(bool anew) override;
    void ShowRun() override;
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }

    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override;
    void ShownRowsChanged(CFilterListCtrl*) noexcept override {}

    void Export(HWND owner);
    void Load();
    void Step();
    RxControl* Control();
    void Arrange();
    void ShowStatus();

    Session& m_session;
    framework::MessageBoxes& m_boxes;
    const OrderCache& m_book;
    Selected m_selected;
    Lifetime m_life{[this] { return HasWindow() && !m_session.Ended(); }};
    std::optional<RxLink> m_link;
    ChangeRun m_run;
    CFilterListCtrl m_list;
    ListNotice m_notice;
    CQVBrickBar m_statusBar;
    std::array<std::string, 3> m_status; // as it stands there
    std::string m_source;
    CRunProgressDlg m_progress;
    CStepUpDlg m_stepUp;
    RowMenu m_menu;
    ListFrame m_frame{*this, IDC_CHANGES_LIST};
};

} // namespace planfold
