// A registration of the book in the words of the order record.
#pragma once

#include "plugin/orderbook/OrderInfo.h"
#include "plugin/record/OrderRecord.h"

#include <string>

namespace planfold {

class RecordedRow {
public:
    // `installments` tells which of the record's two fields holds the periods. The record outlives it.
    RecordedRow(const sOrderinfo& record, bool installments);
    RecordedRow(const RecordedRow&) = delete;
    RecordedRow& operator=(const RecordedRow&) = delete;

    const BookRow& Row() const { return m_row; }

private:
    std::string m_exchange, m_side, m_value, m_enteredOn;
    BookRow m_row;
};

} // namespace planfold
