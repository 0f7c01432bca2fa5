#include "plugin/changes/ChangeSet.h"

#include "plugin/base/Text.h"

#include <algorithm>
#include <vector>

namespace planfold {

std::string QuestionOf(const ChangeSet& set, std::span<const std::size_t> changes) {
    std::string text = Format("Send %zu modification%s: ", changes.size(), changes.size() == 1 ? "" : "s")
                       + set.Difference(changes);
    const auto periods = std::ranges::count_if(
        changes, [&](std::size_t change) { return set.Changes()[change].ChangesPeriods(); });
    if (periods) text += Format("\n%lld change the number of periods.", static_cast<long long>(periods));
    if (const std::size_t refused = set.Refused())
        text += Format("\n%zu more are not possible; the list says why.", refused);
    if (!set.Note().empty()) text += "\n" + set.Note();
    return text + "\nProceed?";
}

std::string NoticeOf(const ChangeSet* set) {
    if (!set)
        return "Load a file that \"Export for Changes...\" wrote and a spreadsheet has changed, or step up the "
               "amounts of the rows that are selected in the book.";
    if (!set->IsRead()) return "Reading...";
    if (!set->Fault().empty()) return set->Fault();
    return set->Changes().empty() ? "Nothing would change." : "";
}

std::array<std::string, 3> StatusOf(const ChangeSet* set) {
    if (!set || !set->IsRead() || !set->Fault().empty()) return {};
    const std::vector<std::size_t> sendable = set->Sendable();
    std::array<std::size_t, static_cast<std::size_t>(OrderState::count)> states{};
    for (std::size_t i = 0; i < set->Changes().size(); ++i)
        if (set->Result(i).isTried) ++states[static_cast<std::size_t>(set->Result(i).state)];
    const auto of = [&](OrderState state) { return states[static_cast<std::size_t>(state)]; };
    std::string became;
    const auto add = [&](std::size_t count, const char* word) {
        if (count) became += (became.empty() ? "" : ", ") + Format("%zu ", count) + word;
    };
    add(of(OrderState::done), "modified");
    add(of(OrderState::refused), "refused");
    add(of(OrderState::inDoubt) + of(OrderState::absent), "in doubt");
    add(of(OrderState::sent), "waiting");
    add(set->Refused(), "not possible");
    add(set->Unchanged(), "unchanged");
    return {Format("%zu to be sent", sendable.size())
                + (sendable.empty() ? "" : ": " + set->Difference(sendable)),
            became, set->Note()};
}

} // namespace planfold
