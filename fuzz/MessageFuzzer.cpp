// Received bytes of any content: refused, or read wholly within their bounds.

#include "host/connectvesk/QmxHost.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const qmx::MessageReader reader(bytes);
    if (!reader.Good()) {
        if (reader.Error().code == kQmxOk || reader.Error().text[0] == '\0') std::abort();
        return 0;
    }
    for (const std::uint32_t tag : {0u, 10012u, 20008u, 54001u, 54101u, 64804u}) {
        const std::uint32_t count = qmx::Count(reader.Handle(), tag);
        for (std::uint32_t i = 0; i < count && i < 100; ++i) {
            const std::string_view value = qmx::Text(reader.Handle(), tag, i);
            if (value.data() < bytes.data() || value.data() + value.size() > bytes.data() + bytes.size())
                std::abort();
        }
    }
    if (qmx::Dump(reader.Handle()).starts_with("(")) std::abort();
    return 0;
}
