#include "Image.h"

#include "Support.h"

namespace image {
namespace {

struct ImportDescriptor {
    unsigned names, time, forwarder, library, addresses;
};
struct ExportDirectory {
    unsigned reserved[5], functionCount, nameCount, functions, names, ordinals;
};

constexpr unsigned kReadWrite = 4;
constexpr int kExports = 0, kImports = 1;

char* Base(HMODULE module) {
    return reinterpret_cast<char*>(module);
}

template <typename T>
T* At(HMODULE module, uint64_t offset) {
    return reinterpret_cast<T*>(Base(module) + offset);
}

unsigned Directory(HMODULE module, int which) {
    constexpr unsigned signatureOffset = 0x3C, directoriesOffset = 24 + 112;
    const unsigned headers = *At<unsigned>(module, signatureOffset);
    return *At<unsigned>(module, headers + directoriesOffset + 8u * static_cast<unsigned>(which));
}

template <typename T>
void Overwrite(T* place, T value) {
    unsigned access = 0;
    VirtualProtect(place, sizeof *place, kReadWrite, &access);
    *place = value;
    VirtualProtect(place, sizeof *place, access, &access);
}

unsigned* ExportEntry(const char* name) {
    HMODULE module = GetModuleHandleA(nullptr);
    const auto* exports = At<ExportDirectory>(module, Directory(module, kExports));
    for (unsigned i = 0; i < exports->nameCount; ++i)
        if (Same(At<char>(module, At<unsigned>(module, exports->names)[i]), name))
            return At<unsigned>(module, exports->functions) + At<uint16_t>(module, exports->ordinals)[i];
    return nullptr;
}

} // namespace

void* ReplaceImport(HMODULE module, const char* library, const char* name, void* replacement) {
    const auto* descriptor = At<ImportDescriptor>(module, Directory(module, kImports));
    for (; descriptor->library; ++descriptor) {
        if (!SameIgnoringCase(At<char>(module, descriptor->library), library)) continue;
        const auto* names = At<uint64_t>(module, descriptor->names);
        auto* addresses = At<void*>(module, descriptor->addresses);
        for (; *names; ++names, ++addresses) {
            constexpr uint64_t byOrdinal = 1ull << 63, hintBytes = 2;
            if (*names & byOrdinal || !Same(At<char>(module, *names + hintBytes), name)) continue;
            void* imported = *addresses;
            Overwrite(addresses, replacement);
            return imported;
        }
    }
    return nullptr;
}

HiddenExport::HiddenExport(const char* name) : m_entry(ExportEntry(name)) {
    if (!m_entry) return;
    m_address = *m_entry;
    Overwrite(m_entry, 0u);
    Check(!GetProcAddress(GetModuleHandleA(nullptr), name), "the hidden export cannot be found");
}

HiddenExport::~HiddenExport() {
    if (m_entry) Overwrite(m_entry, m_address);
}

} // namespace image
