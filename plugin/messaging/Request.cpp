#include "plugin/messaging/Request.h"

namespace planfold {

bool AddField(Session& session, std::uint32_t tag, std::string_view value) {
    const QmxDatum datum{value.empty() ? nullptr : value.data(), static_cast<std::uint32_t>(value.size())};
    QmxError error{};
    return qmx_add_data(session.m_primeCb, tag, 1, &datum, &error) != 0;
}

bool SendBuilt(Session& session, RxControl* control) {
    std::uint64_t requestNumber = 0;
    QmxError error{};
    return control && control->SendRequest(&requestNumber, session.m_primeCb, 0, &error) != 0;
}

} // namespace planfold
