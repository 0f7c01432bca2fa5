// What the registration book decides without being a window: the queries that fill it, in which of its two
// lists a record stands, and what answers and streamed updates change.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/messaging/Answer.h"
#include "plugin/orderbook/BookActions.h"
#include "plugin/orderbook/BookView.h"
#include "plugin/orderbook/OrderCache.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/RxControl.h"

#include <string_view>

namespace planfold {

// Each may be null: what is sent by it then fails with its own text.
struct BookControls {
    RxControl* requests;
    RxControl* identityStream;
    RxControl* accountStream;
};

class OrderBook final : private LiveRegistrations {
public:
    OrderBook(Session& session, BookView& view, const BookControls& controls)
        : m_session(session), m_view(view), m_controls(controls),
          m_actions(session, view, m_cache, controls.requests, m_life) {
        m_session.book = this;
    }
    OrderBook(const OrderBook&) = delete;
    OrderBook& operator=(const OrderBook&) = delete;
    ~OrderBook() { m_session.book = nullptr; }

    // For a window that has just been made: begins empty, asks for everything and subscribes.
    void Open(const LocalDateTime& today);
    // Asks for the registrations again.
    void Refresh();
    // Shows only this client's rows in both lists; an empty text shows all.
    void FilterByClient(std::string_view client);

    void OnResponse(void* message);
    void OnBroadcast(void* message);

    const OrderCache& Records() const { return m_cache; }
    // The answers to the query of the registrations have not ended.
    bool IsFilling() const { return m_filling; }
    BookActions& Actions() { return m_actions; }
    const Lifetime& Life() const { return m_life; }

private:
    // The record of the message's registration number, entered where the rules put it; kNoRecord without a
    // number, or when the window has gone meanwhile.
    RecordId ApplyRow(void* message, Arrival arrival);
    void EachLive(const std::function<void(const BookRow&)>& each) const override;
    void HandleOperationMode(const Answer& answer);
    void HandleRow(const Answer& answer);
    void HandleHistoryRow(const Answer& answer);
    void HandleUserText(const Answer& answer);
    void HandleCancelled(const Answer& answer) { m_actions.HandleCancelled(answer); }
    void HandlePaused(const Answer& answer) { m_actions.HandlePaused(answer); }
    void HandleResumed(const Answer& answer) { m_actions.HandleResumed(answer); }

    static const AnswerHandler<OrderBook> kAnswers[];

    Session& m_session;
    BookView& m_view;
    BookControls m_controls;
    OrderCache m_cache;
    bool m_filling = false;
    Lifetime m_life{[this] { return m_view.IsOpen() && !m_session.Ended(); }}; // of the window
    BookActions m_actions;
};

} // namespace planfold
