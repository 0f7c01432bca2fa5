// What the order record says of each order and each change of a registration: its latest state, and what it
// asked for. A new order is known by the identifier under which it was sent, and without one by what it asks
// for; a change by its registration and the request.
#pragma once

#include "plugin/record/RecordLine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

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
// Whether the server may still turn out to have it.
constexpr bool IsOpen(OrderState state) {
    return state == OrderState::sent || state == OrderState::inDoubt;
}
// Whether it is registered, or may be.
constexpr bool MayStand(OrderState state) {
    return IsOpen(state) || state == OrderState::done;
}

// The same for orders that ask for the same; of others it differs, as good as surely.
std::uint64_t AskedForKey(const RecordTexts& order);

// Among OrderLedger::Orders(), where it stays.
using OrderPlace = std::uint32_t;
inline constexpr OrderPlace kNoOrder = UINT32_MAX;

class RecordedOrder {
public:
    explicit RecordedOrder(const RecordTexts& texts);

    OrderState State() const { return m_state; }
    // As it was sent, besides what is known since: time, event, registration and text are the latest event's.
    // Valid until the next event.
    std::string_view Text(RecordField field) const;
    RecordTexts Texts() const;
    // The text of its sending: its request's name, and behind ": " what no other field says.
    std::string_view SentText() const {
        return m_state == OrderState::sent ? Text(RecordField::text) : m_sentText;
    }
    // When it was sent last: "2027-03-05 14:02:03", local.
    std::string_view SentAt() const { return {m_sentAt.data(), m_sentAt.size()}; }
    // When it was proven not to be registered, although it may stand by now; empty when it never was.
    std::string_view AbsentAt() const { return {m_absentAt.data(), m_absentAt[0] ? m_absentAt.size() : 0}; }
    // False: it places a new order.
    bool ChangesRegistration() const;

private:
    friend class OrderLedger;
    void Take(const RecordTexts& event, OrderState state);

    std::string m_texts;    // one after another
    std::string m_sentText; // once another event's text has taken its place
    std::array<std::uint32_t, kRecordFieldCount> m_ends{};
    OrderPlace m_alikeBefore = kNoOrder, m_namedBefore = kNoOrder;
    std::array<char, 19> m_sentAt{}, m_absentAt{};
    OrderState m_state = OrderState::sent;
};

class OrderLedger {
public:
    // An event of the record, or one that is just being written; gives back whose it is. What belongs to no
    // order that was sent is left out, and kNoOrder.
    OrderPlace Take(const RecordTexts& event);
    // The same of an order that is known.
    void Take(OrderPlace place, const RecordTexts& event);

    // In the order in which they were sent first.
    const std::deque<RecordedOrder>& Orders() const { return m_orders; }
    const RecordedOrder& operator[](OrderPlace place) const { return m_orders[place]; }
    // Whether it is the sending of an order that was entered by this very line.
    bool Knows(const RecordTexts& event) const;
    // False: its identifier is another order's as well, which some hosts give.
    bool IsUnmistakable(OrderPlace place) const;
    // The one that an event with these texts belongs to. An identifier alone is enough while one order has it.
    OrderPlace Find(const RecordTexts& texts) const;
    using Counts = std::array<std::size_t, static_cast<std::size_t>(OrderState::count)>; // by state
    const Counts& AllCounts() const { return m_counts; }
    std::size_t Count(OrderState state) const { return m_counts[static_cast<std::size_t>(state)]; }
    // The new orders that ask for the same, the latest first.
    std::vector<OrderPlace> Like(const RecordTexts& order) const;
    // The same without those that are not in the book, nor may be.
    std::vector<OrderPlace> StandingLike(const RecordTexts& order) const;
    // The latest of these; kNoOrder for none.
    OrderPlace LatestStandingLike(const RecordTexts& order) const;

    // Those that the server may still turn out to have: what of a past day concerns this one.
    OrderLedger Open() const;

private:
    OrderPlace Enter(std::string name, const RecordTexts& sending);
    OrderPlace LatestLike(const RecordTexts& order) const;
    OrderPlace Named(const std::string& name) const;
    void SetState(RecordedOrder& order, const RecordTexts& event, OrderState state);

    std::deque<RecordedOrder> m_orders;
    std::unordered_map<std::string, OrderPlace> m_places;
    std::unordered_map<std::string, OrderPlace> m_byId;    // kNoOrder where several have it
    std::unordered_map<std::uint64_t, OrderPlace> m_alike; // the latest, by what they ask for
    Counts m_counts{};
};

} // namespace planfold
