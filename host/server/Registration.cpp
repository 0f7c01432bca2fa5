#include "host/server/Registration.h"

namespace vesk {

std::string Registration::Json() const {
    std::string json = "{\"registration\":";
    AppendJson(json);
    json += '}';
    return json;
}

std::optional<Registration> Registration::FromJson(std::string_view text) {
    RecordReader reader(text);
    Registration registration;
    if (!reader.Take("{\"registration\":") || !reader.TakeFields(registration) || !reader.Take("}")
        || !reader.AtEnd() || registration.Number().empty())
        return std::nullopt;
    return registration;
}

} // namespace vesk
