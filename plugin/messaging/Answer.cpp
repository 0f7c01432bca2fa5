#include "plugin/messaging/Answer.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "sdk/Tags.h"

namespace planfold {

namespace {

// Counted text as a reader of zero-terminated text sees it.
std::string_view UpToZero(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

bool GetDatum(void* message, std::uint32_t tag, std::uint32_t index, std::string_view& value, int& status) {
    QmxDatum datum{};
    QmxError error{};
    if (qmx_get_data(message, tag, index, &datum, &error)) {
        value = datum.data ? UpToZero({datum.data, datum.length}) : std::string_view();
        status = kFieldRead;
        return true;
    }
    status = error.code == kQmxFieldAbsent ? kFieldNotPresent : kFieldUnreadable;
    return false;
}

} // namespace

bool GetFieldString(void* message, std::uint32_t tag, std::uint32_t index, std::string& text, int& status) {
    std::string_view value;
    const bool read = GetDatum(message, tag, index, value, status);
    text = value;
    return read;
}

bool GetFieldNumber(void* message, std::uint32_t tag, std::uint32_t index, std::int64_t& number, int& status) {
    constexpr std::size_t mostBytes = 32;
    std::string_view value;
    const bool read = GetDatum(message, tag, index, value, status);
    number = LeadingInteger(value.substr(0, mostBytes));
    return read;
}

std::string FieldText(void* message, std::uint32_t tag, std::uint32_t index) {
    std::string text;
    int status = kFieldRead;
    GetFieldString(message, tag, index, text, status);
    return text;
}

std::optional<std::string_view> FieldView(void* message, std::uint32_t tag) {
    std::string_view value;
    int status = kFieldRead;
    if (!GetDatum(message, tag, 0, value, status)) return std::nullopt;
    return value;
}

std::uint32_t FieldCount(void* message, std::uint32_t tag) {
    QmxField field{};
    QmxError error{};
    return qmx_get_field(message, tag, &field, &error) ? field.count : 0;
}

Answer::Answer(void* received)
    : message(received), request(FieldText(received, tag::echoedRequest)), hasError(false) {
    QmxField field{};
    QmxError error{};
    hasError = qmx_get_field(message, tag::errorCode, &field, &error) != 0;
    if (hasError) errorCode = FieldText(message, tag::errorCode);
}

void LogErrorAnswer(Pass pass, const Session& session, const Answer& answer) {
    session.Log(pass, Format("Error in response : %s . Error Code : %.*s", answer.request.c_str(),
                             static_cast<int>(answer.errorCode.size()), answer.errorCode.data()));
}

} // namespace planfold
