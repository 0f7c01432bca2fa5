// One registration as the book shows it: 27 texts in one block of memory, read and set by field. A record is
// empty where the server sent nothing.
#pragma once

#include "plugin/base/Text.h"
#include "plugin/messaging/Session.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace planfold {

enum class OrderField : std::uint8_t {
    loginId,
    exchange, // as shown ("NSE")
    tradingSymbol,
    product,
    side,      // "SIP" or "SWP"
    orderType, // "MARKET", or empty: the book names market orders only
    quantity,
    frequency,
    startDate,
    totalPeriod, // months; the server's own periods are installmentsRegistered
    nextExecutionDate,
    registrationNumber, // the key
    account,
    investType, // "value" or "qty"; not shown
    sipStatus,
    amount,     // rupees with two decimals
    orderId,    // not shown
    streamName, // not shown
    registrationDate,
    accountName, // the host's name for the client
    orderSource,
    installmentsRegistered,
    userText,
    cancelledDate,
    cancelledBy,
    endDate,
    token, // not shown
    count
};
inline constexpr std::size_t kOrderFieldCount = static_cast<std::size_t>(OrderField::count);

// What a message changes: a field without a value stays as it was.
using OrderChanges = ByField<OrderField, std::optional<std::string_view>>;

class sOrderinfo {
public:
    // Valid until the record is changed.
    std::string_view Text(OrderField field) const;
    std::string_view Number() const { return Text(OrderField::registrationNumber); }
    // Asks the memory for the texts ahead of their use.
    void Fetch() const;
    // The changes' characters must not be the record's own.
    void Apply(const OrderChanges& changes);

private:
    using Ends = std::array<std::uint32_t, kOrderFieldCount>; // of the texts, counted from the first one
    struct Head;
    struct Freed {
        void operator()(Head* block) const;
    };

    void MakeRoom(std::size_t length);

    std::unique_ptr<Head, Freed> m_block; // none while every text is empty
};

// Both words that mean it; exact, as everywhere.
inline bool IsCancelled(std::string_view sipStatus) {
    return sipStatus == "canceled" || sipStatus == "cancelled";
}

// Neither can be changed any more. "canceled" with one l is not among them.
inline bool HasEnded(std::string_view sipStatus) {
    return sipStatus == "cancelled" || sipStatus == "expired";
}

inline constexpr std::string_view kPausedStatus = "Paused";

// The host's name for the message's client; none when the message names no client or the host cannot tell.
std::optional<std::string> AskAccountName(Pass pass, const Session& session, void* message);

// Takes over each field whose tag the message has and leaves the others. `installments` tells which of its two
// fields the period belongs to; `accountName` is what was asked before.
void ReadOrderRow(void* message, bool installments, const std::optional<std::string>& accountName,
                  sOrderinfo& record);

} // namespace planfold
