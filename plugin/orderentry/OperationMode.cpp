#include "plugin/orderentry/OperationMode.h"

#include "plugin/base/Numbers.h"
#include "plugin/messaging/Request.h"
#include "plugin/resources/resource.h"
#include "sdk/Tags.h"

namespace planfold {

namespace {

struct NoSource {};

// Its failures are told in the words of an order's request.
constexpr Request<NoSource> kModeRequest{"get_sip_operation_mode",
                                         "Failed to add the request add_sip_orders",
                                         {},
                                         "Sending Request add_sip_orders Failed"};

// What a server without a period list offers, after whatever was read before.
OperationModeAnswer Defaults(Session& session, OperationModeAnswer answer) {
    answer.understood = true;
    for (const Frequency& frequency : kFrequencies)
        if (frequency.isDefault) answer.frequencies.emplace_back(frequency.word);
    session.m_nSipOperationMode = 0;
    return answer;
}

} // namespace

bool SendGetSipOperationMode(Pass pass, Session& session, RxControl* control, Notices& notices) {
    NoSource source;
    return SendRequest(pass, session, control, notices, kModeRequest, source);
}

OperationModeAnswer ReadOperationMode(Session& session, const Answer& answer) {
    QmxField list{};
    QmxError error{};
    if (!qmx_get_field(answer.message, tag::frequency, &list, &error)) {
        if (answer.hasError && FieldCount(answer.message, tag::errorCode) > 0) return Defaults(session, {});
        return {};
    }
    OperationModeAnswer result;
    for (std::uint32_t i = 0; i < list.count; ++i) {
        const std::string frequency = FieldText(answer.message, tag::frequency, i);
        if (frequency == "0") return Defaults(session, result);
        if (!frequency.empty()) result.frequencies.push_back(frequency);
        std::string minimum;
        int status = kFieldRead;
        const Frequency* known = FindFrequency(frequency);
        if (GetFieldString(answer.message, tag::minimumPeriods, i, minimum, status) && known)
            session.MinimumPeriods(*known) = LeadingReal(minimum);
    }
    result.understood = true;
    result.serverPeriods = true;
    session.m_nSipOperationMode = 1;
    return result;
}

void FrequencyList::Ask(Pass pass) {
    m_earlier = m_open;
    m_listed = false;
    if (SendGetSipOperationMode(pass, m_session, m_control, m_view)) ++m_open;
}

bool FrequencyList::OnAnswer(const Answer& answer, bool wanted) {
    const OperationModeAnswer mode = ReadOperationMode(m_session, answer);
    if (m_open > 0) --m_open;
    if (!mode.understood || !wanted) return false;
    // A window closed and opened again within the server's delay gets the answers of both.
    if (m_listed && m_earlier > 0) {
        --m_earlier;
        return false;
    }
    m_listed = true;
    for (const std::string& frequency : mode.frequencies)
        m_view.AddItem(IDC_FREQUENCY, frequency);
    m_view.Select(IDC_FREQUENCY, 0);
    if (mode.serverPeriods) ShowServerPeriods(m_view);
    return true;
}

void FrequencyList::ShowServerPeriods(DialogView& view) {
    view.SetText(IDC_PERIOD_LABEL, "SIP Periods");
    for (const int control : {IDC_PERIOD_HINT, IDC_PERIOD_ICON_1, IDC_PERIOD_ICON_2})
        view.Show(control, false);
}

} // namespace planfold
