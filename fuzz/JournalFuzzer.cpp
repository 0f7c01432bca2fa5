// Journals of any content: the records taken are exactly the text up to where reading stopped.

#include "fuzz/Fuzz.h"
#include "host/server/ExchangeOrder.h"
#include "host/server/journal/Journal.h"
#include "host/server/schedule/RestrictedDays.h"

using fuzz::Demand;

namespace {

// What is read of a content reads the same once it is written.
template <class Record>
void Check(std::string_view content) {
    const auto record = Record::FromJson(content);
    Demand(!record || Record::FromJson(record->Json())->Json() == record->Json());
}

void CheckAll(std::string_view content) {
    Check<vesk::Registration>(content);
    Check<vesk::RestrictedRange>(content);
    Check<vesk::ExchangeOrder>(content);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::Text(data, size);
    const vesk::JournalText judged = vesk::ReadJournalText(text);
    std::string written;
    vesk::JournalChain chain{.number = judged.chain.number - judged.records.size()};
    for (const std::string_view record : judged.records) {
        if (!judged.isOld) chain.AppendLine(written, record);
        CheckAll(record);
    }
    Demand(judged.isOld || written == text.substr(0, judged.end));
    Demand((judged.isTorn || !judged.damage.empty()) != (judged.end == size));
    Demand(vesk::FindJournalFaults(text).empty() == (judged.end == size));
    // Here the content itself is read, without the checksum in the way.
    CheckAll(text);
    return 0;
}
