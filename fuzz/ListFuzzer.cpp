// The list's model under any operations, beside a plain one; and the lines in which lists keep their columns.

#include "fuzz/Fuzz.h"
#include "host/korvexcontrols/model/CellDates.h"
#include "host/korvexcontrols/model/KeptLayout.h"
#include "tests/support/ListPair.h"

using fuzz::Demand;
using namespace korvex;

namespace {

void ReadBack(const std::string& line, std::size_t columns) {
    if (const auto rows = ReadRows(line, columns)) Demand(ReadRows(WriteRows(*rows), columns) == rows);
    if (const auto date = IsoDate(line)) Demand(ReadDate(*date) == ReadDate(line));
    const auto state = ReadColumns(line, columns);
    if (!state) return;
    Demand(state->order.size() == columns && state->widths.size() == columns);
    Demand(ReadColumns(WriteColumns(*state), columns) == state);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int mostSteps = 400;
    fuzz::Input input(data, size);
    const std::uint32_t records = 1 + input.Byte() % 32;
    ReadBack(input.Line(), records % 8);
    test::ListPair pair(records);
    for (int step = 0; step < mostSteps && !input.AtEnd(); ++step) {
        pair.Step([&] { return input.Byte(); });
        const std::string difference = pair.Difference();
        if (!difference.empty()) std::fprintf(stderr, "step %d: %s\n", step, difference.c_str());
        Demand(difference.empty());
    }
    return 0;
}
