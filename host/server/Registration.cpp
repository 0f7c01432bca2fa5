#include "host/server/Registration.h"

namespace vesk {
namespace {

constexpr std::string_view kRecordKind = "registration";

} // namespace

std::string Registration::Json() const {
    return JsonAs(kRecordKind);
}

std::optional<Registration> Registration::FromJson(std::string_view text) {
    Registration registration;
    if (!RecordReader(text).TakeAll(kRecordKind, registration) || registration.Number().empty())
        return std::nullopt;
    return registration;
}

} // namespace vesk
