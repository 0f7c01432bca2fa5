#include "host/korvexcontrols/model/ListOutput.h"

#include "base/Text.h"

#include <chrono>
#include <limits>
#include <utility>

namespace korvex {

void ListOutput::Start(const char* name, RowsText text, Ready ready) {
    m_name = name;
    m_text.emplace(std::move(text));
    m_ready = std::move(ready);
    RunFor(kFirstReckoningMs);
}

void ListOutput::Finish() {
    RunFor(std::numeric_limits<std::int64_t>::max());
}

void ListOutput::Continue() {
    RunFor(kPortionMs);
}

void ListOutput::RunFor(std::int64_t mostMs) {
    const auto start = std::chrono::steady_clock::now();
    const auto elapsedMs = [&] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
            .count();
    };
    const auto gone = [this](std::uint32_t record) { return !m_model.Contains(record); };
    while (m_text && m_text->Done() < m_text->Total()) {
        if (elapsedMs() >= mostMs) return;
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
