#include "plugin/history/HistoryRequests.h"

#include "plugin/messaging/Request.h"
#include "sdk/Tags.h"

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

struct Query {
    std::string_view registrationNumber;
};
constexpr RequestField<Query> kFields[] = {
    {tag::registrationNumber, [](Query& query) -> Value { return query.registrationNumber; }, nullptr},
};

} // namespace

bool SendHistoryQuery(Pass pass, Session& session, RxControl* control, Notices& notices,
                      std::string_view request, std::string_view registrationNumber) {
    Query query{registrationNumber};
    return SendRequest(pass, session, control, notices,
                       Request<Query>{request, nullptr, kFields, "Request Failure"}, query);
}

} // namespace planfold
