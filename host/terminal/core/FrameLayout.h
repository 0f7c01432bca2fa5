// How the main frame's height is shared by the bands that lie one under the other. Between two shown bands
// that both can be resized lies a splitter.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace vesk {

struct Band {
    int wanted = 0;       // height asked for; ignored when it stretches
    int least = 0;        // never smaller than this, unless the frame itself is
    bool stretch = false; // takes what the others leave; while it is hidden, the lowest resizable one does
    bool resizable = false;
    bool shown = true;

    int top = 0, height = 0; // set by Arrange; height 0 when not shown
};

class FrameLayout {
public:
    explicit FrameLayout(int splitterHeight) : m_splitter(splitterHeight) {}

    std::vector<Band>& Bands() { return m_bands; }
    const std::vector<Band>& Bands() const { return m_bands; }

    void Arrange(int height);
    // The band under the splitter at this height, if there is one.
    std::optional<std::size_t> SplitterAt(int y) const;
    // Moves the upper edge of the band; the bands above and below give or take.
    void Drag(std::size_t band, int y);

private:
    bool HasSplitter(std::size_t band) const;
    Band* TakerOfRest();

    std::vector<Band> m_bands;
    int m_splitter;
    int m_height = 0;
};

} // namespace vesk
