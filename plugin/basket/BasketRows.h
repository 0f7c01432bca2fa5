// The rows of the basket, by record: their texts, what has become of each, which stand there twice, and what
// they come to. In which order they stand is the list's affair.
#pragma once

#include "plugin/base/KeyCounts.h"
#include "plugin/base/LongRun.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/record/OrderLedger.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace planfold {

// The orders of one side.
struct BasketTotals {
    std::int64_t amountPaise = 0; // of orders by value
    std::int64_t quantity = 0;    // of orders by quantity
};

// What has become of a row.
enum class RowState : std::uint8_t {
    notSent,
    sent, // and not yet answered
    registered,
    refused,   // by the server
    notPlaced, // held back, or it could not be sent
    inDoubt,
    absent, // it was sent, and is proven not to be registered
    count
};
RowState RowStateOf(OrderState state);

// A row that was taken out, with all that is known of it.
struct TakenRow {
    sBasketOrderData row;
    int line = 0;
    OrderPlace order = kNoOrder;
    RowState state = RowState::notSent;
    std::string whyNotPlaced{};
};

class BasketRows {
public:
    // The row gets the next serial number.
    RecordId Add(const BasketTexts& texts);
    // The same for a row out of a file's line (from 1).
    RecordId AddLoaded(const BasketTexts& texts, int line);
    void SetUserText(RecordId record, std::string_view text) { m_rows[record].SetUserText(text); }
    void Remove(RecordId record);
    // The place of the row stays empty until one is put back there, or it is released.
    TakenRow Take(RecordId record);
    void Release(RecordId record) { m_free.push_back(record); }
    RecordId Reserve();
    // With the next serial number; `state` is that of its order by now.
    void PutBack(RecordId record, TakenRow taken, RowState state);
    // Serial numbers go on.
    void Clear();
    // Every row that comes or changes has this number next.
    std::int32_t NextSerial() const { return m_nextSerial; }

    const sBasketOrderData& operator[](RecordId record) const { return m_rows[record]; }
    // kNoRecord when the row is gone, or is another order now.
    RecordId BySerialNumber(std::int64_t number) const;

    // The line of the file that it was loaded from; 0 when the form made it.
    int LineOf(RecordId record) const { return m_lines[record]; }

    // The row is this order of the order record, whose state it shows from now on.
    void SetOrder(RecordId record, OrderPlace order, RowState state);
    // kNoOrder for a row that was not sent, kNoRecord for an order that is no row.
    OrderPlace OrderOf(RecordId record) const { return m_standing[record].order; }
    RecordId ByOrder(OrderPlace order) const;
    // It was not sent, and why.
    void SetNotPlaced(RecordId record, std::string_view why);
    // Empty where the order record says it.
    std::string_view WhyNotPlaced(RecordId record) const;
    RowState State(RecordId record) const { return m_standing[record].state; }
    std::size_t Count(RowState state) const { return m_counts[static_cast<std::size_t>(state)]; }
    // Whether it left the desk, and is not proven to have gone astray.
    bool IsSent(RecordId record) const;
    std::size_t SentCount() const;

    // Whether client, scrip, side, frequency and start date stand in another row as well.
    bool StandsTwice(RecordId record) const;
    std::size_t StandingTwice() const { return m_standingTwice; }

    const BasketTotals& Buy() const { return m_buy; }
    const BasketTotals& Sell() const { return m_sell; }

private:
    struct Standing {
        OrderPlace order = kNoOrder;
        RowState state = RowState::notSent;
    };

    // What a row adds to the counts, and takes from them when it goes.
    void Enter(RecordId record, std::uint64_t alikeKey);
    void Leave(RecordId record);
    void AddToTotals(const sBasketOrderData& row, int sign);
    void SetState(RecordId record, RowState state);

    std::vector<sBasketOrderData> m_rows;
    std::vector<RecordId> m_free; // places of removed rows
    std::int32_t m_nextSerial = 1;
    std::int32_t m_firstSerial = 1;         // of the next table
    std::vector<RecordId> m_bySerialNumber; // from m_firstSerial
    std::vector<int> m_lines;
    std::vector<Standing> m_standing;
    std::array<std::size_t, static_cast<std::size_t>(RowState::count)> m_counts{};
    std::unordered_map<OrderPlace, RecordId> m_byOrder;
    std::unordered_map<RecordId, std::string> m_whyNotPlaced;
    KeyCounts m_alike; // rows by what makes them alike
    std::size_t m_standingTwice = 0;
    BasketTotals m_buy, m_sell;
};

} // namespace planfold
