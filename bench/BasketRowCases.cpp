#include "bench/Cases.h"
#include "bench/SampleBasket.h"
#include "bench/SilentHost.h"
#include "plugin/basket/BasketPlacing.h"
#include "plugin/import/ImportFile.h"

#include <algorithm>
#include <deque>
#include <memory>

namespace bench {
namespace {

using namespace planfold;

// The basket behind its window: records in front of a list.
class Store final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override { list.push_front(rows.Add(texts)); }
    void OnRejected(const RejectedLine&, const BasketTexts&) override {}
    void OnNotice(std::string_view) override {}
    void OnLog(std::string_view) override {}

    BasketRows rows;
    std::deque<RecordId> list;
};

const std::string kHeadings =
    "Client,Exchange,Series,Symbol,Token,Trading Symbol,Product,Amount in paise,Quantity,"
    "Frequency,,Start Date,Periods,Order Type,Action,,,,Invest Type\n";

struct Desk {
    explicit Desk(std::uint32_t lines) : sample(lines) {}

    // A new session: what one placed another would ask about.
    void OpenHost(bool isRecorded) {
        host = std::make_unique<SilentHost>(isRecorded ? static_cast<RecordFiles&>(onDisk) : noRecord);
        HostCallbacks& callbacks = host->session.host;
        callbacks.pu_build_bskt_caution_order_map = [](InString, InString, InString, InString, InString,
                                                       InString, int) { return 1; };
        callbacks.pu_invoke_bskt_caution_order_confirmation = [] { return 1; };
        callbacks.pu_get_cautionary_bskt_confirm_state = [](InString, InString, int row) {
            return 1 + row % 2;
        };
    }

    void Empty() {
        store.reset();
        store = std::make_unique<Store>();
    }
    void Load() {
        sample.Load(sample.text, *store);
        Require(store->list.size() == sample.lines, "loading into rows");
    }
    // The same orders as a table.
    void Import() {
        if (table.Columns().texts.empty())
            Require(table.Open(kHeadings + sample.text, {}).empty(), "opening a table");
        const auto reader = table.Read(sample.rules, sample.scrips, *store);
        while (reader->Read(1'000)) {
        }
        Require(store->list.size() == sample.lines, "importing into rows");
    }
    void Fill() {
        if (store && store->list.size() == sample.lines) return;
        Empty();
        Load();
    }
    void Export() {
        exported.clear();
        for (const RecordId record : store->list)
            AppendBasketLine(store->rows[record], exported);
        Require(exported.size() == sample.text.size(), "writing rows");
    }
    void Place() {
        BasketPlacing placing(host->pass, host->session, &host->control, store->rows, unanswered, "sample.csv",
                              {}, {store->list.begin(), store->list.end()});
        while (placing.Step(host->pass)) {
        }
        Require(placing.SentCount() == sample.lines, "placing");
    }
    // An answer for each row, the oldest first.
    void Answer() {
        for (const RecordId record : store->list) {
            const RecordId found = store->rows.BySerialNumber(store->rows[record].SerialNumber());
            store->rows.SetUserText(found, "SIP registered. Registration No : SIP2701100000001");
        }
    }

    NoRecord noRecord;
    DiskRecord onDisk;
    std::unique_ptr<SilentHost> host;
    UnansweredRows unanswered;
    SampleBasket sample;
    ImportFile table;
    std::unique_ptr<Store> store;
    std::string exported;
};

} // namespace

std::vector<Case> BasketRowCases(std::uint32_t lines) {
    const auto desk = std::make_shared<Desk>(lines);
    const auto named = [&](const char* name) { return name + ("-" + std::to_string(lines)); };
    const auto fill = [=] { desk->Fill(); };
    const auto open = [=](bool isRecorded) {
        return [=] {
            desk->Fill();
            desk->OpenHost(isRecorded);
        };
    };
    return {
        {named("load-rows"), [=] { desk->Load(); }, lines, [=] { desk->Empty(); }},
        {named("import-rows"), [=] { desk->Import(); }, lines, [=] { desk->Empty(); }},
        {named("export-rows"), [=] { desk->Export(); }, lines, fill},
        {named("place"), [=] { desk->Place(); }, lines, open(false)},
        {named("place-recorded"), [=] { desk->Place(); }, lines, open(true)},
        {named("answer"), [=] { desk->Answer(); }, lines, fill},
    };
}

double BytesOfAStoredRow(std::uint32_t lines) {
    Desk desk(lines);
    desk.Fill();
    const std::size_t full = HeapBytes();
    desk.store.reset();
    return static_cast<double>(full - HeapBytes()) / lines;
}

} // namespace bench
