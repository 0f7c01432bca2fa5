// One SIP registration as the server holds it: the wire texts of its record by tag.
//
// There may be a million, so all fields lie in one block of memory: tag, length and text after one another, in
// the order of the tags.
//
// Thread: any; plain values.
#pragma once

#include "host/connectvesk/QmxHost.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

// Tags of requests, answers and records.
enum Tag : std::uint32_t {
    kTagRequestName = 0,
    kTagToDate = 79,
    kTagToken = 10100,
    kTagFrequency = 10012,
    kTagStatus = 10303,
    kTagCancelledDate = 10320,
    kTagNextExecution = 10615,
    kTagValidity = 12005,
    kTagSide = 12003,
    kTagOrderType = 12008,
    kTagUserText = 20008,
    kTagUser = 31003,
    kTagCancelledNumber = 32760,
    kTagErrorCode = 32766,
    kTagAnswerName = 32767,
    kTagStartDate = 49165,
    kTagCancelledBy = 49281,
    kTagAmountOrQuantity = 53063,
    kTagCautionary = 53405,
    kTagAccount = 54001,
    kTagFirm = 54056,
    kTagMinimumPeriods = 54101,
    kTagInvestType = 54152,
    kTagRequestIdentifier = 54158,
    kTagStream = 54211,
    kTagRegistrationDate = 54270,
    kTagListRow = 54324,
    kTagExchange = 63001,
    kTagTradingSymbol = 63100,
    kTagPeriods = 63415,
    kTagOperationMode = 63715,
    kTagProduct = 64030,
    kTagBranch = 64053,
    kTagBroker = 64056,
    kTagOrderSource = 64756,
    kTagRegistrationNumber = 64804,
    kTagEndDate = 64987,
};

inline constexpr std::string_view kStatusActive = "active";
inline constexpr std::string_view kStatusPaused = "Paused";
inline constexpr std::string_view kStatusCancelled = "cancelled";
inline constexpr std::string_view kStatusExpired = "expired";

// The stream on which changes of registrations are told.
inline constexpr std::string_view kStreamName = "PLANFOLD";

class Registration {
public:
    // Empty when the record has no such field.
    std::string_view Text(std::uint32_t tag) const;
    void Set(std::uint32_t tag, std::string_view text);
    std::string_view Number() const { return Text(kTagRegistrationNumber); }

    // All fields, behind those that the message already has.
    void AddTo(qmx::MessageWriter& writer) const;
    // Room for an ordinary record, so that setting its fields takes no memory time and again.
    void Reserve() { m_fields.reserve(640); }
    // Gives back the memory that setting left over.
    void Shrink() { m_fields.shrink_to_fit(); }
    bool operator==(const Registration&) const = default;

    // The journal's form and back; nothing when the text is not a record with a registration number.
    std::string Json() const;
    static std::optional<Registration> FromJson(std::string_view text);

private:
    struct Field {
        std::uint32_t tag;
        std::string_view text;
    };
    // `at` is where a field stands.
    Field FieldAt(std::size_t at) const;
    static std::size_t SizeOf(const Field& field) { return kHeadSize + field.text.size(); }
    // Where the field stands or belongs.
    std::size_t PlaceOf(std::uint32_t tag) const;

    static constexpr std::size_t kHeadSize = 8;

    std::string m_fields;
};

} // namespace vesk
