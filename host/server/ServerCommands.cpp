#include "host/server/ServerCommands.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

namespace vesk {
namespace {

constexpr std::string_view kOtherLogin = "DEALER02";
constexpr const char* kNoMarket = "There are no clients or no scrips to make orders of";
constexpr std::int64_t kMostDays = 50'000; // behind the end of the server's time
constexpr std::size_t kMostFilled = 1'000'000;
constexpr std::size_t kMostOrdersMade = 10'000; // of another session, or of one registration
constexpr std::size_t kMostFaults = 256;    // rows

UserIdentity OtherUser(const UserIdentity& user) {
    UserIdentity other = user;
    other.loginId = kOtherLogin;
    return other;
}

// One more than is of use, so that too many are noticed.
std::vector<std::string_view> WordsOf(std::string_view line, std::size_t most) {
    constexpr std::string_view blanks = " \t\r";
    std::vector<std::string_view> words;
    while (words.size() <= most) {
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty()) break;
        const std::string_view word = line.substr(0, line.find_first_of(blanks));
        words.push_back(word);
        line.remove_prefix(word.size());
    }
    return words;
}

std::string QuotedStart(std::string_view word) {
    return '"' + std::string(word.substr(0, kLongestText)) + '"';
}

Told Outcome(std::string fault, const std::string& done) {
    return fault.empty() ? Told{true, done} : Told{false, std::move(fault)};
}

// Nothing when the word is no number up to `most`; the complaint is then in `told`.
std::optional<std::size_t> ReadCount(std::string_view word, std::int64_t most, Told& told) {
    const auto number = WholeNumber(word);
    if (number && *number <= most) return static_cast<std::size_t>(*number);
    told.text = QuotedStart(word) + " is no whole number up to " + std::to_string(most);
    return std::nullopt;
}

// "2027-03-05"
std::optional<std::chrono::year_month_day> ReadDate(std::string_view word) {
    if (word.size() != 10 || word[4] != '-' || word[7] != '-') return std::nullopt;
    const auto year = WholeNumber(word.substr(0, 4));
    const auto month = WholeNumber(word.substr(5, 2));
    const auto day = WholeNumber(word.substr(8));
    if (!year || !month || !day) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    return date.ok() ? std::optional(date) : std::nullopt;
}

bool SetDelay(RequestFault& fault, std::string_view value) {
    fault.delayMs = WholeNumber(value).value_or(kMostDelayMs + 1);
    return fault.delayMs <= kMostDelayMs;
}
bool SetError(RequestFault& fault, std::string_view value) {
    fault.errorCode = value;
    return !value.empty() && value.size() <= kLongestText;
}
template <int RequestFault::*member>
bool SetTimes(RequestFault& fault, std::string_view value) {
    const auto times = value.empty() ? 1 : WholeNumber(value).value_or(0);
    fault.*member = static_cast<int>(std::min<std::int64_t>(times, kMostDisconnects));
    return fault.*member > 0;
}
template <bool RequestFault::*member>
bool SwitchOn(RequestFault& fault, std::string_view) {
    return fault.*member = true;
}

struct FaultKind {
    std::string_view name;
    std::string_view value;                                   // what it is; empty: there is none
    bool (*set)(RequestFault& fault, std::string_view value); // false: the value is wrong
};
constexpr FaultKind kFaultKinds[] = {
    {"delay", "a number of milliseconds", SetDelay},
    {"error", "a code", SetError},
    {"silent", "", SwitchOn<&RequestFault::silent>},
    {"ignored", "", SwitchOn<&RequestFault::ignored>},
    {"garbage", "", SwitchOn<&RequestFault::garbage>},
    {"twice", "", SwitchOn<&RequestFault::twice>},
    {"noserial", "", SwitchOn<&RequestFault::noSerial>},
    {"disconnect", "a number of times", SetTimes<&RequestFault::disconnects>},
    {"disconnect-before", "a number of times", SetTimes<&RequestFault::disconnectsBefore>},
    {"none", "", [](RequestFault&, std::string_view) { return true; }},
};

} // namespace

struct ServerCommands::Verb {
    std::string_view name;
    std::string_view words; // as they are told to who got them wrong
    std::size_t least, most;
    Told (ServerCommands::*run)(const Call& call);
};
const ServerCommands::Verb ServerCommands::kVerbs[] = {
    {"clock", "next, DAYS or a date such as 2027-03-05", 1, 1, &ServerCommands::MoveClock},
    {"fill", "COUNT", 1, 1, &ServerCommands::Fill},
    {"other", "COUNT", 1, 1, &ServerCommands::PlaceOtherOrders},
    {"execute", "COUNT [NUMBER]", 1, 2, &ServerCommands::Execute},
    {"fault", "REQUEST KIND [VALUE]", 2, 3, &ServerCommands::SetFault},
};

