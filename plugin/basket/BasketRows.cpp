#include "plugin/basket/BasketRows.h"

#include "plugin/base/Numbers.h"
#include "plugin/basket/BasketOrder.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace planfold {

namespace {

constexpr BasketField kAlikeFields[] = {BasketField::account,       BasketField::exchange,
                                        BasketField::tradingSymbol, BasketField::side,
                                        BasketField::frequency,     BasketField::startDate};

// A hash is enough for a mark: that two of a million differing rows share one is rarer than a memory fault.
void AddToKey(std::uint64_t& key, std::string_view text) {
    key = (key ^ std::hash<std::string_view>{}(text)) * 0x9E37'79B9'7F4A'7C15u;
}

std::uint64_t AlikeKey(const BasketTexts& texts) {
    std::uint64_t key = 0;
    for (const BasketField field : kAlikeFields)
        AddToKey(key, texts[field]);
    return key;
}
std::uint64_t AlikeKey(const sBasketOrderData& row) {
    return AlikeKey(row.Texts());
}

constexpr RowState kSentStates[] = {RowState::sent, RowState::registered, RowState::refused, RowState::inDoubt};

} // namespace

RowState RowStateOf(OrderState state) {
    constexpr RowState states[] = {RowState::sent,      RowState::registered, RowState::refused,
                                   RowState::notPlaced, RowState::inDoubt,    RowState::absent};
    static_assert(std::size(states) == static_cast<std::size_t>(OrderState::count));
    return states[static_cast<std::size_t>(state)];
}

RecordId BasketRows::Reserve() {
    auto record = static_cast<RecordId>(m_rows.size());
    if (m_free.empty()) {
        m_rows.emplace_back();
        m_standing.emplace_back();
        m_lines.push_back(0);
    } else {
        record = m_free.back();
        m_free.pop_back();
    }
    return record;
}

RecordId BasketRows::Add(const BasketTexts& texts) {
    const std::uint64_t key = AlikeKey(texts);
    m_alike.Expect(key);
    const RecordId record = Reserve();
    m_rows[record] = sBasketOrderData(texts, m_nextSerial++);
    m_lines[record] = 0;
    m_bySerialNumber.push_back(record);
    Enter(record, key);
    return record;
}

RecordId BasketRows::AddLoaded(const BasketTexts& texts, int line) {
    const RecordId record = Add(texts);
    m_lines[record] = line;
    return record;
}

void BasketRows::Remove(RecordId record) {
    Take(record);
    Release(record);
}

TakenRow BasketRows::Take(RecordId record) {
    TakenRow taken{{}, m_lines[record], OrderOf(record), State(record), std::string(WhyNotPlaced(record))};
    Leave(record);
    taken.row = std::exchange(m_rows[record], {});
    return taken;
}

void BasketRows::PutBack(RecordId record, TakenRow taken, RowState state) {
    m_rows[record] = std::move(taken.row);
    m_rows[record].SetSerialNumber(m_nextSerial++);
    m_bySerialNumber.push_back(record);
    m_lines[record] = taken.line;
    Enter(record, AlikeKey(m_rows[record]));
    if (taken.order != kNoOrder)
        SetOrder(record, taken.order, state);
    else if (state == RowState::notPlaced)
        SetNotPlaced(record, taken.whyNotPlaced);
}

void BasketRows::Clear() {
    BasketRows empty;
    empty.m_nextSerial = empty.m_firstSerial = m_nextSerial;
    *this = std::move(empty);
}

RecordId BasketRows::BySerialNumber(std::int64_t number) const {
    if (number < m_firstSerial || number >= m_nextSerial) return kNoRecord;
    return m_bySerialNumber[static_cast<std::size_t>(number - m_firstSerial)];
}

void BasketRows::SetOrder(RecordId record, OrderPlace order, RowState state) {
    if (const OrderPlace before = m_standing[record].order; before != order) m_byOrder.erase(before);
    m_standing[record].order = order;
    m_byOrder.insert_or_assign(order, record);
    SetState(record, state);
}

RecordId BasketRows::ByOrder(OrderPlace order) const {
    const auto found = m_byOrder.find(order);
    return found == m_byOrder.end() ? kNoRecord : found->second;
}

void BasketRows::SetNotPlaced(RecordId record, std::string_view why) {
    SetState(record, RowState::notPlaced);
    m_whyNotPlaced.insert_or_assign(record, why);
}

std::string_view BasketRows::WhyNotPlaced(RecordId record) const {
    const auto found = m_whyNotPlaced.find(record);
    return found == m_whyNotPlaced.end() ? std::string_view() : found->second;
}

bool BasketRows::IsSent(RecordId record) const {
    return std::ranges::find(kSentStates, State(record)) != std::end(kSentStates);
}

std::size_t BasketRows::SentCount() const {
    std::size_t sent = 0;
    for (const RowState state : kSentStates)
        sent += Count(state);
    return sent;
}

void BasketRows::SetState(RecordId record, RowState state) {
    m_whyNotPlaced.erase(record);
    --m_counts[static_cast<std::size_t>(State(record))];
    m_standing[record].state = state;
    ++m_counts[static_cast<std::size_t>(state)];
}

bool BasketRows::StandsTwice(RecordId record) const {
    return m_alike.Of(AlikeKey(m_rows[record])) > 1;
}

void BasketRows::Enter(RecordId record, std::uint64_t alikeKey) {
    const std::uint32_t alike = m_alike.Increment(alikeKey);
    // With the second of a kind, the first stands twice as well.
    if (alike > 1) m_standingTwice += alike == 2 ? 2 : 1;
    ++m_counts[static_cast<std::size_t>(State(record))];
    AddToTotals(m_rows[record], 1);
}

void BasketRows::Leave(RecordId record) {
    const std::uint32_t left = m_alike.Decrement(AlikeKey(m_rows[record]));
    if (left > 0) m_standingTwice -= left == 1 ? 2 : 1;
    --m_counts[static_cast<std::size_t>(State(record))];
    m_byOrder.erase(m_standing[record].order);
    m_whyNotPlaced.erase(record);
    m_standing[record] = {};
    m_bySerialNumber[static_cast<std::size_t>(m_rows[record].SerialNumber() - m_firstSerial)] = kNoRecord;
    AddToTotals(m_rows[record], -1);
}

void BasketRows::AddToTotals(const sBasketOrderData& row, int sign) {
    BasketTotals& side = row.Text(BasketField::side) == "B" ? m_buy : m_sell;
    if (row.Text(BasketField::investType) == "value")
        side.amountPaise += sign * LeadingInteger(row.Text(BasketField::amount));
    else
        side.quantity += sign * LeadingInteger(row.Text(BasketField::quantity));
}

} // namespace planfold
