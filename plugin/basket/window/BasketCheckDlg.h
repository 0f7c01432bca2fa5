// What a check of the basket found, as a list that can be filtered, copied and exported.
#pragma once

#include "plugin/basket/BasketReview.h"
#include "plugin/controls/window/ListDialog.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace planfold {

class BasketCheckDlg final : public CListDialog {
public:
    BasketCheckDlg(HINSTANCE module, Session& session);
    ~BasketCheckDlg() override { Destroy(); }

    // Makes the window unless there is one, and shows this in it.
    void Show(std::vector<ReviewLine> lines);

private:
    std::string_view Cell(std::uint32_t line, std::int32_t column) const override;
    KorvexRowLook Look(std::uint32_t line) const override;

    std::vector<ReviewLine> m_lines;
    mutable std::unordered_set<std::string> m_texts; // of the cells
};

} // namespace planfold
