#include "host/server/ServerConfig.h"

#include "host/server/Refusal.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace vesk {
namespace {

using Json = nlohmann::json;

// A wrong setting; `key` is where in the text to point.
struct WrongSetting : std::runtime_error {
    WrongSetting(std::string where, const std::string& what)
        : std::runtime_error(what), key(std::move(where)) {}
    std::string key;
};

std::size_t LineAt(std::string_view text, std::size_t position) {
    const std::string_view before = text.substr(0, std::min(position, text.size()));
    return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

std::string At(std::string_view name, std::size_t line, std::string_view what) {
    return std::string(name) + ":" + std::to_string(line) + ": " + std::string(what);
}

void CheckMembers(const Json& object, const std::string& key, std::initializer_list<std::string_view> known) {
    if (!object.is_object()) throw WrongSetting(key, "\"" + key + "\" must be an object");
    for (const auto& [member, value] : object.items())
        if (std::find(known.begin(), known.end(), member) == known.end())
            throw WrongSetting(member, "unknown setting \"" + member + "\"");
}

// Leaves `out` alone when the member is missing.
template <typename T>
void Read(const Json& object, const char* member, const char* expected, bool (Json::*isWanted)() const noexcept,
          T& out) {
    const auto found = object.find(member);
    if (found == object.end()) return;
    if (!((*found).*isWanted)())
        throw WrongSetting(member, "\"" + std::string(member) + "\" must be " + expected);
    out = found->template get<T>();
}

OperationModeShape ShapeNamed(const std::string& name) {
    static const std::map<std::string_view, OperationModeShape> shapes{
        {"list", OperationModeShape::list},
        {"listThenZero", OperationModeShape::listThenZero},
        {"bare", OperationModeShape::bare},
    };
    const auto found = shapes.find(name);
    if (found == shapes.end())
        throw WrongSetting("shape", "\"shape\" must be \"list\", \"listThenZero\" or \"bare\"");
    return found->second;
}

Frequency ReadFrequency(const Json& row) {
    CheckMembers(row, "frequencies", {"name", "minimum"});
    Frequency frequency;
    Read(row, "name", "a text", &Json::is_string, frequency.name);
    if (frequency.name.empty()) throw WrongSetting("frequencies", "a frequency needs a \"name\"");
    if (row.contains("minimum")) {
        std::int64_t minimum = 0;
        Read(row, "minimum", "a whole number", &Json::is_number_integer, minimum);
        if (minimum < 0 || minimum > 100'000)
            throw WrongSetting("minimum", "\"minimum\" must lie between 0 and 100000");
        frequency.minimumPeriods = static_cast<int>(minimum);
    }
    return frequency;
}

void ReadOperationMode(const Json& mode, ServerConfig& config) {
    CheckMembers(mode, "operationMode", {"shape", "frequencies"});
    std::string shape = "list";
    Read(mode, "shape", "a text", &Json::is_string, shape);
    config.operationModeShape = ShapeNamed(shape);
    const auto rows = mode.find("frequencies");
    if (rows == mode.end()) return;
    if (!rows->is_array()) throw WrongSetting("frequencies", "\"frequencies\" must be a list");
    config.frequencies.clear();
    for (const Json& row : *rows) {
        Frequency frequency = ReadFrequency(row);
        // The answer pairs names and minimums by position, so a gap cannot be sent.
        if (frequency.minimumPeriods && !config.frequencies.empty()
            && !config.frequencies.back().minimumPeriods)
            throw WrongSetting("frequencies", "only the last frequencies may lack a \"minimum\"");
        config.frequencies.push_back(std::move(frequency));
    }
}

RequestFault ReadFault(const Json& row, const std::string& request) {
    CheckMembers(row, request, {"error", "delayMs", "silent", "garbage", "disconnect"});
    RequestFault fault;
    if (std::string code; row.contains("error")) {
        Read(row, "error", "a text", &Json::is_string, code);
        if (code.empty() || code.size() > kLongestText)
            throw WrongSetting("error",
                               "\"error\" must be a code of 1 to " + std::to_string(kLongestText) + " bytes");
        fault.errorCode = code;
    }
    Read(row, "delayMs", "a whole number of milliseconds", &Json::is_number_unsigned, fault.delayMs);
    if (fault.delayMs < 0 || fault.delayMs > kMostDelayMs)
        throw WrongSetting("delayMs", "\"delayMs\" must not exceed a day");
    Read(row, "silent", "true or false", &Json::is_boolean, fault.silent);
    Read(row, "garbage", "true or false", &Json::is_boolean, fault.garbage);
    std::int64_t times = 0;
    Read(row, "disconnect", "a whole number", &Json::is_number_unsigned, times);
    if (times < 0 || times > kMostDisconnects)
        throw WrongSetting("disconnect", "\"disconnect\" must not exceed " + std::to_string(kMostDisconnects));
    fault.disconnects = static_cast<int>(times);
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
        throw WrongSetting("fills", "\"rejected\" and \"partial\" must not exceed 100 together");
    fills.rejected = static_cast<int>(rejected);
    fills.partial = static_cast<int>(partial);
}

ServerConfig ReadConfig(const Json& root) {
    ServerConfig config;
    CheckMembers(root, "configuration", {"operationMode", "faults", "fills"});
    if (const auto mode = root.find("operationMode"); mode != root.end()) ReadOperationMode(*mode, config);
    if (const auto faults = root.find("faults"); faults != root.end()) {
        if (!faults->is_object()) throw WrongSetting("faults", "\"faults\" must be an object");
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

bool ServerConfig::TakeDisconnect(std::string_view request) {
    const auto found = RowFor(request, faults);
    if (found == faults.end() || found->second.disconnects == 0) return false;
    --found->second.disconnects;
    return true;
}

ConfigResult ParseServerConfig(std::string_view text, std::string_view name) {
    try {
        return {ReadConfig(Json::parse(text)), {}};
    } catch (const Json::parse_error& fault) {
        return {std::nullopt, At(name, LineAt(text, fault.byte ? fault.byte - 1 : 0), "not valid JSON")};
    } catch (const Json::out_of_range&) {
        return {std::nullopt, std::string(name) + ": a number is too large"};
    } catch (const WrongSetting& fault) {
        const std::size_t position = text.find("\"" + fault.key + "\"");
        return {std::nullopt, At(name, position == text.npos ? 1 : LineAt(text, position), fault.what())};
    }
}

ConfigResult LoadServerConfig(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return {std::nullopt, path.string() + ": cannot be opened"};
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad()) return {std::nullopt, path.string() + ": cannot be read"};
    return ParseServerConfig(text, path.string());
}

} // namespace vesk
