// What a check of the basket found, as a list that can be filtered, copied and exported.
#pragma once

#include "framework/Dialog.h"
#include "plugin/basket/BasketReview.h"
#include "plugin/controls/window/ListWindows.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace planfold {

class BasketCheckDlg final : public framework::Dialog, private CListOwner {
public:
    BasketCheckDlg(HINSTANCE module, const Session& session);
    ~BasketCheckDlg() override { Destroy(); }

    // Makes the window unless there is one, and shows this in it.
    void Show(std::vector<ReviewLine> lines);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnInit() override;
    void LayOut(UINT dpi) override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void Arrange();

    void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                   KorvexText* texts) noexcept override;
    std::int32_t RowLook(std::uint32_t record) noexcept override;
    void ShownRowsChanged(CFilterListCtrl*) noexcept override {}

    const Session& m_session;
    std::vector<ReviewLine> m_lines;
    std::unordered_set<std::string> m_texts; // of the cells
    CFilterListCtrl m_list;
    RowMenu m_menu;
    LONG m_margin = 0; // none until it is laid out
};

} // namespace planfold
