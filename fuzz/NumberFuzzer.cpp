// Numbers out of any text and back into one: as the C library reads and writes them, and prices whose range is
// judged with a reason.

#include "base/Text.h"
#include "fuzz/Fuzz.h"
#include "plugin/base/Numbers.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

using fuzz::Demand;

namespace {

// Words and hexadecimal digits are numbers for the C library only, and hundreds of digits beside an exponent
// are sorted by the exponent alone.
bool ReadsAlike(const std::string& text) {
    return text.size() < 300 && text.find_first_of("xXiInN") == text.npos && text.find('\0') == text.npos;
}

void CheckPrice(const std::string& text, const ScripDetails* details) {
    for (const bool check32Bit : {false, true}) {
        std::string message;
        const bool passed = planfold::CheckPriceRange(text, message, details, check32Bit);
        Demand(passed == message.empty());
        // What leaves the narrow range for its size alone stays in the wide one.
        if (passed && check32Bit) Demand(planfold::CheckPriceRange(text, message, details, false));
    }
    std::string largest;
    Demand(planfold::FormatMaxPrice(largest, details) == (details != nullptr));
}

void CheckFormat(double value, int decimals) {
    char fixed[400], general[64];
    std::snprintf(fixed, sizeof fixed, "%020.*f", decimals, value);
    std::snprintf(general, sizeof general, "%-24.*g", decimals + 1, value);
    // Zeros in front of a word are what each C library makes of it.
    if (std::isfinite(value)) Demand(base::Format("%020.*f", decimals, value) == fixed);
    Demand(base::Format("%-24.*g", decimals + 1, value) == general);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    ScripDetails details{};
    details.decimals = static_cast<std::int32_t>(input.Byte()) - 8;
    details.priceMultiplier = std::pow(10.0, static_cast<int>(input.Byte() % 32) - 8);
    details.tickSize =
        static_cast<std::int64_t>(std::ldexp(input.Byte(), static_cast<int>(input.Byte() % 40))) - 1;
    const std::string text = input.Rest();
    if (ReadsAlike(text)) {
        Demand(planfold::LeadingInteger(text) == std::strtoll(text.c_str(), nullptr, 10));
        Demand(planfold::LeadingReal(text) == std::strtod(text.c_str(), nullptr));
    }
    Demand(!std::isnan(planfold::LeadingReal(text)));
    CheckFormat(planfold::LeadingReal(text), details.decimals & 15);
    CheckPrice(text, nullptr);
    CheckPrice(text, &details);
    return 0;
}
