// Journals of any content: the records taken are exactly the text up to where reading stopped.

#include "host/server/Journal.h"
#include "host/server/Registration.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const vesk::JournalText judged = vesk::ReadJournalText(text);
    std::string written;
    for (const std::string_view record : judged.records) {
        written += vesk::JournalLine(record);
        const auto registration = vesk::Registration::FromJson(record);
        if (registration && vesk::Registration::FromJson(registration->Json())->Json() != registration->Json())
            std::abort();
    }
    if (written != text.substr(0, judged.end)) std::abort();
    if ((judged.torn || judged.damaged) == (judged.end == size)) std::abort();
    // Without the checksum in the way: the content itself.
    vesk::Registration::FromJson(text);
    return 0;
}
