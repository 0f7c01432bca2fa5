// An order record of any content: what is read of it can be written and read again, and every order has one
// state.

#include "fuzz/Fuzz.h"
#include "plugin/record/OrderLedger.h"

#include <algorithm>

using namespace planfold;
using fuzz::Demand;

namespace {

bool AreSame(const RecordTexts& one, const RecordTexts& other) {
    for (std::size_t i = 0; i < kRecordFieldCount; ++i) {
        // Within a line feed's line, only these are written otherwise.
        std::string written(one[static_cast<RecordField>(i)]);
        std::ranges::replace_if(
            written, [](char c) { return c == '\0' || c == '\r' || c == kTornEnd[0]; }, ' ');
        if (written != other[static_cast<RecordField>(i)]) return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file = fuzz::Text(data, size);
    OrderLedger ledger;
    RecordReader reader(file);
    std::size_t events = 0;
    while (auto texts = reader.Next()) {
        ++events;
        std::string line;
        (*texts)[RecordField::time] = "2027-03-05 14:02:03"; // a heading begins with the column's name
        AppendRecordLine(*texts, line);
        Demand(std::ranges::count(line, '\n') == 1);
        RecordReader again(line);
        const auto back = again.Next();
        Demand(back && AreSame(*texts, *back) && !again.Next());
        const OrderPlace place = ledger.Take(*texts);
        const auto event = EventNamed((*texts)[RecordField::event]);
        // A doubt does not undo an answer.
        const bool isDoubt = event == OrderEvent::inDoubt || event == OrderEvent::absent;
        Demand(place == kNoOrder || ledger[place].Text(RecordField::event) == (*texts)[RecordField::event]
               || (isDoubt && !IsOpen(ledger[place].State())));
        for (const OrderPlace like : ledger.Like(*texts))
            Demand(AskedForKey(ledger[like].Texts()) == AskedForKey(*texts));
    }
    Demand(events + reader.UnreadLines() <= static_cast<std::size_t>(std::ranges::count(file, '\n')) + 1);
    std::size_t orders = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(OrderState::count); ++i)
        orders += ledger.Count(static_cast<OrderState>(i));
    Demand(orders == ledger.Orders().size());
    const OrderLedger open = ledger.Open();
    for (const OrderState state : {OrderState::sent, OrderState::inDoubt})
        Demand(open.Count(state) == ledger.Count(state));
    Demand(open.Orders().size() == open.Count(OrderState::sent) + open.Count(OrderState::inDoubt));
    return 0;
}
