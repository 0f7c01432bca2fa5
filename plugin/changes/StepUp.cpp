#include "plugin/changes/StepUp.h"

#include "plugin/base/Numbers.h"
#include "plugin/changes/Cells.h"

#include <algorithm>
#include <iterator>

namespace planfold {

std::optional<std::int64_t> StepUp::Of(std::int64_t paise) const {
    constexpr std::int64_t most = 1'000'000'000, whole = 10'000;
    if (paise < 0 || paise >= most || hundredths < 0 || hundredths >= most) return std::nullopt;
    const std::int64_t more = by == By::percent ? (paise * hundredths + whole / 2) / whole : hundredths;
    return (paise + more + step / 2) / step * step;
}

StepUpRead ReadStepUp(StepUp::By by, std::string_view text, int step) {
    StepUpRead read{{.by = by}, {}};
    auto number = ReadRupees(text, false);
    if (number) std::erase(*number, '.');
    read.rule.hundredths = number ? LeadingInteger(*number) : 0;
    constexpr std::int64_t most = 999'999'999;
    if (read.rule.hundredths <= 0 || read.rule.hundredths > most)
        read.fault = by == StepUp::By::percent ? "Enter by how many per cent" : "Enter by how many rupees";
    if (step >= 0 && step < static_cast<int>(std::size(kStepUpSteps)))
        read.rule.step = kStepUpSteps[step].paise;
    return read;
}

} // namespace planfold
