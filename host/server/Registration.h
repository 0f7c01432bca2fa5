// One SIP registration as the server holds it.
//
// Thread: any; plain values.
#pragma once

#include "host/server/FieldRecord.h"

#include <optional>
#include <string>
#include <string_view>

namespace vesk {

inline constexpr std::string_view kStatusActive = "active";
inline constexpr std::string_view kStatusPaused = "Paused";
inline constexpr std::string_view kStatusCancelled = "cancelled";
inline constexpr std::string_view kStatusExpired = "expired";

inline constexpr std::string_view kNumberPrefix = "SIP";

// The stream on which changes of registrations are told.
inline constexpr std::string_view kStreamName = "PLANFOLD";

class Registration : public FieldRecord {
public:
    std::string_view Number() const { return Text(kTagRegistrationNumber); }

    // The journal's form and back; nothing when the text is not a record with a registration number.
    std::string Json() const;
    static std::optional<Registration> FromJson(std::string_view text);
};

} // namespace vesk
