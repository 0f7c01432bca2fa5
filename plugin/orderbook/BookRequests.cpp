#include "plugin/orderbook/BookRequests.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/Request.h"
#include "sdk/Tags.h"

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

// Copies: the host is asked on the way, and an update may change the record meanwhile.
struct CancelSipOrder {
    Pass pass;
    Session& session;
    std::string number;
    std::string remarks;
    std::string orderSource;
    std::string loginId = session.identity.loginId;
    std::optional<std::string> identifier{};
};

template <std::string CancelSipOrder::*member>
Value Of(CancelSipOrder& cancel) {
    return cancel.*member;
}

Value FreshIdentifier(CancelSipOrder& cancel) {
    cancel.identifier = cancel.session.FreshIdentifier(cancel.pass);
    return cancel.identifier;
}

constexpr RequestField<CancelSipOrder> kCancelFields[] = {
    {tag::registrationNumber, Of<&CancelSipOrder::number>, "SIP number not added"},
    {tag::echoedNumber, Of<&CancelSipOrder::number>, nullptr},
    {tag::orderId, FreshIdentifier, nullptr},
    {tag::userText, Of<&CancelSipOrder::remarks>, nullptr},
    {tag::cancelledBy, Of<&CancelSipOrder::loginId>, nullptr},
    {tag::orderSource, Of<&CancelSipOrder::orderSource>, "Failed to add Order Source"},
};
constexpr Request<CancelSipOrder> kCancelRequest{"cancel_sip_order", "Adding request cancel_sip_order failed",
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
    return {which == PauseOrResume::pause ? "pause_sip_order" : "resume_sip_order",
            "Failed to add the request pause_sip_order", kPauseFields,
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

bool SendCancelSipOrder(Pass pass, Session& session, RxControl* control, Notices& notices, sOrderinfo& record) {
    CancelSipOrder cancel{pass, session, std::string(record.Number()),
                          std::string(BlankInsteadOfNothing(record, OrderField::userText)),
                          std::string(BlankInsteadOfNothing(record, OrderField::orderSource))};
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
