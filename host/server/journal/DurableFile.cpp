#include "host/server/journal/DurableFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

#ifdef _WIN32
#include <io.h>
#include <share.h>
#else
#include <sys/file.h>
#include <unistd.h>
#endif

namespace vesk {
namespace {

// The few system calls whose names differ.
#ifdef _WIN32
int OpenLocked(const std::filesystem::path& path) {
    int descriptor = -1;
    _wsopen_s(&descriptor, path.c_str(), _O_RDWR | _O_CREAT | _O_BINARY | _O_NOINHERIT, _SH_DENYWR,
              _S_IREAD | _S_IWRITE);
    return descriptor;
}
long long SeekTo(int descriptor, long long offset, int from) {
    return _lseeki64(descriptor, offset, from);
}
int Flush(int descriptor) {
    return _commit(descriptor);
}
int Truncate(int descriptor, std::uint64_t size) {
    return _chsize_s(descriptor, static_cast<long long>(size));
}
long long WriteSome(int descriptor, const char* from, std::size_t size) {
    return _write(descriptor, from, static_cast<unsigned>(std::min<std::size_t>(size, 1u << 20)));
}
long long ReadSome(int descriptor, char* to, std::size_t size) {
    return _read(descriptor, to, static_cast<unsigned>(size));
}
void CloseFile(int descriptor) {
    _close(descriptor);
}
// Flushing the file flushes its name too.
bool FlushNames(const std::filesystem::path& file) {
    const int descriptor = OpenLocked(file);
    const bool isFlushed = descriptor >= 0 && Flush(descriptor) == 0;
    if (descriptor >= 0) CloseFile(descriptor);
    return isFlushed;
}
#else
int OpenLocked(const std::filesystem::path& path) {
    // What is in it is its owner's alone.
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0) return descriptor;
    const bool isLocked = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    // Until it was locked another file may have come to that path.
    struct stat opened {
    }, there{};
    if (isLocked && ::fstat(descriptor, &opened) == 0 && ::stat(path.c_str(), &there) == 0
        && opened.st_ino == there.st_ino)
        return descriptor;
    const int reason = isLocked ? EAGAIN : errno;
    ::close(descriptor);
    errno = reason;
    return -1;
}
long long SeekTo(int descriptor, long long offset, int from) {
    return ::lseek(descriptor, offset, from);
}
int Flush(int descriptor) {
    return ::fsync(descriptor);
}
int Truncate(int descriptor, std::uint64_t size) {
    return ::ftruncate(descriptor, static_cast<off_t>(size));
}
long long WriteSome(int descriptor, const char* from, std::size_t size) {
    return ::write(descriptor, from, size);
}
long long ReadSome(int descriptor, char* to, std::size_t size) {
    return ::read(descriptor, to, size);
}
void CloseFile(int descriptor) {
    ::close(descriptor);
}
bool FlushNames(const std::filesystem::path& file) {
    const std::filesystem::path folder = std::filesystem::absolute(file).parent_path();
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isFlushed = descriptor >= 0 && ::fsync(descriptor) == 0;
    if (descriptor >= 0) ::close(descriptor);
    return isFlushed;
}
#endif

bool FailWith(std::string& error, const char* what) {
    error = std::string(what) + ": " + std::strerror(errno);
    return false;
}

} // namespace

std::unique_ptr<DurableFile> DurableFile::Open(const std::filesystem::path& path, std::string& error) {
    const int descriptor = OpenLocked(path);
    if (descriptor >= 0) return std::unique_ptr<DurableFile>(new DurableFile(descriptor));
    FailWith(error, "cannot be opened");
    return nullptr;
}

DurableFile::~DurableFile() {
    CloseFile(m_descriptor);
}

bool DurableFile::ReadFrom(std::uint64_t offset, std::string& text, std::string& error) {
    constexpr std::size_t most = std::size_t{1} << 20; // at once
    text.clear();
    const long long end = SeekTo(m_descriptor, 0, SEEK_END);
    const long long start = SeekTo(m_descriptor, static_cast<long long>(offset), SEEK_SET);
    if (end < start || start < 0) return FailWith(error, "cannot be read");
    text.resize(static_cast<std::size_t>(end - start));
    for (std::size_t had = 0; had < text.size();) {
        const long long got = ReadSome(m_descriptor, text.data() + had, std::min(most, text.size() - had));
        if (got < 0) return FailWith(error, "cannot be read");
        if (got == 0) text.resize(had);
        had += static_cast<std::size_t>(got);
    }
    return true;
}

bool DurableFile::Append(std::string_view bytes, std::string& error) {
    if (SeekTo(m_descriptor, 0, SEEK_END) < 0) return FailWith(error, "cannot be written");
    while (!bytes.empty()) {
        const long long written = WriteSome(m_descriptor, bytes.data(), bytes.size());
        if (written <= 0) return FailWith(error, "cannot be written");
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return Flush(m_descriptor) == 0 || FailWith(error, "cannot be flushed");
}

void DurableFile::Overwrite(std::string_view bytes) {
    if (SeekTo(m_descriptor, 0, SEEK_SET) == 0)
        static_cast<void>(WriteSome(m_descriptor, bytes.data(), bytes.size()));
}

bool DurableFile::Replace(const std::filesystem::path& from, const std::filesystem::path& to,
                          std::string& error) {
    std::error_code fault;
    std::filesystem::rename(from, to, fault);
    if (fault) {
        error = "cannot be replaced: " + fault.message();
        return false;
    }
    return true;
}

bool DurableFile::FlushName(const std::filesystem::path& path, std::string& error) {
    return FlushNames(path) || FailWith(error, "cannot be flushed");
}

bool DurableFile::CutTo(std::uint64_t size, std::string& error) {
    return (Truncate(m_descriptor, size) == 0 && Flush(m_descriptor) == 0) || FailWith(error, "cannot be cut");
}

} // namespace vesk
