// Answers and updates of any content to the registration book, one after another: each record stands where the
// rules put it, at most once in a list, and shows what the last message said.
//
// Messages are divided by lines of "--"; one that begins with the line "stream" is an update, else an answer.

#include "fuzz/Messages.h"
#include "tests/plugin/BookDouble.h"

#include <map>
#include <set>

using fuzz::Demand;
using namespace planfold;

namespace {

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

std::optional<std::string> Value(void* message, std::uint32_t tag) {
    const auto value = FieldView(message, tag);
    if (!value) return std::nullopt;
    return std::string(*value);
}

void Expect(Expected& expected, void* message, bool streamed) {
    const std::string number = Value(message, 64804).value_or("");
    const auto status = Value(message, 10303);
    if (number.empty()) return;
    if (streamed) return expected.Apply(number, status, true);
    QmxField field{};
    QmxError error{};
    if (qmx_get_field(message, 32766, &field, &error)) return;
    const std::string request = Value(message, 32767).value_or("");
    if (request == "om_get_sip_orders" && FieldCount(message, 54324) > 0) expected.Apply(number, status, false);
    if (request == "qry_eq_sip" && (status == "canceled" || status == "cancelled") && Value(message, 64056)
        && !expected.records.contains(number))
        expected.Apply(number, status, false);
}

void Compare(const Expected& expected, const OrderBook& book, const test::BookDouble& view) {
    Demand(book.Records().Size() == expected.records.size());
    for (const test::ListDouble* list : {&view.registered, &view.cancelled})
        Demand(std::set(list->rows.begin(), list->rows.end()).size() == list->rows.size());
    for (const auto& [number, record] : expected.records) {
        const RecordId id = book.Records().Find(number);
        Demand(id != kNoRecord);
        Demand(book.Records()[id].Text(OrderField::sipStatus) == record.status);
        Demand(view.registered.Contains(id) == record.registered);
        Demand(view.cancelled.Contains(id) == record.cancelled);
    }
}

std::vector<std::string> Messages(fuzz::Input input) {
    std::vector<std::string> messages(1);
    while (!input.AtEnd()) {
        const std::string line = input.Line();
        if (line == "--")
            messages.emplace_back();
        else
            messages.back() += line + "\n";
    }
    return messages;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::Stage stage;
    test::BookDouble view;
    OrderBook book(stage.session, view, {&stage.control, &stage.control, &stage.control});
    book.Open({2027, 1, 31, 15, 30, 0});
    const std::size_t sent = stage.host.requests.size();

    Expected expected;
    for (std::string text : Messages({data, size})) {
        const bool streamed = text.starts_with("stream\n");
        if (streamed) text.erase(0, text.find('\n') + 1);
        const std::string bytes =
            fuzz::MessageBytes({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        const qmx::MessageReader reader(bytes);
        if (!reader.Good()) continue;
        Expect(expected, reader.Handle(), streamed);
        if (streamed)
            book.OnBroadcast(reader.Handle());
        else
            book.OnResponse(reader.Handle());
        Compare(expected, book, view);
    }
    Demand(stage.host.requests.size() == sent); // nothing that comes in sends anything
    return 0;
}
