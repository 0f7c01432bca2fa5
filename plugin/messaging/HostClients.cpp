#include "plugin/messaging/HostClients.h"

namespace planfold {

bool IsUnknownClient(const Session& session, std::string_view client) {
    if (!session.host.pu_is_valid_account) return false;
    const CString account = session.String(client);
    return session.host.pu_is_valid_account(&account) == 0;
}

} // namespace planfold
