// The parts of a zip file, unpacked a piece at a time: no more of one is in memory than the caller asks for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace planfold {

class ZipFile {
public:
    // `bytes` is the whole file, and outlives this and its parts.
    explicit ZipFile(std::string_view bytes);

    // Why nothing can be read; empty when it can.
    const std::string& Fault() const { return m_fault; }

    struct Entry {
        std::string_view packed;
        std::uint16_t method = 0;
        std::uint32_t checksum = 0;
        std::uint32_t size = 0; // unpacked, as the file says; what is more is a fault
    };
    // Null when there is none.
    const Entry* Find(const std::string& name) const;

private:
    std::string ReadDirectory(std::string_view bytes);

    std::unordered_map<std::string, Entry> m_entries;
    std::string m_fault;
};

class ZipPart {
public:
    explicit ZipPart(const ZipFile::Entry& entry);
    ZipPart(const ZipPart&) = delete;
    ZipPart& operator=(const ZipPart&) = delete;
    ~ZipPart();

    // How much of `room` was filled; 0 at the end, and when Fault says why it ends early.
    std::size_t Read(std::span<char> room);
    const std::string& Fault() const { return m_fault; }
    std::size_t Done() const { return m_done; }

private:
    struct Inflater;

    const ZipFile::Entry m_entry;
    std::unique_ptr<Inflater> m_inflater; // none for a part that is stored as it is
    std::string m_fault;
    std::size_t m_done = 0;
    std::uint32_t m_checksum = 0;
    bool m_hasEnded = false;
};

} // namespace planfold
