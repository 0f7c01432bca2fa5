// One placing of all rows: first the host hears of each, then it asks the user about the cautionary ones, then
// every row is sent. Goes on row by row, so that it can be painted and stopped in between.
#pragma once

#include "plugin/base/Notices.h"
#include "plugin/basket/BasketRows.h"
#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

#include <vector>

namespace planfold {

class BasketPlacing {
public:
    struct Row {
        RecordId record;
        int index; // among all rows of the list, by which the host knows it
    };

    // `placed` are rows in the list's order.
    BasketPlacing(Pass pass, Session& session, RxControl* control, BasketRows& rows, std::vector<Row> placed);

    // The next row of either pass, or the host's question between them. False when all is done.
    bool Step(Pass pass);
    void Stop() { m_stopped = !IsSending() || m_next < m_placed.size(); }
    // The window has gone: no row more, were it the last.
    void Abandon() { m_stopped = true; }

    bool Stopped() const { return m_stopped; }
    bool IsSending() const { return m_confirmed >= 0; }
    std::size_t Total() const { return m_placed.size(); }
    std::size_t Tried() const { return m_next; }
    std::size_t SentCount() const { return m_sent.size(); }
    const std::vector<RecordId>& Sent() const { return m_sent; }
    // Why rows could not be sent.
    std::string FailureTexts() const { return m_failures.Text(); }

private:
    void TellHost(Pass pass, const Row& placed);
    void AskHost(Pass pass);
    void Send(Pass pass, const Row& placed);

    Session& m_session;
    RxControl* m_control;
    BasketRows& m_rows;
    std::vector<Row> m_placed;
    std::size_t m_next = 0; // of the pass
    int m_confirmed = -1;   // the host's answer; negative in the first pass
    std::vector<RecordId> m_sent;
    KeptTexts m_failures;
    bool m_stopped = false;
};

} // namespace planfold
