// What the order history decides without being a window: which answers it collects, when they are listed, and
// which order a trade belongs to.
#pragma once

#include "plugin/history/HistoryRecord.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// The two queries, each for one registration.
inline constexpr std::string_view kHistoryOrdersRequest = "qry_eq_sip_orders";
inline constexpr std::string_view kHistoryTradesRequest = "qry_eq_sip_trades";

// False when nothing was sent; the reason has been shown where it has a text.
bool SendHistoryQuery(Pass pass, Session& session, RxControl* control, Notices& notices,
                      std::string_view request, std::string_view registrationNumber);

// The window as the code that decides sees it.
class HistoryView : public Notices {
public:
    // Makes the window where there is none, lists the records anew, record i in row i, and gives the first row
    // the focus.
    virtual void ListRecords() = 0;
    // A trade has told more of a record.
    virtual void OnRecordChanged() = 0;
    // The focused row's record; none without a window.
    virtual std::optional<std::size_t> FocusedRecord() const = 0;
    // With the server's remarks, by which an order was rejected, whole.
    virtual void ShowDetails(const HistoryDetails& details, const std::string& remarks) = 0;
    // In front, or hidden. Nothing without a window.
    virtual void Show(bool shown) = 0;

protected:
    ~HistoryView() = default;
};

class OrderHistory {
public:
    // `control` may be null: every query then fails with its own text.
    OrderHistory(Session& session, HistoryView& view, RxControl* control)
        : m_session(session), m_view(view), m_control(control) {}

    // Asks for the registration's orders. They are listed once all have come.
    void Open(Pass pass, const std::string& registrationNumber);
    void OnResponse(void* message);
    // Another row may have the focus now.
    void OnFocusChanged();

    // The records as they are listed.
    const std::vector<sOrderHistory>& Records() const { return m_records; }

private:
    void HandleOrder(const Answer& answer);
    void HandleTrade(const Answer& answer);
    bool IsWanted(std::string_view registrationNumber);
    void EndAnswer(bool refused);
    void List();
    void Describe();

    static const AnswerHandler<OrderHistory> kAnswers[];

    Session& m_session;
    HistoryView& m_view;
    RxControl* m_control;
    std::string m_registrationNumber; // asked for last
    int m_unanswered = 0;             // queries of orders; the server answers them in their order
    // Of what is collected; another collection begins with each query and each listing.
    Lifetime m_collection{[this] { return !m_session.Ended(); }};
    std::vector<sOrderHistory> m_collected;
    std::vector<sOrderHistory> m_records;
    std::optional<std::size_t> m_described;
};

} // namespace planfold
