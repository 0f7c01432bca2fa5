#include "host/server/ServerConfig.h"

#include "host/files/Json.h"
#include "host/server/ServerRefusal.h"

#include <algorithm>
#include <initializer_list>
#include <stdexcept>

namespace vesk {
namespace {

using Json = nlohmann::json;

// A wrong setting, and the value to point at.
struct WrongSetting : std::runtime_error {
    WrongSetting(const Json& wrong, const std::string& what) : std::runtime_error(what), value(&wrong) {}
    const Json* value;
};

void CheckMembers(const Json& object, const std::string& key, std::initializer_list<std::string_view> known) {
    if (!object.is_object()) throw WrongSetting(object, "\"" + key + "\" must be an object");
    for (const auto& [member, value] : object.items())
        if (std::find(known.begin(), known.end(), member) == known.end())
            throw WrongSetting(value, "unknown setting \"" + member + "\"");
}

// Leaves `out` alone when the member is missing. Where to point at when its value does not do.
template <typename T>
const Json& Read(const Json& object, const char* member, const char* expected,
                 bool (Json::*isWanted)() const noexcept, T& out) {
    const auto found = object.find(member);
    if (found == object.end()) return object;
    if (!((*found).*isWanted)())
        throw WrongSetting(*found, "\"" + std::string(member) + "\" must be " + expected);
    out = found->template get<T>();
    return *found;
}

OperationModeShape ShapeNamed(const std::string& name, const Json& value) {
    static const std::map<std::string_view, OperationModeShape> shapes{
        {"list", OperationModeShape::list},
        {"listThenZero", OperationModeShape::listThenZero},
        {"bare", OperationModeShape::bare},
    };
    const auto found = shapes.find(name);
    if (found == shapes.end())
        throw WrongSetting(value, "\"shape\" must be \"list\", \"listThenZero\" or \"bare\"");
    return found->second;
}

Frequency ReadFrequency(const Json& row) {
    CheckMembers(row, "frequencies", {"name", "minimum"});
    Frequency frequency;
    Read(row, "name", "a text", &Json::is_string, frequency.name);
    if (frequency.name.empty()) throw WrongSetting(row, "a frequency needs a \"name\"");
    if (row.contains("minimum")) {
        std::int64_t minimum = 0;
        const Json& value = Read(row, "minimum", "a whole number", &Json::is_number_integer, minimum);
        if (minimum < 0 || minimum > 100'000)
            throw WrongSetting(value, "\"minimum\" must lie between 0 and 100000");
        frequency.minimumPeriods = static_cast<int>(minimum);
    }
    return frequency;
}

void ReadOperationMode(const Json& mode, ServerConfig& config) {
    CheckMembers(mode, "operationMode", {"shape", "frequencies"});
    std::string shape = "list";
    const Json& shapeValue = Read(mode, "shape", "a text", &Json::is_string, shape);
    config.operationModeShape = ShapeNamed(shape, shapeValue);
    const auto rows = mode.find("frequencies");
    if (rows == mode.end()) return;
    if (!rows->is_array()) throw WrongSetting(*rows, "\"frequencies\" must be a list");
    config.frequencies.clear();
    for (const Json& row : *rows) {
        Frequency frequency = ReadFrequency(row);
        // The answer pairs names and minimums by position, so a gap cannot be sent.
        if (frequency.minimumPeriods && !config.frequencies.empty()
            && !config.frequencies.back().minimumPeriods)
            throw WrongSetting(row, "only the last frequencies may lack a \"minimum\"");
        config.frequencies.push_back(std::move(frequency));
    }
}

int ReadTimes(const Json& row, const char* member) {
    std::int64_t times = 0;
    const Json& value = Read(row, member, "a whole number", &Json::is_number_unsigned, times);
    if (times < 0 || times > kMostDisconnects)
        throw WrongSetting(value, '"' + std::string(member) + "\" must not exceed "
                                      + std::to_string(kMostDisconnects));
    return static_cast<int>(times);
}

RequestFault ReadFault(const Json& row, const std::string& request) {
    CheckMembers(row, request,
                 {"error", "delayMs", "silent", "ignored", "garbage", "twice", "noSerial", "disconnect",
                  "disconnectBefore"});
    RequestFault fault;
    if (std::string code; row.contains("error")) {
        const Json& value = Read(row, "error", "a text", &Json::is_string, code);
        if (code.empty() || code.size() > kLongestText)
            throw WrongSetting(value,
                               "\"error\" must be a code of 1 to " + std::to_string(kLongestText) + " bytes");
        fault.errorCode = code;
    }
    const Json& delay =
        Read(row, "delayMs", "a whole number of milliseconds", &Json::is_number_unsigned, fault.delayMs);
    if (fault.delayMs < 0 || fault.delayMs > kMostDelayMs)
        throw WrongSetting(delay, "\"delayMs\" must not exceed a day");
    constexpr std::pair<const char*, bool RequestFault::*> switches[] = {
        {"silent", &RequestFault::silent},     {"ignored", &RequestFault::ignored},
        {"garbage", &RequestFault::garbage},   {"twice", &RequestFault::twice},
        {"noSerial", &RequestFault::noSerial},
    };
    for (const auto& [member, on] : switches)
        Read(row, member, "true or false", &Json::is_boolean, fault.*on);
    fault.disconnects = ReadTimes(row, "disconnect");
    fault.disconnectsBefore = ReadTimes(row, "disconnectBefore");
    return fault;
}

void ReadFills(const Json& root, FillRates& fills) {
    CheckMembers(root, "fills", {"rejected", "partial", "seed"});
    const char* expected = "a whole number";
    // Wider than they are kept: what is too large for that is noticed.
    std::int64_t rejected = fills.rejected, partial = fills.partial;
    Read(root, "rejected", expected, &Json::is_number_unsigned, rejected);
    Read(root, "partial", expected, &Json::is_number_unsigned, partial);
    Read(root, "seed", expected, &Json::is_number_unsigned, fills.seed);
    constexpr int percent = 100;
    if (rejected < 0 || partial < 0 || rejected > percent || partial > percent - rejected)
        throw WrongSetting(root, "\"rejected\" and \"partial\" must not exceed 100 together");
    fills.rejected = static_cast<int>(rejected);
    fills.partial = static_cast<int>(partial);
}

ServerConfig ReadConfig(const Json& root) {
    ServerConfig config;
    CheckMembers(root, "configuration", {"operationMode", "faults", "fills"});
    if (const auto mode = root.find("operationMode"); mode != root.end()) ReadOperationMode(*mode, config);
    if (const auto faults = root.find("faults"); faults != root.end()) {
        if (!faults->is_object()) throw WrongSetting(*faults, "\"faults\" must be an object");
        for (const auto& [request, row] : faults->items())
            config.faults.emplace(request, ReadFault(row, request));
    }
    if (const auto fills = root.find("fills"); fills != root.end()) ReadFills(*fills, config.fills);
    return config;
}

auto RowFor(std::string_view request, auto& faults) {
    const auto found = faults.find(request);
    return found != faults.end() ? found : faults.find(std::string_view("*"));
}

} // namespace

const RequestFault& ServerConfig::FaultFor(std::string_view request) const {
    static const RequestFault none;
    const auto found = RowFor(request, faults);
    return found == faults.end() ? none : found->second;
}

bool ServerConfig::TakeDisconnect(std::string_view request, int RequestFault::*left) {
    const auto found = RowFor(request, faults);
    if (found == faults.end() || found->second.*left == 0) return false;
    --(found->second.*left);
    return true;
}

ConfigResult ParseServerConfig(std::string_view text, std::string_view name) {
    const Loaded<JsonObject> read = ParseJsonObject(text, name);
    if (!read) return {std::nullopt, read.Fault().Text()};
    try {
        return {ReadConfig(read.Value().Root()), {}};
    } catch (const WrongSetting& fault) {
        const std::size_t line = read.Value().LineOf(*fault.value);
        return {std::nullopt, FileFault{std::string(FileNameOf(name)), line, fault.what()}.Text()};
    }
}

ConfigResult LoadServerConfig(const std::string& path) {
    const Loaded<std::string> text = ReadTextFile(path);
    if (!text) return {std::nullopt, text.Fault().Text()};
    return ParseServerConfig(text.Value(), path);
}

} // namespace vesk
