// What the server holds: the registrations, in order of entry, and what became of each on the exchange.
//
// Thread: one at a time. Lifetime: listeners are removed before they end.
#pragma once

#include "host/server/ExchangeOrder.h"
#include "host/server/PlaceIndex.h"
#include "host/server/Registration.h"
#include "host/server/journal/Journal.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vesk {

// Told of every change of a registration, from inside Server::Handle and Clockwork::ExecuteDue.
class UpdateListener {
public:
    virtual void OnUpdate(const Registration& registration) = 0;

protected:
    ~UpdateListener() = default;
};

class Registrations {
public:
    void MakeRoom(std::size_t more);
    // False when the journal's record is neither a registration nor an order of one.
    bool Replay(std::string_view record);
    // It takes the place of the one with the same number. The answer is where it stands.
    std::size_t Enter(Registration registration);
    // The registration takes the instalment into account, when the order is one that is not yet counted.
    void Enter(ExchangeOrder order);

    const std::vector<Registration>& All() const { return m_all; }
    std::size_t Size() const { return m_all.size(); }
    Registration& At(std::size_t place) { return m_all[place]; }
    const Registration& At(std::size_t place) const { return m_all[place]; }
    // Null when the number is unknown.
    const Registration* Find(std::string_view number) const;
    // Behind those of all that are here.
    std::size_t NextSequence() const { return m_lastSequence + 1; }
    // The one that the login's request with this text in tag::orderId, or of this name in tag::requestName, has
    // registered; null when it has not.
    const Registration* FindOrdered(std::uint32_t tag, std::string_view text, std::string_view loginId) const;
    ChangeMemory& Changes() { return m_changes; }
    const ChangeMemory& Changes() const { return m_changes; }
    std::size_t PlaceOf(const Registration& registration) const;
    // Empty without any order.
    const ExecutionHistory& HistoryOf(std::string_view number) const;
    // Exchange orders, of all registrations.
    std::size_t OrderCount() const { return m_orderCount; }

    // As at the start. Who listens still does.
    void Clear();

    // From here on it notes what the orders of each are, until `EndNoting`.
    void BeginNoting();
    void EndNoting();
    // Hands the sink the orders of one registration that were there before.
    void WriteOrders(const Registration& registration, const Journal::Sink& sink) const;

    void AddListener(UpdateListener& listener) { m_listeners.push_back(&listener); }
    void RemoveListener(UpdateListener& listener) { std::erase(m_listeners, &listener); }
    // Until `TellHeld` nobody is told; what is held is forgotten by `Clear`.
    void HoldTold() { m_holdsTold = true; }
    void TellHeld();
    void Tell(const Registration& registration);

private:
    std::optional<std::size_t> PlaceOf(std::string_view number) const;
    // `before` is the place of the one with the same number.
    std::size_t EnterAt(std::optional<std::size_t> before, Registration registration);
    void Count(const ExchangeOrder& order, Registration& registration);

    std::vector<Registration> m_all;
    PlaceIndex m_byNumber;
    PlaceIndex m_byOrdered; // by the identifier, and by the name, of the request that registered
    std::unordered_map<std::size_t, ExecutionHistory> m_histories; // by place
    ChangeMemory m_changes;
    std::size_t m_orderCount = 0;
    std::size_t m_lastSequence = 0; // the highest of any registration
    std::vector<UpdateListener*> m_listeners;
    bool m_holdsTold = false;
    std::vector<Registration> m_told; // held
    // How many orders came to each since the noting began, by place.
    std::optional<std::unordered_map<std::size_t, std::size_t>> m_noted{};
};

} // namespace vesk
