#include "plugin/basket/BasketOrder.h"

#include <algorithm>
#include <cstring>

namespace planfold {

sBasketOrderData::sBasketOrderData(const BasketTexts& texts, std::int32_t serialNumber)
    : m_serialNumber(serialNumber) {
    Ends ends;
    std::size_t end = 0;
    for (std::size_t i = 0; i < kBasketFieldCount; ++i) {
        end = std::min<std::size_t>(end + texts[static_cast<BasketField>(i)].size(), UINT16_MAX);
        ends[i] = static_cast<std::uint16_t>(end);
    }
    m_block = std::make_unique_for_overwrite<char[]>(sizeof ends + end);
    char* to = m_block.get();
    std::memcpy(to, ends.data(), sizeof ends);
    to += sizeof ends;
    char* const last = to + end;
    for (std::size_t i = 0; i < kBasketFieldCount; ++i)
        to += texts[static_cast<BasketField>(i)].copy(to, static_cast<std::size_t>(last - to));
}

std::string_view sBasketOrderData::Text(BasketField field) const {
    if (!m_block) return {};
    const auto index = static_cast<std::size_t>(field);
    std::uint16_t ends[2] = {};
    if (index)
        std::memcpy(ends, m_block.get() + (index - 1) * sizeof ends[0], sizeof ends);
    else
        std::memcpy(&ends[1], m_block.get(), sizeof ends[1]);
    return {m_block.get() + sizeof(Ends) + ends[0], static_cast<std::size_t>(ends[1] - ends[0])};
}

std::size_t sBasketOrderData::Size() const {
    const std::string_view last = Text(BasketField::userText);
    return m_block ? static_cast<std::size_t>(last.data() + last.size() - m_block.get()) : 0;
}

BasketTexts sBasketOrderData::Texts() const {
    BasketTexts texts;
    for (std::size_t i = 0; i < kBasketFieldCount; ++i)
        texts[static_cast<BasketField>(i)] = Text(static_cast<BasketField>(i));
    return texts;
}

void sBasketOrderData::SetUserText(std::string_view text) {
    BasketTexts texts = Texts();
    texts[BasketField::userText] = text;
    *this = sBasketOrderData(texts, m_serialNumber);
}

RecordTexts AskedForBy(const BasketTexts& row, StartDates& dates) {
    RecordTexts asked;
    const std::string_view investType = row[BasketField::investType];
    asked[RecordField::account] = row[BasketField::account];
    asked[RecordField::exchange] = row[BasketField::exchange];
    asked[RecordField::tradingSymbol] = row[BasketField::tradingSymbol];
    asked[RecordField::side] = row[BasketField::side];
    asked[RecordField::investType] = investType;
    asked[RecordField::value] = row[ValueField(investType)];
    asked[RecordField::frequency] = row[BasketField::frequency];
    asked[RecordField::startDate] = dates.Text(row[BasketField::startDate]);
    asked[RecordField::periods] = row[BasketField::totalPeriod];
    return asked;
}

} // namespace planfold
