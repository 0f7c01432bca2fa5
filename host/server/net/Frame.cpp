#include "host/server/net/Frame.h"

#include "host/connectvesk/Wire.h"
#include "host/server/journal/Journal.h"

#include <iterator>

namespace vesk {
namespace {

constexpr std::size_t kHeaderBytes = 8;
constexpr std::size_t kChecksumAt = 4;

constexpr const char* kFaultTexts[] = {
    "no fault",
    "a frame is too long",
    "a frame is empty",
    "a frame's checksum is wrong",
    "a frame's type is unknown",
};
static_assert(std::size(kFaultTexts) == static_cast<std::size_t>(FrameFault::unknownType) + 1);

bool IsKnown(FrameType type) {
    return type >= FrameType::hello && type < FrameType::end;
}

std::uint32_t SumOf(std::string_view rest, Checksum checksum) {
    return checksum == Checksum::none ? 0 : Crc32(rest);
}

} // namespace

const char* TextOf(FrameFault fault) {
    return kFaultTexts[static_cast<std::size_t>(fault)];
}

std::size_t BeginFrame(std::string& out, FrameType type) {
    const std::size_t start = out.size();
    out.resize(start + kHeaderBytes);
    out.push_back(static_cast<char>(type));
    return start;
}

bool EndFrame(std::string& out, std::size_t start, Checksum checksum) {
    const std::string_view rest = std::string_view(out).substr(start + kHeaderBytes);
    if (rest.size() > kMostFrameBytes) {
        out.resize(start);
        return false;
    }
    qmx::Store(out.data() + start, static_cast<std::uint32_t>(rest.size()));
    qmx::Store(out.data() + start + kChecksumAt, SumOf(rest, checksum));
    return true;
}

bool AppendFrame(std::string& out, FrameType type, std::string_view payload) {
    const std::size_t start = BeginFrame(out, type);
    out.append(payload);
    return EndFrame(out, start, Checksum::crc32);
}

void FrameReader::Add(std::string_view bytes) {
    if (m_fault != FrameFault::none) return;
    m_bytes.erase(0, m_read);
    m_read = 0;
    m_bytes.append(bytes);
}

std::optional<Frame> FrameReader::Next() {
    const std::string_view left = std::string_view(m_bytes).substr(m_read);
    if (m_fault != FrameFault::none || left.size() < kHeaderBytes) return std::nullopt;
    // Judged before the rest has come: nobody waits for, or keeps, a megabyte that is refused in the end.
    const std::size_t length = qmx::Load(left.data());
    if (length > m_mostBytes) return Fail(FrameFault::tooLong);
    if (length == 0) return Fail(FrameFault::empty);
    if (left.size() - kHeaderBytes < length) return std::nullopt;
    const std::string_view rest = left.substr(kHeaderBytes, length);
    if (qmx::Load(left.data() + kChecksumAt) != SumOf(rest, m_checksum)) return Fail(FrameFault::wrongChecksum);
    const auto type = static_cast<FrameType>(static_cast<unsigned char>(rest.front()));
    if (!IsKnown(type)) return Fail(FrameFault::unknownType);
    m_read += kHeaderBytes + length;
    return Frame{type, rest.substr(1)};
}

std::optional<Frame> FrameReader::Fail(FrameFault fault) {
    m_fault = fault;
    m_bytes.clear();
    m_read = 0;
    return std::nullopt;
}

} // namespace vesk
