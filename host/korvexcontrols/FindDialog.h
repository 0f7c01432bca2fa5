// Looks for a text in the list.
#pragma once

#include "host/korvexcontrols/QVDialog.h"

#include <functional>

namespace korvex {

class FindDialog final : public CQVDialog {
public:
    // Goes to the next row with the text, or the one before; false when there is none.
    using Step = std::function<bool(const std::string& text, bool forward)>;

    FindDialog(std::weak_ptr<void> owner, Step step);

    void Show(HWND list, const std::string& text);

private:
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;

    Step m_step;
    std::string m_text;
};

} // namespace korvex
