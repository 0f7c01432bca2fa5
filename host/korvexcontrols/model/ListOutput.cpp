#include "host/korvexcontrols/model/ListOutput.h"

#include "base/Text.h"

#include <chrono>
#include <utility>

namespace korvex {

void ListOutput::Start(const char* name, RowsText text, Ready ready) {
    m_name = name;
    m_text.emplace(std::move(text));
    m_ready = std::move(ready);
    RunFor(kFirstReckoningMs);
}

void ListOutput::Finish() {
    while (m_text)
        Step();
}

void ListOutput::Continue() {
    RunFor(kPortionMs);
}

void ListOutput::RunFor(std::int64_t milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (m_text && std::chrono::steady_clock::now() < end)
        Step();
}

void ListOutput::Step() {
    if (m_text->Done() < m_text->Total())
        return m_text->AddSome(m_source, [this](std::uint32_t record) { return !m_model.Contains(record); });
    const RowsText whole = *std::exchange(m_text, std::nullopt);
    std::exchange(m_ready, nullptr)(whole.Text());
}

std::string ListOutput::Progress() const {
    return base::Format("%s: %zu of %zu rows", m_name, Done(), Total());
}

} // namespace korvex
