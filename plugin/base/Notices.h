// Texts for the user: where they are shown, and several that are told together when something is over.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace planfold {

// Where a text for the user is shown: a plain message box with OK, owned by the window that asks.
class Notices {
public:
    virtual void ShowMessage(std::string_view text) = 0;

protected:
    ~Notices() = default;
};

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
