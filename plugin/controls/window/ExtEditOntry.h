// The edit in which amounts and quantities are typed: what cannot be part of a positive decimal number is
// refused with a balloon, and pasted text is cleaned.
#pragma once

#include "framework/Balloon.h"
#include "framework/Subclass.h"

#include <string>

namespace planfold {

class CExtEditOntry final : public framework::Subclass {
public:
    // Off while the edit's own digits-only style rules.
    void SetFilter(bool on) { m_filter = on; }
    // The edit told its parent that its text changed.
    void OnTextChanged();

private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnGone() override { m_balloon.Forget(); }
    void Refuse();

    bool m_filter = false;
    std::string m_allowed = "0123456789.";
    framework::Balloon m_balloon;
};

} // namespace planfold
