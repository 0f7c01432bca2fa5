// Orders of the form that are not settled: sent and unanswered; refused; or set aside for one of those. The
// last two can be brought back into the form, in turn: none is lost.
#pragma once

#include "plugin/orderentry/SipOrder.h"
#include "plugin/record/OrderLedger.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

class KeptOrders {
public:
    // What was sent, as the form had it, and its place in the order record.
    struct SentOrder {
        SipOrderForm form;
        OrderPlace place;
        std::int64_t at;
        bool inDoubt = false;
    };

    void Sent(SentOrder order);
    // It was not sent after all.
    void Withdraw(OrderPlace place) {
        std::erase_if(m_waiting, [&](const SentOrder& sent) { return sent.place == place; });
    }
    // An answer's order is the one that it names by its identifier; without it, the oldest one of its client
    // that can still be waited for, and of any when it names none. It is given back; none when nothing waits.
    std::optional<SentOrder> Accepted(OrderPlace named, std::string_view client, std::int64_t now) {
        return TakeAnswered(named, client, now);
    }
    std::optional<SentOrder> Refused(OrderPlace named, std::string_view client, std::string_view text,
                                     std::string_view code, std::int64_t now);
    // The order record knows more of an order. False when it does not wait here.
    bool OnState(OrderPlace place, OrderState state);
    void NotSent(const SipOrderForm& order, std::string_view text);
    // What the dealer had typed where another is brought back; its turn comes last.
    void SetAside(const SipOrderForm& order);

    // The one whose turn it is; none when there is none.
    std::optional<SipOrderForm> TakeNext();
    // What there is to say of that one, and how it comes back; empty when there is nothing.
    std::string Notice() const;
    // Whether it says more than that something was set aside.
    bool IsAlarming() const { return m_kept.empty() ? !Doubts().empty() : m_kept.back().alarming; }

private:
    struct Kept {
        std::optional<SipOrderForm> order; // none when it is not known which
        std::string why;
        bool alarming = true;
    };
    void ForgetUnknown();
    // What there is to say of those that nobody answered.
    std::string Doubts() const;
    std::optional<SentOrder> TakeAnswered(OrderPlace named, std::string_view client, std::int64_t now);

    std::vector<SentOrder> m_waiting; // the oldest first
    std::deque<Kept> m_kept;          // the last one's turn is next
};

} // namespace planfold
