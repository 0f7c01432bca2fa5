// Everything that there is to know of a basket before it is placed: what cannot be placed, what is doubtful,
// and what the orders come to. It is about the rows that were not sent, and the rejected lines.
#pragma once

#include "plugin/basket/BasketHistory.h"
#include "plugin/basket/DeskLimits.h"
#include "plugin/controls/Lists.h"
#include "plugin/messaging/Session.h"
#include "plugin/record/OrderLedger.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace planfold {

enum class ReviewKind : std::uint8_t { fault, warning, note, total, count };

struct ReviewLine {
    ReviewKind kind;
    std::string what;
    std::string of{};
    std::size_t rows = 1;
    std::int64_t amountPaise = 0; // of those by amount
    std::int64_t quantity = 0;    // of those by quantity
};

enum class ReviewField : std::uint8_t { kind, what, of, rows, amount, quantity };
inline constexpr ListColumn<ReviewField> kReviewColumns[] = {
    {"Kind", 60, ReviewField::kind},
    {"Finding", 260, ReviewField::what},
    {"Of", 230, ReviewField::of},
    {"Orders", 60, ReviewField::rows, ValueType::number, Align::right},
    {"Amount", 130, ReviewField::amount, ValueType::text, Align::right},
    {"Quantity", 80, ReviewField::quantity, ValueType::number, Align::right},
};
std::string ReviewText(const ReviewLine& line, ReviewField field);

// What is known beside the orders; functions may be empty.
struct ReviewFacts {
    ClosedDays closed{};
    std::function<bool(const RecordTexts&)> isLike{};    // one before
    std::function<bool(const std::string&)> isUnknown{}; // a client
};
// The session's; the host is asked about the clients.
ReviewFacts FactsOf(Pass pass, Session& session);

// The faults come first, then warnings, notes and totals.
std::vector<ReviewLine> ReviewBasket(const BasketRows& rows, const std::vector<RecordId>& records,
                                     const RejectedLines& rejected, DeskLimits limits,
                                     const ReviewFacts& facts);

} // namespace planfold
