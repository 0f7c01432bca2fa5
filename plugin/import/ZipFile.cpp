#include "plugin/import/ZipFile.h"

#include "plugin/import/Table.h"

#include <zlib.h>

#include <algorithm>
#include <optional>

namespace planfold {

namespace {

constexpr char kDamaged[] = "the workbook is damaged or was cut off";
constexpr char kTooLarge[] = "a part of the workbook is larger than 1 GB";
constexpr std::string_view kEndMark = "PK\x05\x06", kEntryMark = "PK\x01\x02", kPartMark = "PK\x03\x04";
constexpr std::size_t kEndSize = 22, kEntrySize = 46, kPartSize = 30;
constexpr std::size_t kLongestComment = 65535;
constexpr std::size_t kMostEntries = 10'000;
constexpr std::uint16_t kStored = 0, kDeflated = 8;
constexpr std::uint16_t kIsEncrypted = 1;

// Numbers of a record, whose size was checked.
class Fields {
public:
    explicit Fields(std::string_view record) : m_record(record) {}
    std::uint16_t Short(std::size_t at) const { return static_cast<std::uint16_t>(Number(at, 2)); }
    std::uint32_t Long(std::size_t at) const { return Number(at, 4); }

private:
    std::uint32_t Number(std::size_t at, std::size_t size) const {
        std::uint32_t number = 0;
        for (std::size_t i = size; i-- > 0;)
            number = number << 8 | static_cast<unsigned char>(m_record[at + i]);
        return number;
    }

    std::string_view m_record;
};

std::optional<std::string_view> Cut(std::string_view bytes, std::size_t at, std::size_t size) {
    if (at > bytes.size() || size > bytes.size() - at) return std::nullopt;
    return bytes.substr(at, size);
}

} // namespace

ZipFile::ZipFile(std::string_view bytes) : m_fault(ReadDirectory(bytes)) {
    if (!m_fault.empty()) m_entries.clear();
}

std::string ZipFile::ReadDirectory(std::string_view bytes) {
    const std::size_t from = bytes.size() - std::min(bytes.size(), kEndSize + kLongestComment);
    const std::size_t end = bytes.substr(from).rfind(kEndMark);
    if (end == bytes.npos) return kDamaged;
    const auto last = Cut(bytes, from + end, kEndSize);
    if (!last) return kDamaged;
    const std::size_t count = Fields(*last).Short(10);
    if (count > kMostEntries) return "the workbook has too many parts";
    std::size_t at = Fields(*last).Long(16);
    for (std::size_t i = 0; i < count; ++i) {
        const auto record = Cut(bytes, at, kEntrySize);
        if (!record || !record->starts_with(kEntryMark)) return kDamaged;
        const Fields fields(*record);
        if (fields.Short(8) & kIsEncrypted) return "the workbook has a password";
        const auto name = Cut(bytes, at + kEntrySize, fields.Short(28));
        const std::size_t place = fields.Long(42);
        const auto part = Cut(bytes, place, kPartSize);
        if (!name || !part || !part->starts_with(kPartMark)) return kDamaged;
        const Fields own(*part);
        const auto packed = Cut(bytes, place + kPartSize + own.Short(26) + own.Short(28), fields.Long(20));
        if (!packed) return kDamaged;
        m_entries[std::string(*name)] = {*packed, fields.Short(10), fields.Long(16), fields.Long(24)};
        at += kEntrySize + fields.Short(28) + fields.Short(30) + fields.Short(32);
    }
    return {};
}

const ZipFile::Entry* ZipFile::Find(const std::string& name) const {
    const auto found = m_entries.find(name);
    return found == m_entries.end() ? nullptr : &found->second;
}

struct ZipPart::Inflater {
    z_stream stream{};
    ~Inflater() { inflateEnd(&stream); }
};

ZipPart::ZipPart(const ZipFile::Entry& entry) : m_entry(entry) {
    if (entry.size > kLargestPart) m_fault = kTooLarge;
    if (entry.method == kStored) return;
    m_inflater = std::make_unique<Inflater>();
    z_stream& stream = m_inflater->stream;
    // zlib never writes there.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(entry.packed.data()));
    stream.avail_in = static_cast<uInt>(entry.packed.size());
    const bool isKnown = entry.method == kDeflated;
    if (!isKnown || inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        m_fault = "the workbook is packed in an unknown way";
}

ZipPart::~ZipPart() = default;

std::size_t ZipPart::Read(std::span<char> room) {
    if (m_hasEnded || !m_fault.empty() || room.empty()) return 0;
    std::size_t got = 0;
    if (m_inflater) {
        z_stream& stream = m_inflater->stream;
        stream.next_out = reinterpret_cast<Bytef*>(room.data());
        stream.avail_out = static_cast<uInt>(room.size());
        const int state = inflate(&stream, Z_NO_FLUSH);
        got = room.size() - stream.avail_out;
        m_hasEnded = state == Z_STREAM_END;
        if (state != Z_OK && state != Z_STREAM_END) m_fault = kDamaged;
    } else {
        got = m_entry.packed.copy(room.data(), room.size(), m_done);
        m_hasEnded = m_done + got == m_entry.packed.size();
    }
    m_done += got;
    m_checksum = static_cast<std::uint32_t>(
        crc32(m_checksum, reinterpret_cast<const Bytef*>(room.data()), static_cast<uInt>(got)));
    // A part that says less than it holds would take what memory it likes.
    if (m_done > m_entry.size || (m_hasEnded && (m_done != m_entry.size || m_checksum != m_entry.checksum)))
        m_fault = kDamaged;
    return m_fault.empty() ? got : 0;
}

} // namespace planfold
