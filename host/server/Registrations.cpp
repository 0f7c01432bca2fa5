#include "host/server/Registrations.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vesk {
namespace {

// By which an order that is sent again is known.
constexpr std::uint32_t kOrderedBy[] = {tag::orderId, tag::requestName};

} // namespace

void Registrations::MakeRoom(std::size_t more) {
    const std::size_t count = m_all.size() + more;
    m_all.reserve(count);
    m_byNumber.MakeRoom(count);
}

bool Registrations::Replay(std::string_view record) {
    if (auto registration = Registration::FromJson(record)) {
        const auto place = PlaceOf(registration->Number());
        if (place) registration->KeepOrdered(m_all[*place]);
        EnterAt(place, std::move(*registration));
        return true;
    }
    if (m_changes.Replay(record)) return true;
    auto order = ExchangeOrder::FromJson(record);
    if (!order || !Find(order->order.Text(tag::registrationNumber))) return false;
    Enter(std::move(*order));
    return true;
}

std::size_t Registrations::Enter(Registration registration) {
    const auto place = PlaceOf(registration.Number());
    return EnterAt(place, std::move(registration));
}

std::size_t Registrations::EnterAt(std::optional<std::size_t> before, Registration registration) {
    if (!registration.changes.Text(0).empty()) m_changes.Remember(registration.LatestChange());
    if (before) {
        m_all[*before] = std::move(registration);
        return *before;
    }
    const std::size_t place = m_all.size();
    m_byNumber.Add(registration.Number(), place);
    for (const std::uint32_t tag : kOrderedBy)
        if (const std::string_view text = registration.Ordered(tag); !text.empty())
            m_byOrdered.Add(text, place);
    m_lastSequence = std::max(m_lastSequence, SequenceIn(registration.Number(), kNumberPrefix.size()));
    m_all.push_back(std::move(registration));
    return place;
}

void Registrations::Enter(ExchangeOrder order) {
    ++m_orderCount;
    const std::size_t place = PlaceOf(order.order.Text(tag::registrationNumber)).value();
    Count(order, m_all[place]);
    if (m_noted) ++(*m_noted)[place];
    m_histories[place].Enter(std::move(order));
}

void Registrations::Count(const ExchangeOrder& order, Registration& registration) {
    if (!order.instalment) return;
    const Instalment& instalment = *order.instalment;
    if (instalment.number != registration.progress.executed + 1) return;
    const auto day = PlacementDay(order.order);
    const auto plan = registration.Plan();
    if (!day || !plan) return;
    registration.progress = {instalment.number, instalment.place + 1, *day};
    if (instalment.number < plan->periods) return;
    registration.Set(tag::sipStatus, kStatusExpired);
    registration.Set(tag::nextExecutionDate, RecordDate(*day));
}

std::optional<std::size_t> Registrations::PlaceOf(std::string_view number) const {
    return m_byNumber.Find(number, [&](std::size_t place) { return m_all[place].Number() == number; });
}

const Registration* Registrations::Find(std::string_view number) const {
    const auto place = PlaceOf(number);
    return place ? &m_all[*place] : nullptr;
}

const Registration* Registrations::FindOrdered(std::uint32_t tag, std::string_view text,
                                               std::string_view loginId) const {
    if (text.empty()) return nullptr;
    const auto found = m_byOrdered.Find(text, [&](std::size_t place) {
        const Registration& one = m_all[place];
        return one.Ordered(tag) == text && one.Text(tag::loginId) == loginId;
    });
    return found ? &m_all[*found] : nullptr;
}

std::size_t Registrations::PlaceOf(const Registration& registration) const {
    return PlaceOf(registration.Number()).value();
}

const ExecutionHistory& Registrations::HistoryOf(std::string_view number) const {
    static const ExecutionHistory none;
    const auto place = PlaceOf(number);
    const auto found = place ? m_histories.find(*place) : m_histories.end();
    return found == m_histories.end() ? none : found->second;
}

void Registrations::Clear() {
    m_all.clear();
    m_byNumber = {};
    m_byOrdered = {};
    m_histories.clear();
    m_changes = {};
    m_orderCount = m_lastSequence = 0;
    m_told.clear();
    m_noted.reset();
}

void Registrations::BeginNoting() {
    m_noted.emplace();
}

void Registrations::EndNoting() {
    m_noted.reset();
}

// With their trades, which stand in the same order. Which instalments they were is in the registration's
// progress by now.
void Registrations::WriteOrders(const Registration& registration, const Journal::Sink& sink) const {
    const ExecutionHistory& history = HistoryOf(registration.Number());
    std::size_t left = history.orders.size();
    if (m_noted)
        if (const auto later = m_noted->find(PlaceOf(registration)); later != m_noted->end())
            left -= later->second;
    auto trade = history.trades.begin();
    for (auto order = history.orders.begin(); left-- > 0; ++order) {
        ExchangeOrder whole{*order, {}};
        const std::string_view number = order->Text(tag::orderNumber);
        while (trade != history.trades.end() && trade->Text(tag::orderNumber) == number)
            whole.trades.push_back(*trade++);
        sink(whole.Json());
    }
}

void Registrations::TellHeld() {
    m_holdsTold = false;
    for (const Registration& registration : std::exchange(m_told, {}))
        Tell(registration);
}

void Registrations::Tell(const Registration& registration) {
    if (m_holdsTold) {
        if (!m_listeners.empty()) m_told.push_back(registration);
        return;
    }
    for (UpdateListener* listener : m_listeners)
        listener->OnUpdate(registration);
}

} // namespace vesk
