#include "host/server/Registration.h"

#include "host/server/Schedule.h"

namespace vesk {
namespace {

constexpr std::string_view kHead = "{\"registration\":";
constexpr std::string_view kProgress = ",\"progress\":";

} // namespace

std::string Registration::Json() const {
    std::string json(kHead);
    AppendJson(json);
    if (progress != Progress{}) {
        json += kProgress;
        progress.Fields().AppendJson(json);
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
        const auto progress = Progress::FromFields(fields);
        if (!progress) return std::nullopt;
        registration.progress = *progress;
    }
    if (!reader.Take("}") || !reader.AtEnd() || registration.Number().empty()) return std::nullopt;
    return registration;
}

std::optional<InstalmentPlan> Registration::Plan() const {
    const auto start = ParseRecordDate(Text(kTagStartDate));
    const auto periods = WholeNumber(Text(kTagPeriods));
    if (!start || !periods || *periods > kMostPeriods) return std::nullopt;
    return InstalmentPlan{*start, Text(kTagFrequency), static_cast<int>(*periods)};
}

} // namespace vesk
