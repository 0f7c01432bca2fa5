// Texts for the user: where they are shown, and several that are told together when something is over.
#pragma once

#include "base/Text.h"
#include "plugin/base/Lifetime.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace planfold {

// Where a text for the user is shown: a plain message box with OK, owned by the window that asks.
class Notices {
public:
    virtual void ShowMessage(Pass pass, std::string_view text) = 0;
    // The same where nothing of the caller's comes after it.
    void ShowLast(std::string_view text) {
        Lifetime::Last([&](Pass pass) { ShowMessage(pass, text); });
    }

protected:
    ~Notices() = default;
};

// Where the user is asked as well.
class Questions : public Notices {
public:
    // Whether a question can be asked now. Otherwise the open box comes to the front, and who asks hears when
    // it is gone.
    virtual bool MayAsk() = 0;
    // A question with Yes and No, of which No is the default; true for Yes.
    virtual bool Ask(Pass pass, std::string_view question) = 0;

protected:
    ~Questions() = default;
};

class KeptTexts final : public Notices {
public:
    void ShowMessage(Pass, std::string_view text) override { Add(text); }
    void Add(std::string_view text) {
        if (++m_count <= kMostLines) m_lines.append(m_lines.empty() ? "" : "\n").append(text);
    }

    // Each on its own line; a box stays readable, so only the number of the others after the first of them.
    std::string Text() const {
        if (m_count <= kMostLines) return m_lines;
        return m_lines + base::Format("\n... and %zu more", m_count - kMostLines);
    }

private:
    static constexpr std::size_t kMostLines = 30;

    std::string m_lines;
    std::size_t m_count = 0;
};

} // namespace planfold
