// The plug-in's settings of any content: the kept search mode, and the list of further products.

#include "fuzz/Fuzz.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <algorithm>

using fuzz::Demand;
using namespace planfold;

namespace {

void CheckMode(test::FakeHost& host, Session& session, const std::string& kept) {
    host.settings = {{"Client_Search_Settings/key", kept}};
    test::SearchDouble box; // only the mode counts
    ClientSearch search(session, box);
    search.SetUp(test::kPass, "key");
    const SearchMode mode = search.Mode();
    Demand(mode >= SearchMode::all && mode <= SearchMode::clientName);
    search.SetMode(mode);
    ClientSearch again(session, box);
    again.SetUp(test::kPass, "key");
    Demand(again.Mode() == mode);
}

void CheckProducts(test::FakeHost& host, Session& session, std::string_view list) {
    const std::vector<std::string> known{"CNC", "MIS", "NRML", ""};
    for (const bool right : {false, true}) {
        host.rights.clear();
        if (right) host.rights.insert("QV: Planfold: Custom");
        test::OrderEntryDouble view;
        test::FakeControl control(host);
        view.controls[IDC_HOST_PRODUCTS].items = known;
        OrderEntry(session, view, &control).Initialise({2027, 1, 31}, list);
        const std::vector<std::string> products = view.Items(IDC_PRODUCT);
        Demand(view.Text(IDC_PRODUCT) == "CNC" && std::ranges::count(products, "CNC") == 1);
        Demand(right || products.size() == 1);
        for (const std::string& product : products)
            Demand(std::ranges::find(known, product) != known.end());
        const bool misListed = ("," + std::string(list) + ",").find(",MIS,") != std::string::npos;
        Demand((std::ranges::find(products, "MIS") != products.end()) == (right && misListed));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::Stage stage;
    fuzz::Input input(data, size);
    CheckMode(stage.host, stage.session, input.Line());
    CheckProducts(stage.host, stage.session, input.Rest());
    return 0;
}
