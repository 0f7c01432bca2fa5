#include "host/server/Registrations.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace vesk {
namespace {

// By which an order that is sent again is known.
constexpr std::uint32_t kOrderedBy[] = {tag::orderId, tag::requestName};

std::size_t KeyOf(std::string_view text) {
    return std::hash<std::string_view>()(text);
}

} // namespace

void Registrations::MakeRoom(std::size_t more) {
    const std::size_t count = m_all.size() + more;
    m_all.reserve(count);
    m_byNumber.reserve(count);
    m_byOrdered.reserve(std::size(kOrderedBy) * count);
}

bool Registrations::Replay(std::string_view record) {
    if (auto registration = Registration::FromJson(record)) {
        if (const Registration* before = Find(registration->Number())) registration->KeepOrdered(*before);
        Enter(std::move(*registration));
        return true;
    }
    if (m_changes.Replay(record)) return true;
    auto order = ExchangeOrder::FromJson(record);
    if (!order || !Find(order->order.Text(tag::registrationNumber))) return false;
    Enter(std::move(*order));
    return true;
}

std::size_t Registrations::Enter(Registration registration) {
    if (!registration.changes.Text(0).empty()) m_changes.Remember(registration.LatestChange());
    const auto [place, isNew] = m_byNumber.emplace(registration.Number(), m_all.size());
    if (!isNew) {
        m_all[place->second] = std::move(registration);
        return place->second;
    }
    for (const std::uint32_t tag : kOrderedBy)
        if (const std::string_view text = registration.Ordered(tag); !text.empty())
            m_byOrdered.emplace(KeyOf(text), place->second);
    m_lastSequence = std::max(m_lastSequence, SequenceIn(registration.Number(), kNumberPrefix.size()));
    m_all.push_back(std::move(registration));
    return place->second;
}

void Registrations::Enter(ExchangeOrder order) {
    ++m_orderCount;
    Count(order);
    const std::string number(order.order.Text(tag::registrationNumber));
    if (m_noted) ++(*m_noted)[number];
    m_histories[number].Enter(std::move(order));
}

void Registrations::Count(const ExchangeOrder& order) {
    if (!order.instalment) return;
    Registration& registration = m_all[m_byNumber.at(std::string(order.order.Text(tag::registrationNumber)))];
    const Instalment& instalment = *order.instalment;
    const auto day = PlacementDay(order.order);
    const auto plan = registration.Plan();
    if (!day || !plan || instalment.number != registration.progress.executed + 1) return;
    registration.progress = {instalment.number, instalment.place + 1, *day};
    if (instalment.number < plan->periods) return;
    registration.Set(tag::sipStatus, kStatusExpired);
    registration.Set(tag::nextExecutionDate, RecordDate(*day));
}

const Registration* Registrations::Find(std::string_view number) const {
    const auto found = m_byNumber.find(std::string(number));
    return found == m_byNumber.end() ? nullptr : &m_all[found->second];
}

const Registration* Registrations::FindOrdered(std::uint32_t tag, std::string_view text,
                                               std::string_view loginId) const {
    if (text.empty()) return nullptr;
    const auto [first, last] = m_byOrdered.equal_range(KeyOf(text));
    const auto found = std::find_if(first, last, [&](const auto& entry) {
        const Registration& one = m_all[entry.second];
        return one.Ordered(tag) == text && one.Text(tag::loginId) == loginId;
    });
    return found == last ? nullptr : &m_all[found->second];
}

std::size_t Registrations::PlaceOf(const Registration& registration) const {
    return m_byNumber.at(std::string(registration.Number()));
}

const ExecutionHistory& Registrations::HistoryOf(std::string_view number) const {
    static const ExecutionHistory none;
    const auto found = m_histories.find(std::string(number));
    return found == m_histories.end() ? none : found->second;
}

void Registrations::Clear() {
    m_all.clear();
    m_byNumber.clear();
    m_byOrdered.clear();
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
        if (const auto later = m_noted->find(std::string(registration.Number())); later != m_noted->end())
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
