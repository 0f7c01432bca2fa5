// Answers and updates of any content to the registration book, one after another: each record stands where the
// rules put it, at most once in a list, and shows what the last message said; filters and sort hold all the
// time.
//
// Messages are divided by lines of "--"; one that begins with the line "stream" is an update, else an answer.
// One that begins with "view" filters both lists by the column and text of its next line, "13=active", and
// sorts by that column.

#include "fuzz/Messages.h"
#include "host/korvexcontrols/model/CellDates.h"
#include "tests/plugin/BookDouble.h"
#include "tests/support/ModelList.h"

#include <algorithm>
#include <map>

using fuzz::Demand;
using namespace planfold;

namespace {

using Book = test::BookDoubleOf<test::ModelList>;

// The rules once more, over plain containers.
struct Expected {
    struct Record {
        std::string status;
        bool registered = false;
        bool cancelled = false;
    };

    void Apply(const std::string& number, const std::optional<std::string>& status, bool streamed) {
        const auto [place, isNew] = records.try_emplace(number);
        Record& record = place->second;
        if (status) record.status = *status;
        const bool ended = record.status == "canceled" || record.status == "cancelled";
        if (isNew && !ended) record.registered = true;
        if (ended) record.cancelled = true;
        if (streamed && status && ended) record.registered = false;
    }

    std::map<std::string, Record> records;
};

void Expect(Expected& expected, void* message, bool streamed) {
    const std::string number(FieldView(message, tag::registrationNumber).value_or(""));
    std::optional<std::string> status;
    if (const auto text = FieldView(message, tag::sipStatus)) status = *text;
    if (number.empty()) return;
    if (streamed) return expected.Apply(number, status, true);
    if (qmx::Has(message, tag::errorCode)) return;
    const auto request = FieldView(message, tag::echoedRequest);
    if (request == "om_get_sip_orders" && FieldCount(message, tag::queriedRow) > 0)
        expected.Apply(number, status, false);
    if (request == "qry_eq_sip" && (status == "canceled" || status == "cancelled")
        && FieldView(message, tag::peerIdA) && !expected.records.contains(number))
        expected.Apply(number, status, false);
}

struct View {
    int column = -1;
    std::string filter;
};

std::string Folded(std::string_view text) {
    std::string folded(text);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return folded;
}

// What of the list's rows is on the screen, and in which order.
void CompareShown(const View& view, const OrderBook& book, test::ModelList& list) {
    const korvex::ListModel& model = list.Model();
    std::vector<RecordId> rows;
    const auto text = [&](RecordId record) {
        return book.Records()[record].Text(kBookColumns[view.column].field);
    };
    // Whole numbers and dates come before what has no value.
    const auto place = [&](RecordId record) {
        const auto value = korvex::ReadTextValue(text(record));
        return std::tuple(!value, value.value_or(0), value ? std::string() : Folded(text(record)));
    };
    for (std::uint32_t row = 0; row < model.RowCount(); ++row) {
        const RecordId record = model.RecordAt(row);
        Demand(model.IndexOf(record) == row);
        if (view.column < 0 || Folded(text(record)).find(Folded(view.filter)) != std::string::npos)
            rows.push_back(record);
    }
    if (view.column >= 0) std::ranges::stable_sort(rows, {}, place);
    Demand(model.Rows().ShownRecords() == rows);
    Demand(model.ShownCount() == rows.size());
}

void SetView(const View& view, test::ModelList& list) {
    const korvex::FilterInput contains{korvex::FilterOperator::contains, view.filter, {}};
    list.Model().ClearFilters();
    list.Model().SetFilter(view.column, view.filter.empty() ? nullptr : &contains);
    list.Model().SetSort({{view.column, false, korvex::ValueType::text}});
}

void Compare(const Expected& expected, const OrderBook& book, const Book& view) {
    Demand(book.Records().Size() == expected.records.size());
    for (const auto& [number, record] : expected.records) {
        const RecordId id = book.Records().Find(number);
        Demand(id != kNoRecord);
        Demand(book.Records()[id].Text(OrderField::sipStatus) == record.status);
        Demand(view.registered.Contains(id) == record.registered);
        Demand(view.cancelled.Contains(id) == record.cancelled);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::Stage stage;
    Book view;
    OrderBook book(stage.session, view, {&stage.control, &stage.control, &stage.control});
    book.Open({2027, 1, 31, 15, 30, 0});
    view.registered.Show(book.Records());
    view.cancelled.Show(book.Records());
    const std::size_t sent = stage.host.requests.size();
    View shown;

    Expected expected;
    for (std::string text : fuzz::Messages({data, size})) {
        if (text.starts_with("view\n")) {
            std::string_view rest = text;
            fuzz::Input::CutAt(rest, '\n');
            const auto column = std::strtoul(std::string(fuzz::Input::CutAt(rest, '=')).c_str(), nullptr, 10);
            shown = {static_cast<int>(column % std::size(kRegisteredColumns)),
                     std::string(fuzz::Input::CutAt(rest, '\n'))};
            for (test::ModelList* list : {&view.registered, &view.cancelled})
                SetView(shown, *list);
        }
        const bool streamed = text.starts_with("stream\n");
        if (streamed) text.erase(0, text.find('\n') + 1);
        const std::string bytes = fuzz::MessageBytes(fuzz::Input(text));
        const qmx::MessageReader reader(bytes);
        if (!reader.Good()) continue;
        Expect(expected, reader.Handle(), streamed);
        if (streamed)
            book.OnBroadcast(reader.Handle());
        else
            book.OnResponse(reader.Handle());
        Compare(expected, book, view);
        for (test::ModelList* list : {&view.registered, &view.cancelled})
            CompareShown(shown, book, *list);
    }
    Demand(stage.host.requests.size() == sent); // nothing that comes in sends anything
    return 0;
}
