#include "tools/planfold-hostcheck/Findings.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace hostcheck {
namespace {

constexpr std::size_t kHeaderOffset = 0x3C, kSectionSize = 40, kFileHeader = 24;
constexpr std::size_t kDirectories = 112; // from the optional header
constexpr std::uint16_t kPlus = 0x20B, kAmd64 = 0x8664;
constexpr std::uint32_t kExecutable = 0x20000000;
constexpr std::size_t kLongestName = 1024, kMostNames = 65536;

struct Damaged : std::runtime_error {
    Damaged() : runtime_error("is damaged") {}
};

struct Section {
    std::uint32_t start, size, place, flags; // the size in the file
};

class Image {
public:
    explicit Image(std::string_view bytes) : m_bytes(bytes) {}

    std::uint32_t Number(std::size_t at, std::size_t count = 4) const {
        if (at > m_bytes.size() || m_bytes.size() - at < count) throw Damaged();
        std::uint32_t number = 0;
        for (std::size_t i = count; i-- > 0;)
            number = number << 8 | static_cast<unsigned char>(m_bytes[at + i]);
        return number;
    }
    void ReadSections(std::size_t at, std::size_t count) {
        for (; count > 0; --count, at += kSectionSize)
            m_sections.push_back({Number(at + 12), Number(at + 16), Number(at + 20), Number(at + 36)});
    }
    const Section* Holding(std::uint32_t address) const {
        const auto found = std::ranges::find_if(m_sections, [&](const Section& section) {
            return address >= section.start && address - section.start < section.size;
        });
        return found == m_sections.end() ? nullptr : &*found;
    }
    std::size_t Place(std::uint32_t address) const {
        const Section* section = Holding(address);
        if (!section) throw Damaged();
        return std::size_t{section->place} + (address - section->start);
    }
    std::string Text(std::uint32_t address) const {
        const std::string_view rest = m_bytes.substr(std::min(Place(address), m_bytes.size()), kLongestName);
        const std::size_t end = rest.find('\0');
        if (end == rest.npos) throw Damaged();
        return std::string(rest.substr(0, end));
    }

private:
    std::string_view m_bytes;
    std::vector<Section> m_sections;
};

std::vector<Export> ReadTable(const Image& image, std::uint32_t table, std::uint32_t tableSize) {
    const std::size_t at = image.Place(table);
    const std::uint32_t functionCount = image.Number(at + 20), count = image.Number(at + 24);
    if (count > kMostNames) throw Damaged();
    const std::size_t functions = functionCount ? image.Place(image.Number(at + 28)) : 0;
    std::vector<Export> exports;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t name = image.Number(image.Place(image.Number(at + 32)) + i * 4);
        const std::uint32_t ordinal = image.Number(image.Place(image.Number(at + 36)) + i * 2, 2);
        if (ordinal >= functionCount) throw Damaged();
        const std::uint32_t address = image.Number(functions + std::size_t{ordinal} * 4);
        // What lies in the table itself is the name of another library's function.
        const bool isForwarded = address >= table && address - table < tableSize;
        const Section* section = image.Holding(address);
        exports.push_back({image.Text(name), isForwarded || (section && (section->flags & kExecutable) != 0)});
    }
    return exports;
}

} // namespace

std::optional<std::vector<Export>> ReadExports(std::string_view bytes, std::string& why) {
    if (!bytes.starts_with("MZ")) {
        why = "is not a program or library for Windows";
        return std::nullopt;
    }
    try {
        Image image(bytes);
        const std::size_t header = image.Number(kHeaderOffset), optional = header + kFileHeader;
        if (image.Number(header) != 0x4550) throw Damaged();
        if (image.Number(header + 4, 2) != kAmd64 || image.Number(optional, 2) != kPlus) {
            why = "is not a 64-bit image: the plug-in is one, and loads into no other";
            return std::nullopt;
        }
        image.ReadSections(optional + image.Number(header + 20, 2), image.Number(header + 6, 2));
        const std::uint32_t table = image.Number(optional + kDirectories);
        if (table == 0) return std::vector<Export>();
        return ReadTable(image, table, image.Number(optional + kDirectories + 4));
    } catch (const Damaged& fault) {
        why = fault.what();
        return std::nullopt;
    }
}

} // namespace hostcheck
