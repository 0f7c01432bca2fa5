// The window of the changes that a file or a step makes of the book: old beside new in a list, sent from here.
#pragma once

#include "framework/MessageBoxes.h"
#include "plugin/changes/ChangeRun.h"
#include "plugin/changes/window/StepUpDlg.h"
#include "plugin/controls/window/ListDialog.h"
#include "plugin/controls/window/RunProgressDlg.h"
#include "plugin/messaging/RxLink.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace planfold {

class CChangesDlg final : public CListDialog, public CKeloRxNotifierBase, private ChangeView {
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
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    bool OnBoxGone() override { return m_run.OnBoxGone(); }

    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(Handle(), text); }
    bool IsOpen() const override { return HasWindow(); }
    bool MayAsk() override { return WaitForBox(m_boxes); }
    bool Ask(Pass, std::string_view question) override { return m_boxes.Ask(Handle(), std::string(question)); }
    void ShowRows(bool anew) override;
    void ShowRun() override;
    std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }

    std::string_view Cell(std::uint32_t row, std::int32_t column) const override;
    KorvexRowLook Look(std::uint32_t row) const override;

    void Export(HWND owner);
    void Load();
    void Step();
    RxControl* Control();

    framework::MessageBoxes& m_boxes;
    const OrderCache& m_book;
    Selected m_selected;
    Lifetime m_life{[this] { return HasWindow() && !m_session.Ended(); }};
    std::optional<RxLink> m_link;
    ChangeRun m_run;
    std::string m_source;
    CRunProgressDlg m_progress;
    CStepUpDlg m_stepUp;
};

} // namespace planfold
