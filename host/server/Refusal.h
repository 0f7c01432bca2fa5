// Why the server does not serve a request: a code for programs, a text for the user.
//
// Thread: any; plain values.
#pragma once

#include <string>
#include <string_view>

namespace vesk {

struct Refusal {
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

// Longer texts are neither kept nor sent back: every answer has room for what it quotes.
inline constexpr std::size_t kLongestText = 255;

Refusal MissingField(std::string_view field);
Refusal WrongValue(std::string_view field, std::string_view text);
// Not who the request says he is, and not who the registration belongs to.
Refusal WrongUser();
Refusal OtherUser();
Refusal UnknownClient(std::string_view account);

} // namespace vesk
