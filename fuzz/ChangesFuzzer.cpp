// A file of changes of any content over a small book: nothing but amount, quantity and periods of a
// registration of the book changes, within the order's rules, and what goes out comes back without a change.

#include "fuzz/Fuzz.h"
#include "plugin/base/Numbers.h"
#include "plugin/changes/ChangeSet.h"

#include <set>

using namespace planfold;
using fuzz::Demand;

namespace {

void Enter(OrderCache& book, std::string_view number, std::string_view value, bool byValue,
           std::string_view periods, std::string_view text) {
    OrderChanges changes;
    changes[OrderField::loginId] = "D";
    changes[OrderField::account] = text;
    changes[OrderField::sipStatus] = "active";
    changes[OrderField::investType] = byValue ? "value" : "qty";
    changes[byValue ? OrderField::amount : OrderField::quantity] = value;
    changes[OrderField::totalPeriod] = periods;
    changes[OrderField::startDate] = "05-Mar-2027";
    book[book.Add(number)].Apply(changes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::Text(data, size);
    OrderCache book;
    Enter(book, "S1", "1500.00", true, "22", "C1");
    Enter(book, "Q2", "40", false, "6", "C2");
    const ChangeRules rules{false, {}, "D"};
    ChangeSet set(book, rules, std::string(text));
    while (set.Read(100)) {
    }
    std::set<std::string> sent;
    for (const std::size_t index : set.Sendable()) {
        const Change& change = set.Changes()[index];
        Demand(book.Find(change.registration) != kNoRecord && sent.insert(change.registration).second);
        Demand(change.ChangesValue() || change.ChangesPeriods());
        Demand(AllDigits(change.value) && LeadingInteger(change.value) > 0 && change.value.size() <= 10);
        const std::int64_t periods = LeadingInteger(change.periods);
        Demand(AllDigits(change.periods) && periods >= 1 && periods <= 60);
    }
    // Whatever the book's own texts are.
    OrderCache odd;
    if (text.find('\0') == text.npos) Enter(odd, "S3", "2000.00", true, "12", text.substr(0, 200));
    const RecordId all[] = {0};
    if (!odd.Size()) return 0;
    ChangeSet same(odd, rules, ChangeFileText(odd, all, false));
    while (same.Read(100)) {
    }
    Demand(same.Fault().empty() && same.Changes().empty());
    return 0;
}
