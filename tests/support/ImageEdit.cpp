#include "tests/support/ImageEdit.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace {

template <class T>
T* At(HMODULE module, std::uint64_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

DWORD DirectoryOf(HMODULE module, int which) {
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS64>(module, static_cast<std::uint64_t>(dos->e_lfanew));
    return headers->OptionalHeader.DataDirectory[which].VirtualAddress;
}

template <class T>
void Overwrite(T* place, T value) {
    DWORD access = 0;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &access);
    *place = value;
    VirtualProtect(place, sizeof *place, access, &access);
}

DWORD* ExportEntry(std::string_view name) {
    HMODULE module = GetModuleHandleA(nullptr);
    const auto* exports = At<IMAGE_EXPORT_DIRECTORY>(module, DirectoryOf(module, IMAGE_DIRECTORY_ENTRY_EXPORT));
    for (DWORD i = 0; i < exports->NumberOfNames; ++i)
        if (name == At<char>(module, At<DWORD>(module, exports->AddressOfNames)[i]))
            return At<DWORD>(module, exports->AddressOfFunctions)
                   + At<WORD>(module, exports->AddressOfNameOrdinals)[i];
    throw std::invalid_argument("not exported: " + std::string(name));
}

} // namespace

void* ReplaceImport(HMODULE module, const char* library, const char* name, void* replacement) {
    const auto* descriptor =
        At<IMAGE_IMPORT_DESCRIPTOR>(module, DirectoryOf(module, IMAGE_DIRECTORY_ENTRY_IMPORT));
    for (; descriptor->Name; ++descriptor) {
        if (_stricmp(At<char>(module, descriptor->Name), library) != 0) continue;
        const auto* names = At<IMAGE_THUNK_DATA64>(module, descriptor->OriginalFirstThunk);
        auto* addresses = At<void*>(module, descriptor->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
            const auto* imported = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            if (std::string_view(imported->Name) != name) continue;
            void* before = *addresses;
            Overwrite(addresses, replacement);
            return before;
        }
    }
    return nullptr;
}

HiddenExport::HiddenExport(const char* name) : m_entry(ExportEntry(name)), m_address(*m_entry) {
    Overwrite(m_entry, DWORD{0});
    if (GetProcAddress(GetModuleHandleA(nullptr), name)) throw std::logic_error("still found");
}

HiddenExport::~HiddenExport() {
    Overwrite(m_entry, m_address);
}
