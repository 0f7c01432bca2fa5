#include "host/market/ClientList.h"

#include "base/Text.h"
#include "host/market/CsvLines.h"

#include <algorithm>

namespace vesk {
namespace {

constexpr std::string_view kClientHeading = "client,name,mapped";
constexpr std::string_view kBlank = " ";

std::string Upper(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return result;
}

} // namespace

Loaded<ClientList> ClientList::Load(const std::string& path) {
    Loaded<std::string> text = ReadTextFile(path);
    if (!text) return text.Fault();
    return Parse(text.Value(), path);
}

Loaded<ClientList> ClientList::Parse(std::string_view text, std::string_view fileName) {
    ClientList list;
    list.m_clients.reserve(static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1);
    auto fault = ReadCsv(text, fileName, kClientHeading,
                         [&](std::span<const std::string_view> fields) -> std::optional<std::string> {
                             if (fields[0].empty()) return "client is empty";
                             if (fields[2] != "Y" && fields[2] != "N")
                                 return "mapped \"" + std::string(fields[2]) + "\" is neither Y nor N";
                             const Client& client = list.m_clients.emplace_back(
                                 Client{std::string(fields[0]), std::string(fields[1]), fields[2] == "Y"});
                             if (!list.m_byUpperId.try_emplace(Upper(client.id), &client).second)
                                 return client.id + " stands here a second time";
                             return std::nullopt;
                         });
    if (fault) return *std::move(fault);
    return list;
}

const Client* ClientList::Find(std::string_view id) const {
    const auto found = m_byUpperId.find(Upper(id));
    return found == m_byUpperId.end() ? nullptr : found->second;
}

std::vector<const Client*> ClientList::Search(int mode, std::string_view text) const {
    const std::string wanted = Upper(base::Trimmed(text, kBlank));
    std::vector<const Client*> result;
    if (wanted.ends_with('(')) {
        const std::string_view id = std::string_view(wanted).substr(0, wanted.size() - 1);
        if (const Client* exact = Find(base::Trimmed(id, kBlank)))
            result.push_back(exact);
        return result;
    }
    const bool ids = mode != static_cast<int>(ClientSearchMode::name);
    const bool names = mode != static_cast<int>(ClientSearchMode::id);
    for (const Client& client : m_clients)
        if ((ids && Upper(client.id).starts_with(wanted))
            || (names && Upper(client.name).find(wanted) != std::string::npos))
            result.push_back(&client);
    return result;
}

} // namespace vesk
