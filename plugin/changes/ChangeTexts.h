// What is said of a change set as a whole.
#pragma once

#include "plugin/changes/ChangeSet.h"

#include <array>
#include <span>
#include <string>

namespace planfold {

// Before these of its changes are sent.
std::string QuestionOf(const ChangeSet& set, std::span<const std::size_t> changes);
// For an empty list; there may be no set.
std::string NoticeOf(const ChangeSet* set);
// What can be sent, what cannot or what became of it, and what else there is to say.
std::array<std::string, 3> StatusOf(const ChangeSet* set);

} // namespace planfold
