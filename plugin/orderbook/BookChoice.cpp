#include "plugin/orderbook/BookChoice.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>

namespace planfold {

namespace {

constexpr StatusRefusal kPauseRefusals[] = {
    {kPausedStatus, "Cannot pause - order is already paused", "already paused"},
    {"cancelled", "Cannot pause - order is cancelled", "cancelled"},
    {"expired", "Cannot pause - order is expired", "expired"},
};
constexpr char kNotPaused[] = "Cannot Resume - order is not paused";
constexpr StatusRefusal kResumeRefusals[] = {
    {"cancelled", kNotPaused, "cancelled"},
    {"expired", kNotPaused, "expired"},
    {{}, kNotPaused, "not paused"},
};

// What registrations of one side mean in a run of each.
struct SideTotal {
    std::int64_t paise = 0;
    std::int64_t shares = 0;

    void Add(const sOrderinfo& record) {
        const bool isByQuantity = record.Text(OrderField::investType) == "qty";
        std::string value(record.Text(isByQuantity ? OrderField::quantity : OrderField::amount));
        if (!isByQuantity) std::erase(value, '.');
        std::int64_t& sum = isByQuantity ? shares : paise;
        if (__builtin_add_overflow(sum, LeadingInteger(value), &sum))
            sum = std::numeric_limits<std::int64_t>::max();
    }
    std::string Text(const char* side) const {
        if (!paise && !shares) return {};
        std::string text = std::string("\n") + side + ": ";
        if (paise) text += FormatRupees(paise);
        if (shares) text += Format("%s%lld shares", paise ? " and " : "", static_cast<long long>(shares));
        return text + " per run.";
    }
};

// What many registrations mean, for the question before something is done with all of them.
struct Totals {
    std::set<std::string_view> clients;
    SideTotal buy, sell;

    void Add(const sOrderinfo& record) {
        clients.insert(record.Text(OrderField::account));
        (record.Text(OrderField::side) == "SWP" ? sell : buy).Add(record);
    }
    std::string Text() const {
        return Format("%zu client%s.", clients.size(), clients.size() == 1 ? "" : "s") + buy.Text("Buy (SIP)")
               + sell.Text("Sell (SWP)");
    }
};

// How many are left out for which reason.
struct LeftOut {
    std::map<std::string_view, std::size_t> byReason;

    std::string Text() const {
        std::string text;
        for (const auto& [reason, count] : byReason)
            text += Format("%s%zu ", text.empty() ? "" : ", ", count) + std::string(reason);
        return text.empty() ? text : "\nLeft out: " + text + ".";
    }
};

} // namespace

const StatusRefusal* RefusalTo(PauseOrResume which, std::string_view status) {
    const std::span<const StatusRefusal> rows =
        which == PauseOrResume::pause ? std::span<const StatusRefusal>(kPauseRefusals) : kResumeRefusals;
    if (which == PauseOrResume::resume && status == kPausedStatus) return nullptr;
    for (const StatusRefusal& row : rows)
        if (row.status == status || row.status.empty()) return &row;
    return nullptr;
}

BookChoice ChooseToChange(PauseOrResume which, const OrderCache& cache, std::span<const RecordId> chosen,
                          std::size_t gone, std::string_view user) {
    BookChoice choice;
    Totals totals;
    LeftOut leftOut;
    if (gone) leftOut.byReason["no longer in the book"] = gone;
    for (const RecordId id : chosen) {
        const sOrderinfo& record = cache[id];
        const std::string_view owner = record.Text(OrderField::loginId);
        const StatusRefusal* refusal = RefusalTo(which, record.Text(OrderField::sipStatus));
        const bool isAnothers = !owner.empty() && owner != user;
        if (isAnothers || refusal) {
            ++leftOut.byReason[isAnothers ? "of another user" : refusal->word];
            continue;
        }
        choice.records.push_back(id);
        totals.Add(record);
    }
    choice.totals = totals.Text();
    choice.leftOut = leftOut.Text();
    return choice;
}

} // namespace planfold
