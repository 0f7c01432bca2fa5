// Received bytes of any content: refused, or read wholly within their bounds.

#include "fuzz/Fuzz.h"
#include "host/connectvesk/QmxHost.h"

using fuzz::Demand;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::Text(data, size);
    const qmx::MessageReader reader(bytes);
    if (!reader.Good()) {
        Demand(reader.Error().code != kQmxOk && reader.Error().text[0] != '\0');
        return 0;
    }
    for (const std::uint32_t tag : {0u, 10012u, 20008u, 54001u, 54101u, 64804u}) {
        const std::uint32_t count = qmx::Count(reader.Handle(), tag);
        for (std::uint32_t i = 0; i < count && i < 100; ++i) {
            const std::string_view value = qmx::Text(reader.Handle(), tag, i);
            Demand(value.data() >= bytes.data() && value.data() + value.size() <= bytes.data() + bytes.size());
        }
    }
    Demand(!qmx::Dump(reader.Handle()).starts_with("("));
    return 0;
}
