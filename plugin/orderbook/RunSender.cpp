#include "plugin/orderbook/RunSender.h"

#include "plugin/record/OrderRecord.h"

namespace planfold {

void RunSender::Begin() {
    m_recording.Renew();
    m_waitsForBox = false;
}

bool RunSender::SendPortion(BookRun& run, std::size_t most) {
    if (run.AllTried() || m_sending || m_waitsForBox) return true;
    m_sending = true;
    const bool isThere = m_life.Across([&](Pass) { SendRecorded(run, most); });
    m_sending = false;
    return isThere;
}

void RunSender::SendRecorded(BookRun& run, std::size_t most) {
    const std::size_t first = run.Tried(), count = std::min(most, run.Total() - first);
    std::vector<RecordedOrder> orders;
    for (std::size_t i = 0; i < count; ++i) {
        auto order = m_requests.Recorded(run, first + i);
        if (!order) return;
        orders.push_back(std::move(*order));
    }
    if (run.Stopped()) return;
    const auto places = m_recording.Places(orders, [&](std::string_view question) {
        m_waitsForBox = !m_questions.MayAsk();
        return !m_waitsForBox
               && m_life.Across([&](Pass pass) { return m_questions.Ask(pass, question); }) == Reply::yes;
    });
    if (m_waitsForBox) return;
    if (!places) return run.Stop();
    run.Enter(*places);
    bool isThere = true;
    for (std::size_t i = 0; i < count; ++i) {
        bool sent = false;
        if (isThere && !run.AllTried()) {
            run.CountTried();
            isThere = m_life.Across([&](Pass pass) { sent = m_requests.SendOne(pass, run, first + i); });
        }
        if (!sent) m_session.record.Tell((*places)[i], OrderEvent::notSent, {});
    }
}

} // namespace planfold
