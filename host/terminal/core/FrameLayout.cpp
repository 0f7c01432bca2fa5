#include "host/terminal/core/FrameLayout.h"

#include <algorithm>

namespace vesk {

bool FrameLayout::HasSplitter(std::size_t band) const {
    if (!m_bands[band].shown || !m_bands[band].resizable) return false;
    return std::any_of(m_bands.begin(), m_bands.begin() + static_cast<std::ptrdiff_t>(band),
                       [](const Band& above) { return above.shown && above.resizable; });
}

Band* FrameLayout::TakerOfRest() {
    Band* taker = nullptr;
    for (Band& band : m_bands) {
        if (!band.shown || !band.resizable) continue;
        if (band.stretch) return &band;
        taker = &band;
    }
    return taker;
}

void FrameLayout::Arrange(int height) {
    m_height = height;
    int left = height;
    for (std::size_t i = 0; i < m_bands.size(); ++i) {
        Band& band = m_bands[i];
        if (HasSplitter(i)) left -= m_splitter;
        band.height = !band.shown ? 0 : band.stretch ? band.least : std::max(band.wanted, band.least);
        left -= band.height;
    }
    // Where there is too little room, the resizable bands give way, the lowest first.
    for (auto band = m_bands.rbegin(); band != m_bands.rend() && left < 0; ++band)
        if (band->shown && band->resizable && !band->stretch) {
            const int given = std::min(-left, std::max(0, band->height - band->least));
            band->height -= given;
            left += given;
        }
    if (Band* taker = TakerOfRest()) taker->height += std::max(0, left);
    int top = 0;
    for (std::size_t i = 0; i < m_bands.size(); ++i) {
        Band& band = m_bands[i];
        if (HasSplitter(i)) top += m_splitter;
        band.top = top;
        top += band.height;
    }
}

std::optional<std::size_t> FrameLayout::SplitterAt(int y) const {
    for (std::size_t i = 0; i < m_bands.size(); ++i)
        if (HasSplitter(i) && y < m_bands[i].top && y >= m_bands[i].top - m_splitter) return i;
    return std::nullopt;
}

void FrameLayout::Drag(std::size_t dragged, int y) {
    Band& band = m_bands[dragged];
    const int bottom = band.top + band.height;
    int most = band.height;
    for (const Band& other : m_bands)
        if (other.shown && other.stretch) most += std::max(0, other.height - other.least);
    band.wanted = std::clamp(bottom - y, band.least, std::max(band.least, most));
    Arrange(m_height);
}

} // namespace vesk
