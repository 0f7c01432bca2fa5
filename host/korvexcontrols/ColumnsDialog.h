// The box in which the user chooses a list's columns: which are shown, in what order and how wide.
#pragma once

#include "host/korvexcontrols/ListDialogs.h"
#include "host/korvexcontrols/model/KeptLayout.h"

namespace korvex {

class ColumnsDialog final : public CQVDialog {
public:
    struct Column {
        std::string heading;
        int width; // as laid down, at 96 DPI and 8 points
    };
    struct Calls {
        std::function<void(const ColumnsState&)> set;
        std::function<int(std::int32_t column)> fit; // the width that shows its cells whole
    };

    ColumnsDialog(std::weak_ptr<void> owner, Calls calls);

    void Show(HWND list, std::vector<Column> columns, const ColumnsState& now);

private:
    struct Row {
        int column, width;
        bool shown;
    };

    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& notification) override;
    void Take(const ColumnsState& state);
    void Fill();
    int Selected() const;
    void Select(int row);
    void ShowSelected();
    void MoveSelected(int by);
    void TakeWidth();
    void Fit();
    void Accept();
    ColumnsState Chosen() const;

    Calls m_calls;
    std::vector<Column> m_columns;
    std::vector<Row> m_rows; // in the order in which they are shown
    bool m_filling = false;
};

} // namespace korvex
