// Who is logged in on the connection that a request came by.
//
// Thread: any; plain values.
#pragma once

#include "sdk/Tags.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace vesk {

struct UserIdentity {
    std::string loginId;
    std::string peerIdA;
    std::string peerIdB;
};

// Fields by which a registration belongs to somebody.
struct IdentityField {
    tag::Tag tag;
    std::string UserIdentity::*text;
};
inline constexpr IdentityField kIdentityFields[] = {
    {tag::loginId, &UserIdentity::loginId},
    {tag::peerIdA, &UserIdentity::peerIdA},
    {tag::peerIdB, &UserIdentity::peerIdB},
};

// Whether the field names somebody, and another than the user.
inline bool NamesAnother(tag::Tag tag, std::string_view text, const UserIdentity& user) {
    const auto* field = std::ranges::find(kIdentityFields, tag, &IdentityField::tag);
    return field != std::end(kIdentityFields) && !text.empty() && text != user.*field->text;
}

} // namespace vesk
