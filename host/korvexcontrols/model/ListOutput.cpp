#include "host/korvexcontrols/model/ListOutput.h"

#include "base/Text.h"

#include <utility>

namespace korvex {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFirstPortion(200); // what is done by then needs no progress window
constexpr milliseconds kPortion(50);
constexpr milliseconds kAllTime = std::chrono::days(1);

} // namespace

void ListOutput::Start(const char* name, RowsText text, Ready ready) {
    m_name = name;
    m_text.emplace(std::move(text));
    m_ready = std::move(ready);
    RunFor(kFirstPortion);
}

void ListOutput::Finish() {
    RunFor(kAllTime);
}

void ListOutput::Continue() {
    RunFor(kPortion);
}

void ListOutput::RunFor(milliseconds most) {
    const auto start = std::chrono::steady_clock::now();
    const auto gone = [this](std::uint32_t record) { return !m_model.Contains(record); };
    while (m_text && m_text->Done() < m_text->Total()) {
        if (std::chrono::steady_clock::now() - start >= most) return;
        m_text->AddSome(m_source, gone);
    }
    if (!m_text) return;
    const RowsText whole = *std::exchange(m_text, std::nullopt);
    std::exchange(m_ready, nullptr)(whole.Text());
}

std::string ListOutput::Progress() const {
    return base::Format("%s: %zu of %zu rows", m_name, Done(), Total());
}

} // namespace korvex
