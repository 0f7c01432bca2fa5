#include "plugin/orderbook/BookRequests.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Request.h"
#include "sdk/Tags.h"

#include <chrono>
#include <initializer_list>
#include <vector>

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

constexpr int kYearsBack = 2;

struct OrdersQuery {
    std::string loginId;
};
constexpr RequestField<OrdersQuery> kOrdersFields[] = {
    {tag::loginId, [](OrdersQuery& query) -> Value { return query.loginId; }, "User not logged in"},
};
constexpr Request<OrdersQuery> kOrdersRequest{kGetSipOrders, nullptr, kOrdersFields, "Request Failure",
                                              nullptr};

struct HistoryQuery {
    std::string from;
    std::string to;
};
constexpr RequestField<HistoryQuery> kHistoryFields[] = {
    {tag::startDate, [](HistoryQuery& query) -> Value { return query.from; }, nullptr},
    {tag::toDate, [](HistoryQuery& query) -> Value { return query.to; }, nullptr},
};
constexpr Request<HistoryQuery> kHistoryRequest{"qry_eq_sip", nullptr, kHistoryFields, "Request Failure"};

std::chrono::sys_days Days(const LocalDateTime& date) {
    return std::chrono::year(date.year) / date.month / date.day;
}

std::string QueryDate(std::chrono::year_month_day date) {
    return Format("%d/%d/%d", static_cast<int>(static_cast<unsigned>(date.month())),
                  static_cast<int>(static_cast<unsigned>(date.day())), static_cast<int>(date.year()));
}

} // namespace

bool SendGetSipOrders(Pass pass, Session& session, RxControl* control, Notices& notices) {
    OrdersQuery query{session.identity.loginId};
    return SendRequest(pass, session, control, notices, kOrdersRequest, query);
}

bool SendQuerySips(Pass pass, Session& session, RxControl* control, Notices& notices,
                   const LocalDateTime& today) {
    const auto to = Days(today);
    HistoryQuery query{QueryDate(to - std::chrono::days(LookBackDays(today, kYearsBack))), QueryDate(to)};
    return SendRequest(pass, session, control, notices, kHistoryRequest, query);
}

bool IsOwnHistory(const Session& session, void* message) {
    const LoginIdentity login = session.GetLoginIdentity();
    const auto value = FieldView(message, login.tag);
    // In mode 0 the user is known by nothing: any value will do.
    return value && (session.m_nLoginMode == 0 || *value == login.value);
}

int LookBackDays(const LocalDateTime& today, int years) {
    std::chrono::sys_days date = Days(today);
    const auto year = [&] { return std::chrono::year_month_day(date).year(); };
    const auto beforeMarch = [&] { return std::chrono::year_month_day(date).month() < std::chrono::March; };
    int total = 0;
    const auto goBack = [&](int days) {
        total += days;
        date -= std::chrono::days(days);
    };
    for (int pass = years; pass >= 1; --pass) {
        if (pass == 2) total = 0;
        if (!year().is_leap())
            goBack(365);
        else if (!beforeMarch())
            goBack(366);
        else {
            if (pass != 2) goBack(1);
            goBack(365);
        }
    }
    if (year().is_leap() && beforeMarch()) ++total;
    return total;
}

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

namespace {

// Copies: the host is asked on the way, and an update may change the record meanwhile.
struct CancelSipOrder {
    std::string number;
    std::string remarks;
    std::string orderSource;
    std::string loginId;
    const std::optional<std::string>& orderId;
};

template <std::string CancelSipOrder::*member>
Value Of(CancelSipOrder& cancel) {
    return cancel.*member;
}

constexpr RequestField<CancelSipOrder> kCancelFields[] = {
    {tag::registrationNumber, Of<&CancelSipOrder::number>, "SIP number not added"},
    {tag::echoedNumber, Of<&CancelSipOrder::number>, nullptr},
    {tag::orderId, [](CancelSipOrder& cancel) -> Value { return cancel.orderId; }, nullptr},
    {tag::userText, Of<&CancelSipOrder::remarks>, nullptr},
    {tag::cancelledBy, Of<&CancelSipOrder::loginId>, nullptr},
    {tag::orderSource, Of<&CancelSipOrder::orderSource>, "Failed to add Order Source"},
};
constexpr Request<CancelSipOrder> kCancelRequest{kCancelSipOrder, "Adding request cancel_sip_order failed",
                                                 kCancelFields, "Sending request cancel_sip_orders failed"};

struct PauseSipOrder {
    std::string number;
};
// Every text names pause, also when resuming.
constexpr RequestField<PauseSipOrder> kPauseFields[] = {
    {tag::registrationNumber, [](PauseSipOrder& pause) -> Value { return pause.number; },
     "Failed to add the SIP ID"},
};
constexpr Request<PauseSipOrder> PauseRequest(PauseOrResume which) {
    return {RequestNameOf(which), "Failed to add the request pause_sip_order", kPauseFields,
            "Sending Request pause_sip_order Failed"};
}

std::string_view BlankInsteadOfNothing(sOrderinfo& record, OrderField field) {
    if (record.Text(field).empty()) {
        OrderChanges blank;
        blank[field] = " ";
        record.Apply(blank);
    }
    return record.Text(field);
}

} // namespace

bool SendCancelSipOrder(Pass pass, Session& session, RxControl* control, Notices& notices, sOrderinfo& record,
                        const std::optional<std::string>& orderId) {
    CancelSipOrder cancel{
        std::string(record.Number()), std::string(BlankInsteadOfNothing(record, OrderField::userText)),
        std::string(BlankInsteadOfNothing(record, OrderField::orderSource)), session.identity.loginId, orderId};
    if (!SendRequest(pass, session, control, notices, kCancelRequest, cancel)) return false;
    session.Log(pass, Format("Sending request to cancel %s", cancel.number.c_str()));
    return true;
}

bool SendPauseSipOrder(Pass pass, Session& session, RxControl* control, Notices& notices, PauseOrResume which,
                       std::string_view registrationNumber) {
    PauseSipOrder pause{std::string(registrationNumber)};
    if (!SendRequest(pass, session, control, notices, PauseRequest(which), pause)) return false;
    session.Log(pass, Format("Request sent Pause SIP Order: %s", pause.number.c_str()));
    return true;
}

} // namespace planfold
