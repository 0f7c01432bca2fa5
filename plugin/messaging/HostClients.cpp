#include "plugin/messaging/HostClients.h"

namespace planfold {

std::string AskClientName(Pass pass, const Session& session, std::string_view client) {
    if (!session.host.pu_get_client_name) return {};
    CString name = session.String();
    const CString identifier = session.String(client);
    session.host.pu_get_client_name(pass, &name, &identifier);
    return std::string(name.View());
}

bool IsUnknownClient(Pass pass, const Session& session, std::string_view client) {
    if (!session.host.pu_is_valid_account) return false;
    const CString account = session.String(client);
    return session.host.pu_is_valid_account(pass, &account) == 0;
}

std::string UnknownClientQuestion(std::string_view client) {
    constexpr std::size_t longest = 60; // what is no client may be anything
    const std::string what = client.empty()
                                 ? "The order names no client"
                                 : "The terminal knows no client " + std::string(client.substr(0, longest));
    return what + ".\nPlace the order all the same?";
}

} // namespace planfold
