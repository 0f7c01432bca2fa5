// What the order history decides without being a window: which answers it collects, when they are listed, and
// which order a trade belongs to.
#pragma once

#include "plugin/history/HistoryView.h"
#include "plugin/messaging/Answer.h"
#include "sdk/RxControl.h"

#include <string>
#include <vector>

namespace planfold {

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

    // As listed.
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
