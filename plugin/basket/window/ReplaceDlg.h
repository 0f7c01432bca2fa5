// Asks what is replaced by what in a column of the basket's list, and tells before in how many rows.
#pragma once

#include "framework/Dialog.h"
#include "plugin/basket/Basket.h"
#include "plugin/resources/resource.h"

namespace planfold {

class ReplaceDlg final : public framework::Dialog {
public:
    ReplaceDlg(HINSTANCE module, const Session& session, Basket& basket);
    ~ReplaceDlg() override { Destroy(); }

    // Over the owner, in its font size, with this column chosen if it can be.
    void Open(HWND owner, int points, BasketField field);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    void OnLaidOut() override { SetCaptionIcon(IDI_REPEAT); }
    bool OnCommand(const framework::Command& command) override;
    bool IsChecked(int box) const { return Item(box).Send(BM_GETCHECK) == BST_CHECKED; }
    CellReplacement Replacement() const;
    void ShowCount();

    const Session& m_session;
    Basket& m_basket;
    BasketField m_field{};
};

} // namespace planfold
