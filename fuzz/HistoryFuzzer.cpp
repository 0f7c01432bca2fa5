// Answers of any content to the order history, between queries and moves of the focus: only a closed answer
// changes what is listed, only trades of waiting orders change a record, and the chart counts every order once.
//
// Messages are divided by lines of "--"; "open S1" asks for a registration, "focus 2" moves the focus.

#include "fuzz/Messages.h"
#include "plugin/history/HistoryChart.h"
#include "tests/plugin/Doubles.h"

#include <algorithm>
#include <cmath>

using fuzz::Demand;
using namespace planfold;

namespace {

struct View final : test::HistoryDouble {
    void ShowMessage(Pass, std::string_view text) override { Demand(text.starts_with("No orders yet: ")); }
    void ShowDetails(const HistoryDetails& details, const std::string&) override {
        for (const std::string& text : details)
            Demand(!focused || !text.empty());
    }
};

constexpr HistoryField kMayChange[] = {HistoryField::fillDetailA, HistoryField::fillDetailB,
                                       HistoryField::tradedPrice};

bool IsKept(const sOrderHistory& before, const sOrderHistory& after) {
    for (std::size_t i = 0; i < before.texts.size(); ++i) {
        const bool named = before.texts[i].empty() && after.texts[i] == "NA";
        const bool byTrade =
            before.fillPending && std::ranges::count(kMayChange, static_cast<HistoryField>(i)) > 0;
        if (before.texts[i] != after.texts[i] && !named && !byTrade) return false;
    }
    return before.fillPending == after.fillPending;
}

void CheckChart(const std::vector<sOrderHistory>& records, std::size_t most) {
    const HistoryChart chart(records);
    const auto bars = chart.Bars(most);
    Demand(bars.size() <= most);
    const double top = ScaleTop(bars);
    std::size_t orders = 0;
    for (const ChartBar& bar : bars) {
        orders += bar.orders;
        for (const double value : bar.values)
            Demand(std::isfinite(value) && value >= 0);
        Demand(bar.Total() <= top * (1 + 1e-9));
    }
    Demand(orders == (most ? records.size() : 0));
    Demand(!chart.Summary().empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::Stage stage;
    View view;
    OrderHistory history(stage.session, view, &stage.control);
    view.history = &history;
    for (const std::string& text : fuzz::Messages({data, size})) {
        if (text.starts_with("open ")) {
            history.Open(test::kPass, text.substr(5));
            continue;
        }
        if (text.starts_with("focus ")) {
            const std::size_t row = std::strtoul(text.c_str() + 6, nullptr, 10);
            view.focused = row < history.Records().size() ? std::optional(row) : std::nullopt;
            history.OnFocusChanged();
            continue;
        }
        const std::string bytes = fuzz::MessageBytes(fuzz::Input(text));
        const qmx::MessageReader reader(bytes);
        if (!reader.Good()) continue;
        const auto before = history.Records();
        const int listings = view.listings;
        const std::size_t sent = stage.host.requests.size();
        history.OnResponse(reader.Handle());
        const auto& after = history.Records();
        const bool pending = std::ranges::any_of(after, &sOrderHistory::fillPending);
        const bool listed = view.listings != listings;
        Demand(stage.host.requests.size() - sent == (listed && pending ? 1u : 0u));
        Demand(listed || std::ranges::equal(before, after, IsKept));
        Demand(!listed || view.shown == !after.empty());
        if (listed) CheckChart(after, size % 7);
    }
    return 0;
}
