#include "plugin/record/OrderLedger.h"

#include <functional>

namespace planfold {

namespace {

// The latest event says these anew; the others are what was asked for.
constexpr RecordField kLatest[] = {RecordField::time, RecordField::event, RecordField::registration,
                                   RecordField::text};

constexpr RecordField kAskedFor[] = {
    RecordField::account,   RecordField::exchange,   RecordField::tradingSymbol,
    RecordField::side,      RecordField::investType, RecordField::value,
    RecordField::frequency, RecordField::startDate,  RecordField::periods};

OrderState StateBy(OrderEvent event) {
    switch (event) {
    case OrderEvent::sending:
        return OrderState::sent;
    case OrderEvent::notSent:
        return OrderState::notSent;
    case OrderEvent::refused:
        return OrderState::refused;
    case OrderEvent::inDoubt:
        return OrderState::inDoubt;
    case OrderEvent::absent:
        return OrderState::absent;
    default:
        return OrderState::done;
    }
}

template <class Texts>
std::string AskedFor(const Texts& text) {
    std::string all;
    for (const RecordField field : kAskedFor)
        all.append(text(field)).push_back('\n');
    return all;
}

// By which all events of an order are known as its own.
template <class Texts>
std::string NameOfOrder(const Texts& text) {
    if (const std::string_view id = text(RecordField::orderId); !id.empty()) return std::string(id);
    if (text(RecordField::frequency).empty()) return "\n" + std::string(text(RecordField::registration));
    return AskedFor(text);
}

auto In(const RecordTexts& texts) {
    return [&](RecordField field) { return texts[field]; };
}
auto In(const RecordedOrder& order) {
    return [&](RecordField field) { return order.Text(field); };
}

template <class Texts>
std::uint64_t KeyOf(const Texts& text) {
    return std::hash<std::string>()(AskedFor(text));
}

} // namespace

RecordedOrder::RecordedOrder(const RecordTexts& texts) {
    for (std::size_t i = 0; i < kRecordFieldCount; ++i) {
        m_texts.append(texts[static_cast<RecordField>(i)]);
        m_ends[i] = static_cast<std::uint32_t>(m_texts.size());
    }
}

std::string_view RecordedOrder::Text(RecordField field) const {
    const auto place = static_cast<std::size_t>(field);
    const std::uint32_t start = place > 0 ? m_ends[place - 1] : 0;
    return std::string_view(m_texts).substr(start, m_ends[place] - start);
}

RecordTexts RecordedOrder::Texts() const {
    RecordTexts texts;
    for (std::size_t i = 0; i < kRecordFieldCount; ++i)
        texts[static_cast<RecordField>(i)] = Text(static_cast<RecordField>(i));
    return texts;
}

void RecordedOrder::Take(const RecordTexts& event, OrderState state) {
    RecordTexts texts = Texts();
    for (const RecordField field : kLatest)
        if (field != RecordField::registration || !event[field].empty()) texts[field] = event[field];
    RecordedOrder anew(texts);
    anew.m_state = state;
    *this = std::move(anew);
}

void OrderLedger::Take(const RecordTexts& event) {
    const auto kind = EventNamed(event[RecordField::event]);
    if (!kind) return;
    const auto [place, isNew] = m_places.try_emplace(NameOfOrder(In(event)), m_orders.size());
    if (*kind == OrderEvent::sending) {
        // Sent again, it is the same order; without an identifier it is another one that asks for the same.
        const bool again = !isNew && !event[RecordField::orderId].empty();
        if (again) return Change(m_orders[place->second], event, OrderState::sent);
        place->second = m_orders.size();
        Count(m_orders.emplace_back(event), true);
    } else if (isNew) {
        m_places.erase(place);
    } else {
        Change(m_orders[place->second], event, StateBy(*kind));
    }
}

void OrderLedger::Change(RecordedOrder& order, const RecordTexts& event, OrderState state) {
    Count(order, false);
    order.Take(event, state);
    Count(order, true);
}

void OrderLedger::Count(const RecordedOrder& order, bool enters) {
    std::size_t& count = m_counts[static_cast<std::size_t>(order.State())];
    enters ? ++count : --count;
    const bool mayStand = order.State() == OrderState::sent || order.State() == OrderState::done
                          || order.State() == OrderState::inDoubt;
    if (order.ChangesRegistration() || !mayStand) return;
    if (enters)
        m_standing.Increment(KeyOf(In(order)));
    else
        m_standing.Decrement(KeyOf(In(order)));
}

const RecordedOrder* OrderLedger::Find(const RecordTexts& texts) const {
    const auto found = m_places.find(NameOfOrder(In(texts)));
    return found == m_places.end() ? nullptr : &m_orders[found->second];
}

std::uint32_t OrderLedger::Like(const RecordTexts& order) const {
    return m_standing.Of(KeyOf(In(order)));
}

} // namespace planfold
