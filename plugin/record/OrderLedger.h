// What the order record says of each order and each change of a registration: its latest state, and what it
// asked for. A new order is known by the identifier under which it was sent, and without one by what it asks
// for; a change by its registration and the request.
#pragma once

#include "plugin/base/KeyCounts.h"
#include "plugin/record/RecordLine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

namespace planfold {

enum class OrderState : std::uint8_t {
    sent,    // and not yet answered
    done,    // registered, changed, or found so in the book
    refused, // by the server
    notSent, // it did not leave the desk
    inDoubt,
    absent, // proven not to be registered
    count
};

class RecordedOrder {
public:
    explicit RecordedOrder(const RecordTexts& texts);

    OrderState State() const { return m_state; }
    // As it was sent, besides what is known since: time, event, registration and text are the latest event's.
    // Valid until the next event.
    std::string_view Text(RecordField field) const;
    RecordTexts Texts() const;
    // False: it places a new order.
    bool ChangesRegistration() const { return Text(RecordField::frequency).empty(); }

private:
    friend class OrderLedger;
    void Take(const RecordTexts& event, OrderState state);

    std::string m_texts; // one after another
    std::array<std::uint32_t, kRecordFieldCount> m_ends{};
    OrderState m_state = OrderState::sent;
};

class OrderLedger {
public:
    // An event of the record, or one that is just being written. What belongs to no order that was sent is left
    // out.
    void Take(const RecordTexts& event);

    // In the order in which they were sent first.
    const std::deque<RecordedOrder>& Orders() const { return m_orders; }
    // The one that an event with these texts belongs to; null when there is none.
    const RecordedOrder* Find(const RecordTexts& texts) const;
    std::size_t Count(OrderState state) const { return m_counts[static_cast<std::size_t>(state)]; }
    // Whether there are orders of which the server may still tell something.
    bool HasOpen() const { return Count(OrderState::done) + Count(OrderState::refused) < m_orders.size(); }
    // How many new orders that ask for the same are registered, or may be.
    std::uint32_t Like(const RecordTexts& order) const;

private:
    void Change(RecordedOrder& order, const RecordTexts& event, OrderState state);
    void Count(const RecordedOrder& order, bool enters);

    std::deque<RecordedOrder> m_orders;
    std::unordered_map<std::string, std::size_t> m_places;
    std::array<std::size_t, static_cast<std::size_t>(OrderState::count)> m_counts{};
    KeyCounts m_standing;
};

} // namespace planfold
