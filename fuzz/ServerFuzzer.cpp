// Requests of any content to the trading server: every one is answered readably, what changes is told and
// journaled, and a server that starts from the journal holds the same.
//
// The first line names what the server is set to, each further one is a request, tag=text|tag=text, a number
// of instalments of the latest registration to be executed, "+" and the days by which the clock advances, or
// ":" and a command.

#include "fuzz/Fuzz.h"
#include "host/server/Server.h"
#include "host/server/ServerCommands.h"
#include "host/server/schedule/Schedule.h"
#include "tests/server/Requests.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

using fuzz::Demand;
using namespace vesk;

namespace {

class Listener final : public UpdateListener {
public:
    void OnUpdate(const Registration& registration) override {
        ++updates;
        registration.AddTo(m_writer.Start());
        const std::string bytes = m_writer.Finish();
        const qmx::MessageReader reader(bytes);
        Demand(reader.Good() && qmx::Text(reader.Handle(), tag::registrationNumber) == registration.Number());
    }
    std::size_t updates = 0;

private:
    qmx::MessageWriter m_writer;
};

// Letters: "n" no list of frequencies, "z" one that a zero ends, "e" an error, "s" silence, "i" a request
// ignored, "g" garbage, "t" an answer twice, "d" a cut connection, "b" one that is cut before.
ServerConfig ConfigOf(std::string_view letters) {
    const auto has = [&](char letter) { return letters.find(letter) != letters.npos; };
    ServerConfig config;
    if (has('n')) config.frequencies.clear();
    if (has('z')) config.operationModeShape = OperationModeShape::listThenZero;
    RequestFault& fault = config.faults["*"];
    if (has('e')) fault.errorCode = "99";
    fault.silent = has('s');
    fault.ignored = has('i');
    fault.garbage = has('g');
    fault.twice = has('t');
    fault.disconnectsBefore = has('b');
    fault.disconnects = has('d');
    return config;
}

void CheckAnswer(const std::string& bytes, std::string_view request, bool isGarbage) {
    const qmx::MessageReader reader(bytes);
    Demand(reader.Good());
    if (isGarbage) return;
    Demand(qmx::Text(reader.Handle(), tag::echoedRequest) == request.substr(0, kLongestText));
    // Without a code it ends a query.
    if (!qmx::Text(reader.Handle(), tag::errorCode).empty())
        Demand(!qmx::Text(reader.Handle(), tag::userText).empty());
}

// Keeps all that was answered.
std::string Ask(Server& server, std::string_view line) {
    qmx::MessageWriter writer;
    std::string told;
    while (!line.empty()) {
        std::string_view text = fuzz::Input::CutAt(line, '|');
        const auto tag = WholeNumber(fuzz::Input::CutAt(text, '='));
        // A field that stands twice would spoil the message before it is sent.
        if (tag && !qmx::Has(writer.Handle(), static_cast<std::uint32_t>(*tag)))
            writer.Add(static_cast<std::uint32_t>(*tag), text);
    }
    if (!writer.Good()) return told;
    const std::string name(qmx::Text(writer.Handle(), tag::requestName));
    const RequestFault fault = server.Config().FaultFor(name);
    Reply reply = server.Handle(writer.Handle(), {"USER1", "BROKER", "BR1"});
    Demand(reply.isLost == (fault.disconnectsBefore != 0));
    const bool isIgnored = fault.ignored && !reply.isLost;
    Demand(reply.isCut == (reply.isLost || (fault.disconnects != 0 && !isIgnored)));
    Demand(reply.answers.empty() == (reply.isCut || isIgnored || fault.silent || reply.rows.has_value()));
    for (const std::string& answer : reply.answers) {
        CheckAnswer(answer, name, fault.garbage);
        told += answer;
    }
    std::size_t rows = 0;
    while (reply.rows && !reply.rows->isDone)
        if (const std::string row = server.NextRow(*reply.rows); !row.empty()) {
            CheckAnswer(row, name, false);
            told += row;
            ++rows;
        }
    Demand(!reply.rows || rows != 0);
    return told;
}

void Execute(Server& server, std::int64_t instalments) {
    if (server.Held().All().empty()) return;
    constexpr std::int64_t most = 20;
    const Registration& registration = server.Held().All().back();
    const auto count = static_cast<std::size_t>(std::clamp<std::int64_t>(instalments, 0, most));
    const ExecutionPlan plan{server.Clock().OpenDays(registration, count), instalments};
    Demand(std::is_sorted(plan.days.begin(), plan.days.end()));
    Demand(server.Clock().Execute(registration, plan).empty());
}

void Advance(Server& server, std::int64_t days) {
    constexpr std::int64_t most = 400;
    const auto count = std::chrono::days(static_cast<int>(std::min(days, most)));
    server.Clock().AdvanceTo(std::chrono::sys_days(server.Clock().Today()) + count);
    while (server.Clock().HasDue())
        Demand(server.Clock().ExecuteDue({}).fault.empty());
}

// What takes its time, with larger numbers, is left out.
bool Command(ServerCommands& commands, std::string_view line) {
    constexpr std::ptrdiff_t mostDigits = 2;
    if (std::count_if(line.begin(), line.end(), [](char c) { return c >= '0' && c <= '9'; }) > mostDigits)
        return false;
    Demand(!commands.Run(line, {"USER1", "BROKER", "BR1"}, 0).text.empty());
    return true;
}

// Everything that a server holds, as it tells it.
std::string Held(Server& server) {
    std::string held = Ask(server, "0=calendar_get_restricted_dates");
    for (const Registration& registration : server.Held().All()) {
        held += registration.Json();
        for (const std::string request : {"0=qry_eq_sip_orders", "0=qry_eq_sip_trades"})
            held += Ask(server, request + "|64804=" + std::string(registration.Number()));
    }
    for (const auto day : server.Clock().Restricted().All())
        held += RecordDate(day);
    return held;
}

// With what says how far it was written.
void Remove(std::filesystem::path journal) {
    std::filesystem::remove(journal);
    std::filesystem::remove(journal += ".head");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto path =
        std::filesystem::temp_directory_path() / ("fuzz-server-" + std::to_string(getpid()));
    Remove(path);
    fuzz::Input input(data, size);
    const ServerConfig config = ConfigOf(input.Line());
    std::string held;
    std::size_t updates = 0;
    bool isCommanded = false; // and what it did is not counted
    {
        const JournalOpening opening = Journal::Open(path);
        Server server(config, *opening.journal, opening.records, FixedClock());
        ServerCommands commands(server, {{"CL1"}, {{"nse_cm", "1008", "ARBORTOOLS-EQ"}}}, true);
        Listener listener;
        server.AddListener(listener);
        while (!input.AtEnd()) {
            const std::string line = input.Line();
            if (const auto instalments = WholeNumber(line))
                Execute(server, *instalments);
            else if (line.starts_with('+'))
                Advance(server, WholeNumber(std::string_view(line).substr(1)).value_or(0));
            else if (line.starts_with(':'))
                isCommanded = Command(commands, std::string_view(line).substr(1)) || isCommanded;
            else
                Ask(server, line);
        }
        server.Config() = config;
        Advance(server, 0);
        held = Held(server);
        updates = listener.updates;
    }
    std::size_t changes = 0;
    const JournalOpening opening = Journal::Open(path);
    Demand(opening.journal && opening.warning.empty());
    for (const std::string_view record : opening.records)
        changes += Registration::FromJson(record).has_value();
    Demand(isCommanded || updates >= changes);
    Server again(config, *opening.journal, opening.records, FixedClock());
    Demand(again.Journal().ReplayError().empty() && Held(again) == held);
    Remove(path);
    return 0;
}
