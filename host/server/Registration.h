// One SIP registration as the server holds it.
//
// Thread: any; plain values.
#pragma once

#include "host/server/ChangeMemory.h"
#include "host/server/journal/FieldRecord.h"
#include "host/server/schedule/Instalments.h"

#include <optional>
#include <string>
#include <string_view>

namespace vesk {

inline constexpr std::string_view kStatusActive = "active";
inline constexpr std::string_view kStatusPaused = "Paused";
inline constexpr std::string_view kStatusCancelled = "cancelled";
inline constexpr std::string_view kStatusExpired = "expired";

inline constexpr std::string_view kNumberPrefix = "SIP";

// A plan that is longer is refused.
inline constexpr std::int64_t kMostPeriods = 10'000;

// The stream on which changes of registrations are told.
inline constexpr std::string_view kStreamName = "PLANFOLD";

class Registration : public FieldRecord {
public:
    std::string_view Number() const { return Text(tag::registrationNumber); }

    // The journal's form and back; nothing when the text is not a record with a registration number.
    std::string Json() const;
    static std::optional<Registration> FromJson(std::string_view text);
    bool operator==(const Registration&) const = default;

    // Nothing when the record does not tell. It points into this record.
    std::optional<InstalmentPlan> Plan() const;

    // Whether a request of this name made one of the latest changes.
    bool WasChangedBy(std::string_view sentAs) const;
    // A change without a name is not remembered: nobody can send it again.
    void RememberChange(const ChangeOrigin& origin);
    // Of the latest change that is remembered. It points into this record.
    ChangeOrigin LatestChange() const;

    // What the order that registered it had in this field, or in tag::requestName the name of its request.
    std::string_view Ordered(std::uint32_t tag) const;
    // Takes over what the order had, from the record that this one takes the place of.
    void KeepOrdered(const Registration& before);

    // The server's own, and in no message.
    PlanProgress progress{};
    // The names of the requests that made the latest ones, the last in front, what that asked for and when it
    // came, and a cancellation's identifier.
    FieldRecord changes{};
    FieldRecord ordered{}; // the name of the order's request, and what changes have made otherwise since
};

} // namespace vesk
