// Why the server does not serve a request: a code for programs, a text for the user.
//
// Thread: any; plain values.
#pragma once

#include <string>
#include <string_view>

namespace vesk {

struct ServerRefusal {
    std::string_view code;
    std::string text;
};

inline constexpr std::string_view kCodeUnknownRequest = "100";
inline constexpr std::string_view kCodeMissingField = "101";
inline constexpr std::string_view kCodeWrongValue = "102";
inline constexpr std::string_view kCodeFrequency = "103";
inline constexpr std::string_view kCodePeriods = "104";
inline constexpr std::string_view kCodeUser = "105";
inline constexpr std::string_view kCodeJournal = "106";
inline constexpr std::string_view kCodeUnknownNumber = "107";
inline constexpr std::string_view kCodeStatus = "108";
inline constexpr std::string_view kCodeUnknownClient = "109";
inline constexpr std::string_view kCodeOtherOrder = "110";
inline constexpr std::string_view kCodeWithdrawn = "111"; // the terminal's own: the server never had it

// Longer texts are neither kept nor sent back: every answer has room for what it quotes.
inline constexpr std::size_t kLongestText = 255;

inline ServerRefusal MissingField(std::string_view field) {
    return {kCodeMissingField, "The " + std::string(field) + " is missing"};
}

inline ServerRefusal WrongValue(std::string_view field, std::string_view text) {
    if (text.size() > kLongestText) return {kCodeWrongValue, "The " + std::string(field) + " is too long"};
    return {kCodeWrongValue, "The " + std::string(field) + " cannot be \"" + std::string(text) + "\""};
}

// The first is for a request that names another user than is logged in, the second for another's registration.
inline ServerRefusal WrongUser() {
    return {kCodeUser, "The user is not the one who is logged in"};
}

inline ServerRefusal OtherUser() {
    return {kCodeUser, "The registration is another user's"};
}

inline ServerRefusal UnknownClient(std::string_view account) {
    return {kCodeUnknownClient, "There is no client " + std::string(account)};
}

// For an order under the identifier, or the name, of one that was registered and asked for something else.
inline ServerRefusal OtherOrder(std::string_view number) {
    return {kCodeOtherOrder,
            "Another order was registered under this identifier. Registration No : " + std::string(number)};
}

// The same for a change.
inline ServerRefusal OtherChange() {
    return {kCodeOtherOrder, "Another change was made under this identifier"};
}

inline ServerRefusal Withdrawn() {
    return {kCodeWithdrawn, "Withdrawn by the user"};
}

} // namespace vesk
