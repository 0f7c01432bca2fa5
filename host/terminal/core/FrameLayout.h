// The main frame's measures: how large its texts are, and how its height is shared by the bands that lie one
// under the other. Between two shown bands that both can be resized lies a splitter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace vesk {

// How large the terminal's own texts are shown.
struct FrameScale {
    static constexpr int kUsualDpi = 96, kUsualPoints = 9;

    unsigned dpi = kUsualDpi;
    int points = kUsualPoints;

    int Pixels(int atUsualSize) const {
        constexpr std::int64_t usual = std::int64_t{kUsualDpi} * kUsualPoints;
        return static_cast<int>((std::int64_t{atUsualSize} * dpi * points + usual / 2) / usual);
    }
};

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
