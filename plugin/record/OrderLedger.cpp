#include "plugin/record/OrderLedger.h"

#include <algorithm>
#include <functional>
#include <utility>

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

std::string AskedFor(const RecordTexts& texts) {
    std::string all;
    for (const RecordField field : kAskedFor)
        all.append(texts[field]).push_back('\n');
    return all;
}

// The request that changed a registration: the text of every event begins with it.
std::string_view RequestOf(std::string_view text) {
    return text.substr(0, text.find(':'));
}

// It names no scrip. A new order may lack a frequency, when the server has told none.
bool IsChange(const RecordTexts& texts) {
    return texts[RecordField::frequency].empty() && texts[RecordField::tradingSymbol].empty();
}

// By which all events of an order are known as its own.
std::string NameOfOrder(const RecordTexts& texts) {
    const std::string_view registration = texts[RecordField::registration];
    if (IsChange(texts) && !registration.empty())
        return std::string(registration).append("\n").append(RequestOf(texts[RecordField::text]));
    return std::string(texts[RecordField::orderId]).append("\n").append(AskedFor(texts));
}

} // namespace

std::uint64_t AskedForKey(const RecordTexts& order) {
    std::uint64_t key = 0;
    for (const RecordField field : kAskedFor)
        key = (key ^ std::hash<std::string_view>()(order[field])) * 0x9E37'79B9'7F4A'7C15u;
    return key;
}

RecordedOrder::RecordedOrder(const RecordTexts& texts) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < kRecordFieldCount; ++i)
        length += texts[static_cast<RecordField>(i)].size();
    m_texts.reserve(length);
    m_sentAt.fill(' ');
    for (std::size_t i = 0; i < kRecordFieldCount; ++i) {
        m_texts.append(texts[static_cast<RecordField>(i)]);
        m_ends[i] = static_cast<std::uint32_t>(m_texts.size());
    }
    texts[RecordField::time].copy(m_sentAt.data(), m_sentAt.size());
}

bool RecordedOrder::ChangesRegistration() const {
    return IsChange(Texts());
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
    anew.m_alikeBefore = m_alikeBefore;
    anew.m_namedBefore = m_namedBefore;
    if (state == OrderState::absent) event[RecordField::time].copy(m_absentAt.data(), m_absentAt.size());
    if (state != OrderState::sent) {
        anew.m_sentAt = m_sentAt;
        anew.m_sentText = SentText();
        anew.m_absentAt = m_absentAt;
    }
    *this = std::move(anew);
}

OrderPlace OrderLedger::Take(const RecordTexts& event) {
    const auto kind = EventNamed(event[RecordField::event]);
    if (!kind) return kNoOrder;
    std::string name = NameOfOrder(event);
    const OrderPlace known = Named(name);
    if (*kind != OrderEvent::sending) {
        // Of several with its name, one that waits for an event; of a second number, one that was absent.
        const auto latest = [&](auto isIt) {
            OrderPlace place = known;
            while (place != kNoOrder && !isIt(m_orders[place]))
                place = m_orders[place].m_namedBefore;
            return place;
        };
        OrderPlace place = latest([](const RecordedOrder& order) { return IsOpen(order.State()); });
        if (place == kNoOrder && known != kNoOrder && StateBy(*kind) == OrderState::done
            && m_orders[known].Text(RecordField::registration) != event[RecordField::registration])
            place = latest([](const RecordedOrder& order) { return order.State() == OrderState::absent; });
        if (place == kNoOrder) place = known;
        if (place != kNoOrder) SetState(m_orders[place], event, StateBy(*kind));
        return place;
    }
    // What never was in the book is the same order when it is sent again; whatever else has its identifier is
    // another one.
    const bool again = known != kNoOrder && !event[RecordField::orderId].empty()
                       && !MayStand(m_orders[known].State())
                       && AskedFor(m_orders[known].Texts()) == AskedFor(event);
    if (!again) return Enter(std::move(name), event);
    SetState(m_orders[known], event, OrderState::sent);
    return known;
}

void OrderLedger::Take(OrderPlace place, const RecordTexts& event) {
    if (const auto kind = EventNamed(event[RecordField::event]))
        SetState(m_orders[place], event, StateBy(*kind));
}

