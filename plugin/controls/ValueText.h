// The text of an amount or a quantity while it is typed.
#pragma once

#include <string>
#include <string_view>

namespace planfold {

// Whether a typed character may reach the edit: one of `allowed`, or the control code of backspace, copy,
// paste or cut. An empty `allowed` lets everything through.
bool MayBeTyped(char32_t typed, std::string_view allowed);

// The digits and the first "." of the text; everything else is dropped.
std::string CleanValueText(std::string_view text);

} // namespace planfold
