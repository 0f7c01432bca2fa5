#include "host/server/net/Logins.h"

#include "host/files/Json.h"
#include "host/server/journal/DurableFile.h"
#include "host/server/net/OwnerFile.h"
#include "host/server/net/Proof.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <system_error>

namespace vesk {
namespace {

using nlohmann::json;

constexpr std::size_t kSecretBytes = 32;
constexpr std::size_t kShortestSecret = 32, kLongestSecret = 256; // characters

struct Member {
    const char* name;
    std::string& (*text)(Login& login);
};
constexpr Member kMembers[] = {
    {"peerIdA", [](Login& login) -> std::string& { return login.user.peerIdA; }},
    {"peerIdB", [](Login& login) -> std::string& { return login.user.peerIdB; }},
    {"secret", [](Login& login) -> std::string& { return login.secret; }},
};

std::string InDigits(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        text += {digits[number >> 4], digits[number & 15]};
    }
    return text;
}

// What is wrong with the value, if anything; the login then has all of it.
std::optional<std::string> ReadLogin(const json& value, Login& login) {
    if (login.user.loginId.empty() || !IsName(login.user.loginId)) return "is no login";
    if (!value.is_object()) return "is not an object";
    for (const auto& [name, text] : value.items()) {
        const auto* member = std::find_if(std::begin(kMembers), std::end(kMembers),
                                          [&key = name](const Member& row) { return row.name == key; });
        if (member == std::end(kMembers)) return "has an unknown member, \"" + name + '"';
        if (!text.is_string()) return '"' + name + "\" is not a text";
        member->text(login) = text.get<std::string>();
    }
    if (!IsName(login.user.peerIdA) || !IsName(login.user.peerIdB)) return "has a firm that is none";
    if (login.secret.size() < kShortestSecret || login.secret.size() > kLongestSecret)
        return "needs a secret of " + std::to_string(kShortestSecret) + " to " + std::to_string(kLongestSecret)
               + " characters";
    return std::nullopt;
}

} // namespace

bool IsName(std::string_view text) {
    return text.size() <= kLongestName && std::ranges::all_of(text, [](char c) {
               return static_cast<unsigned char>(c) >= ' ' && c != 0x7F;
           });
}

std::string Printable(std::string_view text) {
    std::string printable;
    for (const char& c : text)
        printable += c >= ' ' && c <= '~' ? std::string(1, c) : "\\x" + InDigits({&c, 1});
    return printable;
}

Loaded<Logins> Logins::Parse(std::string_view text, std::string_view fileName) {
    const Loaded<JsonObject> object = ParseJsonObject(text, fileName);
    if (!object) return object.Fault();
    Logins logins;
    for (const auto& [name, value] : object.Value().Root().items()) {
        Login login{{name, {}, {}}, {}};
        if (const auto fault = ReadLogin(value, login))
            return FileFault{std::string(fileName), object.Value().LineOf(value), '"' + name + "\" " + *fault};
        logins.m_logins.emplace(name, std::move(login));
    }
    return logins;
}

Loaded<Logins> Logins::Load(const std::string& path) {
    const Loaded<std::string> text = ReadTextFile(path);
    if (!text) return text.Fault();
    if (!IsForOwner(PathOf(path)))
        return FileFault{std::string(FileNameOf(path)), 0,
                         "others may read it; make it readable for its owner only"};
    return Parse(text.Value(), FileNameOf(path));
}

Loaded<Logins> Logins::LoadWith(const std::string& path, std::span<const UserIdentity> users,
                                std::string& made) {
    std::error_code error;
    Loaded<Logins> logins = Logins{};
    if (std::filesystem::exists(PathOf(path), error)) logins = Load(path);
    if (!logins) return logins;
    made.clear();
    for (const UserIdentity& user : users) {
        if (user.loginId.empty() || !IsName(user.loginId) || !IsName(user.peerIdA) || !IsName(user.peerIdB))
            return FileFault{std::string(FileNameOf(path)), 0, "there can be no login \"" + user.loginId + '"'};
        if (logins.Value().Add(user)) made += (made.empty() ? "" : ", ") + user.loginId;
    }
    if (made.empty()) return logins;
    if (const std::string fault = logins.Value().Write(path); !fault.empty())
        return FileFault{std::string(FileNameOf(path)), 0, fault};
    return logins;
}

const Login* Logins::Find(std::string_view loginId) const {
    const auto found = m_logins.find(loginId);
    return found == m_logins.end() ? nullptr : &found->second;
}

bool Logins::Add(const UserIdentity& user) {
    if (m_logins.contains(user.loginId)) return false;
    m_logins.emplace(user.loginId, Login{user, InDigits(RandomBytes(kSecretBytes))});
    return true;
}

bool Logins::IsProven(const net::Hello& hello, const std::string& nonce) const {
    const Login* login = Find(hello.loginId);
    const bool isSigned = AreSame(ProofOf(login ? login->secret : nonce, nonce, hello), hello.proof);
    return login && isSigned && login->user.peerIdA == hello.peerIdA && login->user.peerIdB == hello.peerIdB;
}

std::string Logins::Write(const std::string& path) const {
    json root = json::object();
    for (const auto& [name, login] : m_logins)
        root[name] = {
            {"peerIdA", login.user.peerIdA}, {"peerIdB", login.user.peerIdB}, {"secret", login.secret}};
    const auto place = PathOf(path), fresh = PathOf(path + ".new");
    std::error_code ignored;
    std::filesystem::remove(fresh, ignored);
    std::string error;
    if (!MakeForOwner(fresh)) return "cannot be made";
    auto file = DurableFile::Open(fresh, error);
    // Names may be of a code page.
    if (!file || !file->Append(root.dump(4, ' ', false, json::error_handler_t::replace) + '\n', error))
        return error;
    file.reset();
    if (DurableFile::Replace(fresh, place, error)) DurableFile::FlushName(place, error);
    return error;
}

} // namespace vesk
