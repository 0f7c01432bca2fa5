#include "plugin/messaging/Subscriptions.h"

#include "plugin/base/Text.h"
#include "sdk/Tags.h"

#include <initializer_list>
#include <vector>

namespace planfold {

namespace {

constexpr std::string_view kStreamName = "PLANFOLD";
constexpr int kLowByte = 0xFF;

struct StreamField {
    std::uint32_t tag;
    std::string_view value;
};

void Subscribe(Pass pass, const Session& session, RxControl* control, Notices& notices,
               std::initializer_list<StreamField> fields) {
    // The host was asked for accounts, or a failure told: either may have ended the control.
    if (session.Ended()) return;
    std::vector<std::uint32_t> tags;
    std::vector<QmxDatum> values;
    for (const auto& [tag, value] : fields) {
        tags.push_back(tag);
        values.push_back({value.empty() ? nullptr : value.data(), static_cast<std::uint32_t>(value.size())});
    }
    std::uint64_t out = 0;
    QmxError error{};
    const auto count = static_cast<std::uint32_t>(fields.size());
    if (!control || !control->Subscribe(&out, tags.data(), values.data(), count, control, 0, 0, 1, &error))
        notices.ShowMessage(pass, Format("Subscription  is failed ,error code : %d", error.code));
}

} // namespace

void SubscribeBroadcasts(Pass pass, Session& session, RxControl* control, Notices& notices) {
    const HostCallbacks& host = session.host;
    const StreamField stream{tag::streamName, kStreamName};
    const StreamField anyNumber{tag::registrationNumber, {}};
    const bool knowsAccounts = host.pu_get_client_overview_status && host.pu_get_all_mappedAccount_ids;
    const bool overview = knowsAccounts && (host.pu_get_client_overview_status(pass, 0) & kLowByte) != 0;
    const bool byAccount =
        knowsAccounts && (session.m_nLoginMode == 3 || (session.m_nLoginMode == 4 && overview));
    if (!byAccount) {
        const LoginIdentity login = session.GetLoginIdentity();
        Subscribe(pass, session, control, notices, {stream, anyNumber, {login.tag, login.value}});
        return;
    }
    for (const std::string& account : session.MappedAccounts(pass)) {
        const StreamField ofAccount{tag::account, account};
        if (overview)
            Subscribe(pass, session, control, notices, {stream, anyNumber, ofAccount});
        else
            Subscribe(pass, session, control, notices,
                      {stream, anyNumber, {tag::loginId, session.identity.loginId}, ofAccount});
    }
}

void SubscribeIdentity(Pass pass, Session& session, RxControl* control, Notices& notices) {
    const LoginIdentity login = session.GetLoginIdentity();
    Subscribe(pass, session, control, notices, {{login.tag, login.value}, {tag::registrationNumber, {}}});
}

} // namespace planfold
