#include "host/server/net/OwnerFile.h"

#ifdef _WIN32
#include <windows.h>

#include <aclapi.h>
#include <algorithm>
#include <array>
#include <memory>
#include <sddl.h>
#include <string>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace vesk {

#ifdef _WIN32
namespace {

struct FreeLocal {
    void operator()(void* memory) const { LocalFree(memory); }
};
template <class T>
using Local = std::unique_ptr<T, FreeLocal>;

// Who runs this program, as access lists name him: "S-1-5-21-...".
std::wstring NameOfUser() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return {};
    alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> user{};
    DWORD size = 0;
    wchar_t* name = nullptr;
    if (GetTokenInformation(token, TokenUser, user.data(), static_cast<DWORD>(user.size()), &size))
        ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, &name);
    CloseHandle(token);
    const Local<wchar_t> freed(name);
    return name ? name : std::wstring();
}

// Wine gives the user's group what the user is given, so the Unix side would find the file readable for more
// than its owner. What it gives an owner who is not the user, it gives to him alone, whoever that is said to
// be.
std::wstring NameOfOwner() {
    constexpr const wchar_t* ownerRights = L"S-1-3-4";
    const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return isWine ? ownerRights : NameOfUser();
}

Local<void> Described(const std::wstring& text) {
    void* made = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &made, nullptr);
    return Local<void>(made);
}

// Everybody, all who are logged in, and all users of the machine are asked about: an access list can name
// others. What denies them is not weighed.
bool LetsOthersRead(ACCESS_ALLOWED_ACE& entry) {
    constexpr ACCESS_MASK reads = FILE_READ_DATA | GENERIC_READ | GENERIC_ALL;
    if (entry.Header.AceType != ACCESS_ALLOWED_ACE_TYPE || (entry.Header.AceFlags & INHERIT_ONLY_ACE) != 0)
        return false;
    constexpr WELL_KNOWN_SID_TYPE others[] = {WinWorldSid, WinAuthenticatedUserSid, WinBuiltinUsersSid};
    return (entry.Mask & reads) != 0 && std::ranges::any_of(others, [&](WELL_KNOWN_SID_TYPE kind) {
               return IsWellKnownSid(&entry.SidStart, kind) != FALSE;
           });
}

} // namespace

bool MakeForOwner(const std::filesystem::path& path) {
    const std::wstring owner = NameOfOwner();
    // Nothing is inherited from the folder.
    const Local<void> access =
        owner.empty() ? nullptr : Described(L"O:" + owner + L"D:P(A;;FA;;;" + owner + L")");
    if (!access) return false;
    SECURITY_ATTRIBUTES attributes{sizeof attributes, access.get(), FALSE};
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, &attributes, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
}

bool IsForOwner(const std::filesystem::path& path) {
    ACL* list = nullptr;
    void* descriptor = nullptr;
    std::wstring name = path.wstring();
    if (GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                              nullptr, &descriptor)
        != ERROR_SUCCESS)
        return true;
    const Local<void> freed(descriptor);
    void* entry = nullptr;
    for (DWORD i = 0; list && GetAce(list, i, &entry); ++i)
        if (LetsOthersRead(*static_cast<ACCESS_ALLOWED_ACE*>(entry))) return false;
    return list != nullptr;
}
#else
bool MakeForOwner(const std::filesystem::path& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) return false;
    ::close(file);
    return true;
}

bool IsForOwner(const std::filesystem::path& path) {
    struct stat found {};
    return ::stat(path.c_str(), &found) != 0 || (found.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}
#endif

} // namespace vesk
