// The logins that a server knows, each with its firm and a secret of its own, and the file that holds them. A
// terminal reads its own secret from a file of the same form.
//
// {"DEALER01": {"peerIdA": "BROKER", "peerIdB": "BRANCH", "secret": "at least 32 characters"}}
//
// Thread: any; plain values.
#pragma once

#include "host/files/Files.h"
#include "host/server/RowQuery.h"
#include "host/server/net/Protocol.h"

#include <map>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

inline constexpr std::size_t kLongestName = 64; // of a login, a firm or a branch

// Whether it can be the name of a login, and, empty, of no firm.
bool IsName(std::string_view text);
// For a line of a log: what is no printable ASCII character becomes "\x1B".
std::string Printable(std::string_view text);

struct Login {
    UserIdentity user;
    std::string secret;
};

class Logins {
public:
    // Unknown members are faults, as are weak secrets.
    static Loaded<Logins> Parse(std::string_view text, std::string_view fileName);
    // Fault: the system lets others read the file.
    static Loaded<Logins> Load(const std::string& path);
    // The file's, and those of these users that it lacks, with new secrets: it is made or replaced then, for
    // its owner only. `made` names them.
    static Loaded<Logins> LoadWith(const std::string& path, std::span<const UserIdentity> users,
                                   std::string& made);

    // Null when it is unknown.
    const Login* Find(std::string_view loginId) const;
    // Whether the hello answers the nonce with its login's secret, and is of its firm. An unknown login takes
    // as long as a wrong secret.
    bool IsProven(const net::Hello& hello, const std::string& nonce) const;
    // Gives it a secret, unless it has one. Whether it does.
    bool Add(const UserIdentity& user);
    // Replaces the file. Why it could not; empty when that is done.
    std::string Write(const std::string& path) const;

private:
    std::map<std::string, Login, std::less<>> m_logins;
};

// Where a server has the secrets for the journal.
inline std::string SecretsBeside(const std::string& journal) {
    return journal + ".secrets";
}

} // namespace vesk
