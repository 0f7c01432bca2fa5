#include "plugin/messaging/Session.h"

#include "sdk/CStringArray.h"
#include "sdk/Tags.h"

#include <cstring>

namespace planfold {

namespace {

constexpr std::uint32_t kScratchBytes = 32768;

} // namespace

double Session::*const Session::kMinimums[] = {
    &Session::m_dMinSipDaily,
    &Session::m_dMinSipWeekly,
    &Session::m_dMinSipMonthly,
    &Session::m_dMinSipYearly,
};

Session::~Session() {
    QmxError error{};
    if (m_primeCb) qmx_dtor_primecb(&m_primeCb, &error);
    if (m_scratch) qmx_close_scratch(&m_scratch, &error);
}

void Session::OpenHandles(Pass pass, Notices& notices) {
    QmxError error{};
    ++m_generation;
    m_scratch = nullptr;
    if (!qmx_open_scratch(&m_scratch, kScratchBytes, &error))
        notices.ShowMessage(pass, "Buffer Handle open Failed");
    m_primeCb = nullptr;
    if (!qmx_ctor_primecb(&m_primeCb, &error)) notices.ShowMessage(pass, "MNM Handle Open Failed");
}

bool Session::StartMessage() {
    QmxError error{};
    ++m_generation;
    constexpr std::uint32_t empty = 0;
    if (m_scratch) std::memcpy(m_scratch, &empty, sizeof empty);
    return qmx_start_msg(m_primeCb, m_scratch, &error) != 0;
}

LoginIdentity Session::GetLoginIdentity() const {
    switch (m_nLoginMode) {
    case 0:
        return {tag::peerIdA, {}};
    case 1:
        return {tag::peerIdA, identity.peerIdA};
    case 2:
        return {tag::peerIdB, identity.peerIdB};
    default:
        return {tag::loginId, identity.loginId};
    }
}

bool Session::GetActiveClient(Pass pass, std::string& client) {
    client.clear();
    if (host.pu_get_ActiveClient) {
        CString active = String();
        host.pu_get_ActiveClient(pass, &active);
        client = active.View();
        identity.activeClient = client;
    }
    return !identity.activeClient.empty();
}

std::optional<std::string> Session::FreshIdentifier(Pass pass) const {
    CString identifier = String();
    if (!host.pu_get_uuid || !host.pu_get_uuid(pass, &identifier)) return std::nullopt;
    return std::string(identifier.View());
}

void Session::Log(Pass pass, std::string_view text) const {
    if (!host.pu_add_to_tabbed_log) return;
    PassedString line(text, strings);
    host.pu_add_to_tabbed_log(pass, line.Hand());
}

std::vector<std::string> Session::MappedAccounts(Pass pass) const {
    CStringArray accounts;
    host.pu_get_all_mappedAccount_ids(pass, &accounts);
    std::vector<std::string> result;
    for (const CString& account : accounts.Elements())
        result.emplace_back(account.View());
    return result;
}

} // namespace planfold
