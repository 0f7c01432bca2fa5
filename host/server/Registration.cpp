#include "host/server/Registration.h"

#include "host/server/schedule/Schedule.h"

namespace vesk {
namespace {

constexpr std::string_view kHead = "{\"registration\":";
constexpr std::string_view kProgress = ",\"progress\":";
constexpr std::string_view kChanges = ",\"changes\":";
constexpr std::string_view kOrdered = ",\"ordered\":";

// Fields of the order that a change makes otherwise.
constexpr std::uint32_t kChangeable[] = {tag::amountOrQuantity, tag::totalPeriod};

// As many as a terminal may have under way for one registration.
constexpr std::uint32_t kChangesKept = 4;
// Of the latest of them.
constexpr std::uint32_t kOriginContents = 4, kOriginAt = 5;

} // namespace

std::string Registration::Json() const {
    std::string json(kHead);
    AppendJson(json);
    if (progress != PlanProgress{}) {
        json += kProgress;
        progress.Fields().AppendJson(json);
    }
    if (changes != FieldRecord{}) {
        json += kChanges;
        changes.AppendJson(json);
    }
    if (ordered != FieldRecord{}) {
        json += kOrdered;
        ordered.AppendJson(json);
    }
    json += '}';
    return json;
}

std::optional<Registration> Registration::FromJson(std::string_view text) {
    Registration registration;
    RecordReader reader(text);
    if (!reader.Take(kHead) || !reader.TakeFields(registration)) return std::nullopt;
    if (reader.Take(kProgress)) {
        FieldRecord fields;
        if (!reader.TakeFields(fields)) return std::nullopt;
        const auto progress = PlanProgress::FromFields(fields);
        if (!progress) return std::nullopt;
        registration.progress = *progress;
    }
    if (reader.Take(kChanges) && !reader.TakeFields(registration.changes)) return std::nullopt;
    if (reader.Take(kOrdered) && !reader.TakeFields(registration.ordered)) return std::nullopt;
    if (!reader.Take('}') || !reader.AtEnd() || registration.Number().empty()) return std::nullopt;
    return registration;
}

bool Registration::WasChangedBy(std::string_view sentAs) const {
    for (std::uint32_t i = 0; i < kChangesKept && !sentAs.empty(); ++i)
        if (changes.Text(i) == sentAs) return true;
    return false;
}

void Registration::RememberChange(const ChangeOrigin& origin) {
    if (origin.sentAs.empty()) return;
    for (std::uint32_t i = kChangesKept - 1; i > 0; --i)
        if (!changes.Text(i - 1).empty()) changes.Set(i, changes.Text(i - 1));
    changes.Set(0, origin.sentAs);
    changes.Set(kOriginContents, std::to_string(origin.contents.value_or(0)));
    changes.Set(kOriginAt, std::to_string(origin.at));
}

ChangeOrigin Registration::LatestChange() const {
    ChangeOrigin origin{Text(tag::loginId), changes.Text(0)};
    if (const auto contents = WholeNumber(changes.Text(kOriginContents)))
        origin.contents = static_cast<std::uint32_t>(*contents);
    origin.at = WholeNumber(changes.Text(kOriginAt)).value_or(0);
    return origin;
}

std::string_view Registration::Ordered(std::uint32_t tag) const {
    const std::string_view text = ordered.Text(tag);
    return text.empty() ? Text(tag) : text;
}

void Registration::KeepOrdered(const Registration& before) {
    // Older journals have a cancellation's identifier where the order's was.
    if (Text(tag::orderId) != before.Text(tag::orderId)) {
        changes.Set(tag::orderId, Text(tag::orderId));
        Set(tag::orderId, before.Text(tag::orderId));
    }
    ordered = before.ordered;
    for (const std::uint32_t tag : kChangeable)
        if (Text(tag) != before.Text(tag) && ordered.Text(tag).empty()) ordered.Set(tag, before.Text(tag));
}

std::optional<InstalmentPlan> Registration::Plan() const {
    const auto start = ParseRecordDate(Text(tag::startDate));
    const auto periods = WholeNumber(Text(tag::totalPeriod));
    if (!start || !periods || *periods > kMostPeriods) return std::nullopt;
    return InstalmentPlan{*start, Text(tag::frequency), static_cast<int>(*periods)};
}

} // namespace vesk