OrderPlace OrderLedger::Enter(std::string name, const RecordTexts& sending) {
    const auto place = static_cast<OrderPlace>(m_orders.size());
    const auto [named, isOnly] = m_places.try_emplace(std::move(name), place);
    RecordedOrder& order = m_orders.emplace_back(sending);
    if (!isOnly) order.m_namedBefore = std::exchange(named->second, place);
    ++m_counts[static_cast<std::size_t>(OrderState::sent)];
    if (order.ChangesRegistration()) return place;
    if (const std::string_view id = sending[RecordField::orderId]; !id.empty())
        if (const auto [only, isSole] = m_byId.try_emplace(std::string(id), place); !isSole)
            only->second = kNoOrder;
    const auto [latest, isFirst] = m_alike.try_emplace(AskedForKey(sending), place);
    if (!isFirst) order.m_alikeBefore = std::exchange(latest->second, place);
    return place;
}

void OrderLedger::SetState(RecordedOrder& order, const RecordTexts& event, OrderState state) {
    // Another terminal may tell of a doubt after the answer has ended it.
    if ((state == OrderState::inDoubt || state == OrderState::absent) && !IsOpen(order.State())) return;
    --m_counts[static_cast<std::size_t>(order.State())];
    order.Take(event, state);
    ++m_counts[static_cast<std::size_t>(state)];
}

OrderPlace OrderLedger::Find(const RecordTexts& texts) const {
    if (const OrderPlace place = Named(NameOfOrder(texts)); place != kNoOrder) return place;
    const auto named = m_byId.find(std::string(texts[RecordField::orderId]));
    return named == m_byId.end() ? kNoOrder : named->second;
}

bool OrderLedger::IsUnmistakable(OrderPlace place) const {
    const auto named = m_byId.find(std::string(m_orders[place].Text(RecordField::orderId)));
    return named == m_byId.end() || named->second != kNoOrder;
}

bool OrderLedger::Knows(const RecordTexts& event) const {
    if (event[RecordField::event] != NameOf(OrderEvent::sending) || event[RecordField::orderId].empty())
        return false;
    const OrderPlace place = Find(event);
    if (place == kNoOrder) return false;
    const RecordedOrder& order = m_orders[place];
    return order.SentAt() == event[RecordField::time] && order.SentText() == event[RecordField::text]
           && order.Text(RecordField::source) == event[RecordField::source]
           && order.Text(RecordField::line) == event[RecordField::line]
           && AskedFor(order.Texts()) == AskedFor(event);
}

OrderPlace OrderLedger::Named(const std::string& name) const {
    const auto found = m_places.find(name);
    return found == m_places.end() ? kNoOrder : found->second;
}

OrderPlace OrderLedger::LatestLike(const RecordTexts& order) const {
    const auto found = m_alike.find(AskedForKey(order));
    return found == m_alike.end() ? kNoOrder : found->second;
}

OrderPlace OrderLedger::LatestStandingLike(const RecordTexts& order) const {
    OrderPlace place = LatestLike(order);
    while (place != kNoOrder && !MayStand(m_orders[place].State()))
        place = m_orders[place].m_alikeBefore;
    return place;
}

std::vector<OrderPlace> OrderLedger::Like(const RecordTexts& order) const {
    std::vector<OrderPlace> places;
    for (OrderPlace place = LatestLike(order); place != kNoOrder; place = m_orders[place].m_alikeBefore)
        places.push_back(place);
    return places;
}

std::vector<OrderPlace> OrderLedger::StandingLike(const RecordTexts& order) const {
    std::vector<OrderPlace> places = Like(order);
    std::erase_if(places, [&](OrderPlace place) { return !MayStand(m_orders[place].State()); });
    return places;
}

OrderLedger OrderLedger::Open() const {
    OrderLedger open;
    for (const RecordedOrder& order : m_orders) {
        if (!IsOpen(order.State())) continue;
        RecordTexts texts = order.Texts();
        texts[RecordField::time] = order.SentAt();
        texts[RecordField::text] = order.SentText();
        const OrderPlace place = open.Enter(NameOfOrder(texts), texts);
        open.SetState(open.m_orders[place], order.Texts(), order.State());
    }
    return open;
}

} // namespace planfold
