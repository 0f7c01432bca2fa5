// The rows of the basket, by record: their texts, which of them have been sent, which stand there twice, and
// what they come to. In which order they stand is the list's affair.
#pragma once

#include "plugin/base/KeyCounts.h"
#include "plugin/base/LongRun.h"
#include "plugin/basket/BasketOrder.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace planfold {

// The orders of one side.
struct BasketTotals {
    std::int64_t amountPaise = 0; // of orders by value
    std::int64_t quantity = 0;    // of orders by quantity
};

class BasketRows {
public:
    // The row gets the next serial number.
    RecordId Add(const BasketTexts& texts);
    // The same for a row out of a file's line (from 1), which is known again: it counts as sent when more
    // orders like it were sent than stand here as sent.
    RecordId AddLoaded(const BasketTexts& texts, int line);
    // The row is another order from now on: with the next serial number, and not sent.
    void Replace(RecordId record, const BasketTexts& texts);
    void SetUserText(RecordId record, std::string_view text) { m_rows[record].SetUserText(text); }
    void Remove(RecordId record);
    // Serial numbers go on, and what was sent is remembered.
    void Clear();

    const sBasketOrderData& operator[](RecordId record) const { return m_rows[record]; }
    // kNoRecord when the row is gone, or is another order now.
    RecordId BySerialNumber(std::int64_t number) const;

    // The line of the file that it was loaded from; 0 when the form made it.
    int LineOf(RecordId record) const { return m_lines[record]; }

    void MarkSent(RecordId record);
    // An order like this one may have been sent.
    void RememberSent(const BasketTexts& texts);
    // The row that is on its way; kNoRecord when none is.
    void SetSending(RecordId record) { m_sending = record; }
    RecordId Sending() const { return m_sending; }
    bool IsSent(RecordId record) const { return m_sent[record]; }
    std::size_t SentCount() const { return m_sentCount; }

    // Whether client, scrip, side, frequency and start date stand in another row as well.
    bool StandsTwice(RecordId record) const;
    std::size_t StandingTwice() const { return m_standingTwice; }

    const BasketTotals& Buy() const { return m_buy; }
    const BasketTotals& Sell() const { return m_sell; }

private:
    // What a row adds to the counts, and takes from them when it goes.
    void Enter(RecordId record);
    void Leave(RecordId record);
    void AddToTotals(const sBasketOrderData& row, int sign);
    void CountAsSent(RecordId record, std::uint64_t key);

    std::vector<sBasketOrderData> m_rows;
    std::vector<RecordId> m_free; // places of removed rows
    std::int32_t m_nextSerial = 1;
    std::int32_t m_firstSerial = 1;         // of the next table
    std::vector<RecordId> m_bySerialNumber; // from m_firstSerial
    std::vector<int> m_lines;
    std::vector<bool> m_sent;
    std::size_t m_sentCount = 0;
    KeyCounts m_sentRows;   // by what they order
    KeyCounts m_sentOrders; // the same of all that ever were
    bool m_anySent = false; // of these
    RecordId m_sending = kNoRecord;
    KeyCounts m_alike; // rows by what makes them alike
    std::size_t m_standingTwice = 0;
    BasketTotals m_buy, m_sell;
};

} // namespace planfold
