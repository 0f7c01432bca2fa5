// Journals of any content: the records taken are exactly the text up to where reading stopped.

#include "host/server/ExchangeOrder.h"
#include "host/server/journal/Journal.h"
#include "host/server/schedule/RestrictedDays.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// What is read of a content reads the same once it is written.
template <class Record>
void Check(std::string_view content) {
    const auto record = Record::FromJson(content);
    if (record && Record::FromJson(record->Json())->Json() != record->Json()) std::abort();
}

void CheckAll(std::string_view content) {
    Check<vesk::Registration>(content);
    Check<vesk::RestrictedRange>(content);
    Check<vesk::ExchangeOrder>(content);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const vesk::JournalText judged = vesk::ReadJournalText(text);
    std::string written;
    for (const std::string_view record : judged.records) {
        written += vesk::JournalLine(record);
        CheckAll(record);
    }
    if (written != text.substr(0, judged.end)) std::abort();
    if ((judged.torn || judged.damaged) == (judged.end == size)) std::abort();
    // Here the content itself is read, without the checksum in the way.
    CheckAll(text);
    return 0;
}
