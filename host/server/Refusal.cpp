#include "host/server/Refusal.h"

namespace vesk {

Refusal MissingField(std::string_view field) {
    return {kCodeMissingField, "The " + std::string(field) + " is missing"};
}

Refusal WrongValue(std::string_view field, std::string_view text) {
    if (text.size() > kLongestText) return {kCodeWrongValue, "The " + std::string(field) + " is too long"};
    return {kCodeWrongValue, "The " + std::string(field) + " cannot be \"" + std::string(text) + "\""};
}

Refusal WrongUser() {
    return {kCodeUser, "The user is not the one who is logged in"};
}

Refusal OtherUser() {
    return {kCodeUser, "The registration is another user's"};
}

Refusal UnknownClient(std::string_view account) {
    return {kCodeUnknownClient, "There is no client " + std::string(account)};
}

} // namespace vesk
