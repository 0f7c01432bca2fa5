// Which orders need the user's confirmation because their scrip is cautionary, for one order and for a basket.
#pragma once

#include "host/market/ScripMaster.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

struct CautionOrder {
    std::string client, investType, product, value, tradingSymbol, exchange;
};

// What the plug-in is told about one order.
enum CautionAnswer : int {
    kNotCautionary = 0,
    kCautionary = 1,
    kCautionUndecided = 2, // the scrip is unknown: the order goes without a flag
};

// The answer is nothing when the user must be asked.
std::optional<CautionAnswer> DecideCaution(const ScripMaster& master, const CautionOrder& order);
// The question for one order.
std::string CautionQuestion(const CautionOrder& order);

// What the user may answer to a basket's question.
enum class BasketAnswer { confirm, refuse, leaveOut };

// The orders of one basket, between its two passes.
class BasketCaution {
public:
    void Clear();
    void Add(const ScripMaster& master, const CautionOrder& order, int row);

    std::size_t CautionaryRows() const;
    // The question for the basket; empty when no row needs one.
    std::string Question() const;
    // 1 when the user confirmed, else 0.
    int Answer(BasketAnswer answer);
    // For the second pass: 1 takes the basket's answer as flag; 2 goes without a flag; 0 leaves the row out,
    // also when the first pass did not name it.
    int StateOf(std::string_view tradingSymbol, std::string_view exchange, int row) const;

private:
    struct Row {
        std::string tradingSymbol, exchange;
        bool cautionary;
    };

    std::map<int, Row> m_rows;
    bool m_leaveOut = false;
};

} // namespace vesk
