// A query whose answer is one message a row. There may be a million of them, so nothing is made in advance: the
// query remembers how far it is, and the server makes a row when its turn comes.
//
// Thread: any; plain values.
#pragma once

#include "host/server/ExchangeOrder.h"
#include "host/server/Registration.h"
#include "host/server/ServerRefusal.h"
#include "host/server/UserIdentity.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace vesk {

// A query for what became of one registration.
struct ExecutionQuery {
    std::string_view request;
    std::vector<FieldRecord> ExecutionHistory::*rows;
    std::uint32_t closingTag; // of the message behind the last row
    std::string_view closingText;
};
// Null when the request is none.
const ExecutionQuery* FindExecutionQuery(std::string_view request);

struct RowQuery {
    struct Days {
        std::chrono::sys_days first;
        std::chrono::sys_days last;
    };

    bool Wants(const Registration& registration) const;

    std::string request{};         // echoed
    std::uint32_t ownerTag = 0;    // the field by which a registration belongs to who asks,
    std::string owner{};           // and its text
    std::optional<Days> entered{}; // the days of registration; absent: any
    bool isList = false;           // the rows are marked as those of a list
    // Instead of registrations: what became of the one with this number.
    const ExecutionQuery* executions = nullptr;
    std::string number{};
    std::size_t next = 0; // the row to look at next
    std::size_t end = 0;  // those that came later are told by the stream
    bool hasRows = false; // until now
    bool isDone = false;  // nothing more is to be asked for
};

// Whether the registration is the login's own, or among those that its history query gives.
bool MaySee(const UserIdentity& user, const Registration& registration);

// Both fill `query`, except where it is and ends, or tell why it is refused.
// "om_get_sip_orders": the login's own, of any date.
std::optional<ServerRefusal> ReadListQuery(void* request, const UserIdentity& user, RowQuery& query);
// "qry_eq_sip": the firm's, or the login's where the connection has no firm, by date of registration.
std::optional<ServerRefusal> ReadHistoryQuery(void* request, const UserIdentity& user, RowQuery& query);

} // namespace vesk
