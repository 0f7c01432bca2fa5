// What the commands that read orders find, and how they tell it.
#pragma once

#include "plugin/basket/BasketReading.h"
#include "plugin/basket/BasketRows.h"
#include "tools/planfold-basket/Commands.h"

#include <string>
#include <vector>

namespace basket {

// The orders of one side.
struct SideTotals {
    std::int64_t orders = 0;
    std::int64_t amountPaise = 0; // of orders by value
    std::int64_t quantity = 0;    // of orders by quantity
};

struct Rejection {
    int line;
    int column; // from 1; 0 when none is told
    std::string reason;
    std::string text;
};

class Findings final : public planfold::BasketSink {
public:
    // Keeps what the options ask for.
    explicit Findings(const Options& options)
        : m_keepRows(!options.normalised.empty()), m_keepOrders(!options.limits.empty()) {}

    void OnRow(const planfold::BasketTexts& texts) override;
    void OnRejected(const planfold::RejectedLine& line, const planfold::BasketTexts&) override;
    void OnNotice(std::string_view text) override { m_notice = text; }
    void OnLog(std::string_view) override {}
    // Of the line that is rejected; asked for while it is told.
    std::function<int()> columnOf = [] { return 0; };

    std::vector<Rejection> rejected;
    SideTotals buy, sell;
    std::string rows;
    planfold::BasketRows orders;
    std::vector<planfold::RecordId> records; // of the orders

private:
    bool m_keepRows, m_keepOrders;
    std::string m_notice;
};

// Writes the report and the files that were asked for, and answers with the exit status. `columns` are the
// file's that were not read.
int Tell(const Options& options, const planfold::BasketReading& load, Findings& findings,
         const std::vector<std::string>& notRead = {});

} // namespace basket
