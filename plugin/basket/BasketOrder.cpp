#include "plugin/basket/BasketOrder.h"

#include <algorithm>
#include <cstring>

namespace planfold {

namespace {

constexpr std::size_t kCommas = kBasketFieldCount - 1;

std::size_t SizeOf(const BasketTexts& texts) {
    std::size_t size = kCommas;
    for (const std::string_view text : texts)
        size += text.size();
    return size;
}

// What does not fit behind those before it is cut off.
BasketTexts Fitting(BasketTexts texts, std::size_t room) {
    room -= kCommas;
    for (std::string_view& text : texts) {
        text = text.substr(0, room);
        room -= text.size();
    }
    return texts;
}

} // namespace

sBasketOrderData::sBasketOrderData(const BasketTexts& given, std::int32_t serialNumber)
    : m_serialNumber(serialNumber) {
    const std::size_t size = SizeOf(given);
    if (size > UINT16_MAX) {
        *this = sBasketOrderData(Fitting(given, UINT16_MAX), serialNumber);
        return;
    }
    m_block = std::make_unique_for_overwrite<char[]>(sizeof(Ends) + size);
    char* const to = m_block.get() + sizeof(Ends);
    const auto* const texts = &*given.begin();
    Ends ends;
    std::size_t at = 0;
    for (std::size_t i = 0; i < kBasketFieldCount;) {
        const char* const first = texts[i].data();
        const char* last = first;
        // Those of a file's line are copied at once, with the commas between them.
        do {
            last = texts[i].data() + texts[i].size();
            ends[i] = static_cast<std::uint16_t>(at + static_cast<std::size_t>(last - first));
        } while (++i < kBasketFieldCount && last && texts[i].data() == last + 1 && *last == ',');
        at = static_cast<std::size_t>(std::copy(first, last, to + at) - to);
        if (at < size) to[at++] = ',';
    }
    std::memcpy(m_block.get(), ends.data(), sizeof ends);
}

std::string_view sBasketOrderData::Text(BasketField field) const {
    if (!m_block) return {};
    const auto index = static_cast<std::size_t>(field);
    std::uint16_t ends[2] = {};
    if (index)
        std::memcpy(ends, m_block.get() + (index - 1) * sizeof ends[0], sizeof ends);
    else
        std::memcpy(&ends[1], m_block.get(), sizeof ends[1]);
    const std::size_t begin = index ? ends[0] + 1u : 0;
    return {m_block.get() + sizeof(Ends) + begin, ends[1] - begin};
}

std::string_view sBasketOrderData::Columns() const {
    const std::string_view first = Text(BasketField{}), last = Text(kBasketColumns.back());
    return {first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data())};
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
