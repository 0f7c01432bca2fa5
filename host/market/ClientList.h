// The clients that the user may trade for, and the search over them.
#pragma once

#include "host/files/Files.h"

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vesk {

struct Client {
    std::string id;
    std::string name;
    bool mapped = false; // an account mapped to the logged-in user
};

enum class ClientSearchMode : int { all = 1, id = 2, name = 3 };

class ClientList {
public:
    static Loaded<ClientList> Load(const std::string& path);
    static Loaded<ClientList> Parse(std::string_view text, std::string_view fileName);

    ClientList() = default;
    ClientList(ClientList&&) = default;
    ClientList& operator=(ClientList&&) = default;
    ClientList(const ClientList&) = delete;
    ClientList& operator=(const ClientList&) = delete;

    std::span<const Client> Clients() const { return m_clients; }
    // Null for an unknown one. Identifiers compare without regard to case.
    const Client* Find(std::string_view id) const;
    // The results stand in file order. Identifiers match at their start, names anywhere, both without regard to
    // case; blanks around the text do not count, and a blank text matches everybody. A text that ends with "("
    // asks for exactly the account before it, in every mode. An unknown mode searches like `all`.
    std::vector<const Client*> Search(int mode, std::string_view text) const;

private:
    std::vector<Client> m_clients;
    std::unordered_map<std::string, const Client*> m_byUpperId; // points into m_clients
};

} // namespace vesk
