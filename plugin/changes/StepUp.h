// Amounts that grow by a part of themselves or by so many rupees, and are rounded.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace planfold {

struct StepUp {
    enum class By { percent, rupees };

    By by = By::percent;
    std::int64_t hundredths = 0; // of a per cent or a rupee
    std::int64_t step = 1;       // paise; the nearest multiple, from the middle on the upper one

    // None beyond what an amount can be.
    std::optional<std::int64_t> Of(std::int64_t paise) const;
};

struct StepUpStep {
    const char* text;
    std::int64_t paise;
};
inline constexpr StepUpStep kStepUpSteps[] = {{"none", 1},        {"Rs 1", 100},        {"Rs 5", 500},
                                              {"Rs 10", 1'000},   {"Rs 50", 5'000},     {"Rs 100", 10'000},
                                              {"Rs 500", 50'000}, {"Rs 1,000", 100'000}};

// As the dialog has them; what is wrong with it otherwise. `step` is a place in the table.
struct StepUpRead {
    StepUp rule;
    std::string fault;
};
StepUpRead ReadStepUp(StepUp::By by, std::string_view text, int step);

} // namespace planfold
