// The requests that are answered with rows: which they are, and the rows as they are asked for.
//
// Thread: the server's. Lifetime: what the constructor takes outlives it.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "host/server/Clockwork.h"
#include "host/server/RowQuery.h"

#include <optional>
#include <string>
#include <string_view>

namespace vesk {

// The registration that the request names.
std::optional<ServerRefusal> FindNamed(const Registrations& registrations, void* request,
                                       const Registration*& found);

class Queries {
public:
    Queries(const Registrations& registrations, const Clockwork& clock)
        : m_registrations(registrations), m_clock(clock) {}

    static bool Has(std::string_view request);
    // Fills `query`, or tells why it is refused. The name is one that it has.
    std::optional<ServerRefusal> Start(std::string_view name, void* request, const UserIdentity& user,
                                       RowQuery& query) const;
    // The next row's bytes, with the record as it is now. Empty when the registrations looked at in this call
    // gave none: it looks at a few hundred at most.
    std::string NextRow(RowQuery& query);

private:
    std::optional<ServerRefusal> StartExecutions(const ExecutionQuery& kind, void* request,
                                                 const UserIdentity& user, RowQuery& query) const;
    std::string NextRegistration(RowQuery& query);
    std::string NextExecution(RowQuery& query);

    const Registrations& m_registrations;
    const Clockwork& m_clock;
    qmx::MessageWriter m_writer;
};

} // namespace vesk
