// Typed dates: refused, or a local midnight that reads back as itself.

#include "fuzz/Fuzz.h"
#include "plugin/base/Dates.h"

#include <cstdlib>
#include <ctime>
#include <iterator>

using fuzz::Demand;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr const char* zones[] = {"UTC0", "IST-5:30", "EST5EDT", "CET-1CEST",
                                            "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"};
    static unsigned current = ~0u;
    fuzz::Input input(data, size);
    const unsigned zone = input.Byte() % std::size(zones);
    if (zone != current) {
        setenv("TZ", zones[zone], 1);
        tzset();
        current = zone;
    }
    const std::int64_t seconds = planfold::ParseDate(input.Rest());
    if (seconds < 0) return 0;
    const planfold::LocalDateTime local = planfold::ToLocal(seconds);
    Demand(local.year >= 1970 && local.year <= 9999);
    Demand(planfold::ParseDate(planfold::FormatPickerDate(local)) == seconds);
    return 0;
}
