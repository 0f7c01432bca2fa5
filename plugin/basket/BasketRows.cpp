#include "plugin/basket/BasketRows.h"

#include "plugin/base/Numbers.h"
#include "plugin/basket/BasketOrder.h"

#include <functional>
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

std::uint64_t AlikeKey(const sBasketOrderData& row) {
    std::uint64_t key = 0;
    for (const BasketField field : kAlikeFields)
        AddToKey(key, row.Text(field));
    return key;
}

// Of all that is sent of a row.
std::uint64_t OrderKey(const BasketTexts& texts) {
    std::uint64_t key = 0;
    for (const SipOrderField& sent : kSipOrderFields)
        AddToKey(key, texts[sent.field]);
    AddToKey(key, texts[ValueField(texts[BasketField::investType])]);
    return key;
}

} // namespace

RecordId BasketRows::Add(const BasketTexts& texts) {
    RecordId record = static_cast<RecordId>(m_rows.size());
    if (m_free.empty()) {
        m_rows.emplace_back();
        m_sent.push_back(false);
        m_lines.push_back(0);
    } else {
        record = m_free.back();
        m_free.pop_back();
    }
    m_rows[record] = sBasketOrderData(texts, m_nextSerial++);
    m_lines[record] = 0;
    m_bySerialNumber.push_back(record);
    Enter(record);
    return record;
}

RecordId BasketRows::AddLoaded(const BasketTexts& texts, int line) {
    const RecordId record = Add(texts);
    m_lines[record] = line;
    if (!m_anySent) return record;
    const std::uint64_t key = OrderKey(texts);
    if (m_sentOrders.Of(key) > m_sentRows.Of(key)) CountAsSent(record, key);
    return record;
}

void BasketRows::Replace(RecordId record, const BasketTexts& texts) {
    Leave(record);
    m_lines[record] = 0;
    m_rows[record] = sBasketOrderData(texts, m_nextSerial++);
    m_bySerialNumber.push_back(record);
    Enter(record);
}

void BasketRows::Remove(RecordId record) {
    Leave(record);
    m_rows[record] = {};
    m_free.push_back(record);
}

void BasketRows::Clear() {
    BasketRows empty;
    empty.m_nextSerial = empty.m_firstSerial = m_nextSerial;
    empty.m_sentOrders = std::move(m_sentOrders);
    empty.m_anySent = m_anySent;
    *this = std::move(empty);
}

RecordId BasketRows::BySerialNumber(std::int64_t number) const {
    if (number < m_firstSerial || number >= m_nextSerial) return kNoRecord;
    return m_bySerialNumber[static_cast<std::size_t>(number - m_firstSerial)];
}

void BasketRows::MarkSent(RecordId record) {
    const BasketTexts texts = m_rows[record].Texts();
    RememberSent(texts);
    CountAsSent(record, OrderKey(texts));
}

void BasketRows::RememberSent(const BasketTexts& texts) {
    m_sentOrders.Increment(OrderKey(texts));
    m_anySent = true;
}

void BasketRows::CountAsSent(RecordId record, std::uint64_t key) {
    if (m_sent[record]) return;
    m_sent[record] = true;
    ++m_sentCount;
    m_sentRows.Increment(key);
}

bool BasketRows::StandsTwice(RecordId record) const {
    return m_alike.Of(AlikeKey(m_rows[record])) > 1;
}

void BasketRows::Enter(RecordId record) {
    const std::uint32_t alike = m_alike.Increment(AlikeKey(m_rows[record]));
    // With the second of a kind, the first stands twice as well.
    if (alike > 1) m_standingTwice += alike == 2 ? 2 : 1;
    AddToTotals(m_rows[record], 1);
}

void BasketRows::Leave(RecordId record) {
    const std::uint32_t left = m_alike.Decrement(AlikeKey(m_rows[record]));
    if (left > 0) m_standingTwice -= left == 1 ? 2 : 1;
    if (m_sent[record]) {
        --m_sentCount;
        m_sentRows.Decrement(OrderKey(m_rows[record].Texts()));
    }
    m_sent[record] = false;
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