Told ServerCommands::Run(std::string_view line, const UserIdentity& user, std::int64_t nowMs) {
    constexpr std::size_t mostWords = 4;
    const std::vector<std::string_view> words = WordsOf(line, mostWords);
    if (words.empty()) return {false, "A command is expected"};
    const auto* verb = std::ranges::find(kVerbs, words.front(), &Verb::name);
    if (verb == std::end(kVerbs)) return {false, QuotedStart(words.front()) + " is no command"};
    const Call call{std::span(words).subspan(1), user, nowMs};
    if (call.words.size() < verb->least || call.words.size() > verb->most)
        return {false, QuotedStart(verb->name) + " takes " + std::string(verb->words)};
    return (this->*verb->run)(call);
}

Told ServerCommands::MoveClock(const Call& call) {
    if (call.words[0] == "next") {
        std::string fault = m_server.Clock().AdvanceToNextInstalment();
        return Outcome(std::move(fault),
                       "Server clock at the next instalment: " + RecordDate(m_server.Clock().Today()));
    }
    if (const auto date = ReadDate(call.words[0])) {
        if (*date < m_server.Clock().Today())
            return {false, "The server's clock does not go back from " + RecordDate(m_server.Clock().Today())};
        return Outcome(m_server.Clock().AdvanceTo(*date), "Server clock advanced to " + RecordDate(*date));
    }
    const auto days = WholeNumber(call.words[0]);
    if (!days || *days > kMostDays)
        return {false, QuotedStart(call.words[0]) + " is neither next, nor a whole number of days up to "
                           + std::to_string(kMostDays) + ", nor a date such as 2027-03-05"};
    const auto date =
        std::chrono::sys_days(m_server.Clock().Today()) + std::chrono::days(static_cast<int>(*days));
    return Outcome(m_server.Clock().AdvanceTo(date),
                   "Server clock advanced by " + std::to_string(*days) + (*days == 1 ? " day" : " days"));
}

Told ServerCommands::Fill(const Call& call) {
    Told told;
    const auto count = ReadCount(call.words[0], kMostFilled, told);
    if (!count) return told;
    if (!HasMarket()) return {false, kNoMarket};
    FillPlan plan{*count, {call.user, OtherUser(call.user)}, m_market};
    plan.seed += m_server.Held().All().size(); // a second filling brings others
    return Outcome(vesk::Fill(m_server, plan),
                   "Server filled with " + std::to_string(*count) + " registrations");
}

Told ServerCommands::PlaceOtherOrders(const Call& call) {
    Told told;
    const auto count = ReadCount(call.words[0], kMostOrdersMade, told);
    if (!count) return told;
    if (!HasMarket()) return {false, kNoMarket};
    const std::size_t placed = PlaceSampleOrders(m_server, OtherUser(call.user), m_market,
                                                 static_cast<std::uint64_t>(call.nowMs), *count);
    return {placed == *count, "Another session placed " + std::to_string(placed) + " orders"};
}

Told ServerCommands::Execute(const Call& call) {
    Told told;
    const auto count = ReadCount(call.words[0], kMostOrdersMade, told);
    if (!count) return told;
    std::string number(call.words.size() > 1 ? call.words[1].substr(0, kLongestText) : "");
    if (number.empty() && !m_server.Held().All().empty()) number = m_server.Held().All().back().Number();
    const Registration* registration = m_server.Held().Find(number);
    if (!registration) return {false, "There is no registration " + number};
    const ExecutionPlan plan{m_server.Clock().OpenDays(*registration, *count),
                             m_server.Clock().PriceOf(*registration), m_server.Config().fills.seed};
    if (plan.days.size() < *count)
        return {false, "There are no more than " + std::to_string(plan.days.size())
                           + " days for instalments of " + number};
    return Outcome(m_server.Clock().Execute(*registration, plan),
                   "Executed " + std::to_string(*count) + " instalments of " + number);
}

Told ServerCommands::SetFault(const Call& call) {
    const std::string_view request = call.words[0], kind = call.words[1];
    const std::string_view value = call.words.size() > 2 ? call.words[2] : std::string_view();
    const auto* row = std::ranges::find(kFaultKinds, kind, &FaultKind::name);
    if (row == std::end(kFaultKinds)) return {false, QuotedStart(kind) + " is not a fault"};
    RequestFault fault;
    const bool hasExcess = row->value.empty() && !value.empty();
    if (hasExcess || !row->set(fault, value))
        return {false, QuotedStart(value) + " is no value of \"" + std::string(kind) + "\", which takes "
                           + std::string(row->value.empty() ? "none" : row->value)};
    if ((fault.disconnects != 0 || fault.disconnectsBefore != 0) && !m_hasConnections)
        return {false, "The terminal's own server has no connection that could be cut"};
    auto& faults = m_server.Config().faults;
    if (request.size() > kLongestText || (faults.size() >= kMostFaults && !faults.contains(request)))
        return {false, "The server keeps no more faults"};
    faults.insert_or_assign(std::string(request), fault);
    return {true, "On " + std::string(request) + " the server plays: " + std::string(kind)
                      + (value.empty() ? "" : " ") + std::string(value)};
}

} // namespace vesk
