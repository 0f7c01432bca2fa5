// One placing of all rows: first the host hears of each, then it asks the user about the cautionary ones, then
// every row is sent. Goes on row by row, so that it can be painted and stopped in between.
#pragma once

#include "plugin/base/Notices.h"
#include "plugin/basket/BasketRows.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/RxControl.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace planfold {

// What was sent and is not answered, by the rows' serial numbers.
using UnansweredRows = std::unordered_map<std::int32_t, OrderPlace>;

class BasketPlacing {
public:
    struct Row {
        RecordId record;
        int index; // among all rows of the list, by which the host knows it
    };
    // Asks whether orders that the order record cannot take go out all the same; none when that cannot be asked
    // now.
    using AskWithoutRecord = std::function<std::optional<bool>(Pass, std::string_view question)>;

    // `placed` are rows in the list's order, of the file with this name. Rows and unanswered ones outlive it.
    BasketPlacing(Pass pass, Session& session, RxControl* control, BasketRows& rows, UnansweredRows& unanswered,
                  std::string fileName, AskWithoutRecord ask, std::vector<Row> placed);
    BasketPlacing(const BasketPlacing&) = delete;
    BasketPlacing& operator=(const BasketPlacing&) = delete;
    // What was recorded and did not go out is told as such.
    ~BasketPlacing();

    // The next row of either pass, the host's question between them, or the record of the rows that come next.
    // False when all is done.
    bool Step(Pass pass);
    void Stop() { m_stopped = !IsSending() || m_next < m_placed.size(); }
    // The window has gone: no row more, were it the last.
    void Abandon() { m_stopped = true; }

    bool Stopped() const { return m_stopped; }
    // For a question that could not be asked: the next step asks it anew.
    bool Waits() const { return m_waits; }
    bool IsSending() const { return m_confirmed >= 0; }
    std::size_t Total() const { return m_placed.size(); }
    std::size_t Tried() const { return m_next; }
    std::size_t SentCount() const { return m_sent.size(); }
    const std::vector<RecordId>& Sent() const { return m_sent; }
    // Why rows could not be sent.
    std::string FailureTexts() const { return m_failures.Text(); }

private:
    // A row whose turn is near.
    struct Prepared {
        bool goesOut = true; // false: the host holds it back
        BasketPlace place{};
        sSipOrderData order{};
        std::optional<std::string> orderId{};
        OrderPlace recorded = kNoOrder; // in the order record
        bool isAbsent = false;          // it was sent before, and is proven not to be registered
    };

    void TellNotSent(const Prepared& prepared, std::string_view why);
    void TellHost(Pass pass, const Row& placed);
    void AskHost(Pass pass);
    void PreparePortion(Pass pass);
    void Prepare(Pass pass, const Row& placed, Prepared& prepared);
    RecordedOrder Recorded(const Row& placed, const Prepared& prepared);
    void Send(Pass pass, const Row& placed, Prepared& prepared);

    Session& m_session;
    RxControl* m_control;
    BasketRows& m_rows;
    UnansweredRows& m_unanswered;
    const std::string m_fileName;
    const AskWithoutRecord m_ask;
    std::vector<Row> m_placed;
    std::size_t m_next = 0;           // of the pass
    int m_confirmed = -1;             // the host's answer; negative in the first pass
    std::vector<Prepared> m_portion;  // of the rows that come next
    std::size_t m_takenOfPortion = 0; // those whose turn has come
    StartDates m_startDates;
    std::vector<RecordId> m_sent;
    KeptTexts m_failures;
    bool m_stopped = false;
    BeforeSending m_recording{m_session.record};
    bool m_waits = false;
};

} // namespace planfold
