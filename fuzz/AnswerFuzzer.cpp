// Answers of any content to an open order entry form: none sends a request, none touches what the user entered,
// and the form can be submitted afterwards.

#include "fuzz/Messages.h"
#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

using fuzz::Demand;
using namespace planfold;

namespace {

constexpr LocalDateTime kNow{2027, 1, 31, 15, 30, 0};

std::vector<std::string> Entered(const test::OrderEntryDouble& view) {
    std::vector<std::string> texts{FormatPickerDate(view.date)};
    for (const int id : {IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL, IDC_ACTION, IDC_ORDER_TYPE, IDC_PRODUCT,
                         IDC_INVEST_BY, IDC_VALUE, IDC_PERIOD, IDC_CLIENT_SEARCH, IDC_CLIENT_COMBO})
        texts.push_back(view.Text(id));
    return texts;
}

struct Form : test::Stage {
    Form() {
        view.controls[IDC_SERIES].items = {"BE", "EQ"};
        view.controls[IDC_SYMBOL].items = {"ARBORTEX", "BYTEFIN"};
        entry.Initialise(kNow, {});
        view.SetText(IDC_VALUE, "1500");
        view.SetText(IDC_CLIENT_SEARCH, "C001");
    }

    test::OrderEntryDouble view;
    OrderEntry entry{session, view, &control};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes = fuzz::MessageBytes({data, size});
    const qmx::MessageReader reader(bytes);
    if (!reader.Good()) return 0;
    Form form;
    const Answer answer(reader.Handle());
    const bool aboutMode = answer.request == "get_sip_operation_mode";
    const bool modified = answer.request == "modify_sip_order" && !answer.hasError;
    const bool added = answer.request == "add_sip_orders" && !answer.hasError;

    const auto entered = Entered(form.view);
    const std::size_t sent = form.host.requests.size();
    form.entry.OnResponse(reader.Handle());
    Demand(form.host.requests.size() == sent);
    Demand(Entered(form.view) == entered);
    Demand(!form.view.closed); // only a form that was filled to modify closes by an answer
    Demand(form.view.boxes.empty() || added || modified);
    Demand(form.host.log.size() == (answer.hasError && !aboutMode ? 1u : 0u));
    const bool frequenciesListed = !form.view.controls[IDC_FREQUENCY].items.empty();
    Demand(aboutMode || (!frequenciesListed && form.view.Text(IDC_PERIOD_LABEL).empty()));

    form.view.boxes.clear();
    form.entry.Submit(kNow);
    Demand(form.host.requests.size() - sent + form.view.boxes.size() == 1);
    return 0;
}
