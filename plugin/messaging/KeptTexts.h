// Texts for the user that are told together when something is over.
#pragma once

#include "plugin/messaging/Session.h"

#include <string>
#include <string_view>

namespace planfold {

class KeptTexts final : public Notices {
public:
    void ShowMessage(std::string_view text) override;

    // Each on its own line; a box stays readable, so only the number of the others after the first of them.
    std::string Text() const;

private:
    std::string m_lines;
    std::size_t m_count = 0;
};

} // namespace planfold
