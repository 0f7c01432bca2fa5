// planfold_start_bench [REGISTRATIONS]
//
// How long a server takes to start from the journal of 1,000,000 registrations whose plans have gone on for
// some days and which have been changed until a server would write it anew: the longest that there is. Then
// from the one that is written anew.

#include "host/server/Server.h"
#include "host/server/sample/SampleOrders.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

using namespace vesk;

constexpr std::size_t kUsualRegistrations = 1'000'000;
constexpr int kDays = 7;

// Of the processor's time, from which other work beside takes nothing away.
double SecondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

bool Report(const std::string& fault) {
    if (!fault.empty()) std::fprintf(stderr, "%s\n", fault.c_str());
    return fault.empty();
}

// A record that supersedes the one before, of so many.
bool ChangeUntilStale(Server& server) {
    constexpr std::size_t atOnce = 16'384;
    const std::vector<Registration>& all = server.Held().All();
    for (std::size_t i = 0; !server.Upkeep().IsStale();) {
        JournalBatch batch;
        for (const std::size_t end = i + atOnce; i < end; ++i)
            batch.Add(all[i % all.size()].Json());
        if (!Report(server.Journal().Write(batch))) return false;
    }
    return true;
}

bool Prepare(const std::filesystem::path& path, std::size_t registrations) {
    const JournalOpening opening = Journal::Open(path);
    Server server({}, *opening.journal, opening.records, SystemClock());
    const SampleMarket market{{"C001"}, {{"nse_cm", "1013", "ARBORTOOLS-EQ"}}};
    if (!Report(Fill(server, {registrations, {{"DEALER", "B", ""}}, market}))) return false;
    if (!Report(
            server.Clock().AdvanceTo(std::chrono::sys_days(server.Clock().Today()) + std::chrono::days(kDays))))
        return false;
    while (server.Clock().HasDue())
        if (!Report(server.Clock().ExecuteDue(std::chrono::seconds(1)).fault)) return false;
    return ChangeUntilStale(server);
}

// Writes the journal anew when that is due.
bool Start(const std::filesystem::path& path, const char* when) {
    auto start = std::clock();
    JournalOpening opening = Journal::Open(path);
    const double read = SecondsSince(start);
    start = std::clock();
    Server server({}, *opening.journal, opening.records, SystemClock());
    std::printf("%s: %8zu records of %5.0f MB: read in %5.1f s, replayed in %5.1f s\n", when,
                opening.records.size(), static_cast<double>(std::filesystem::file_size(path)) / 1e6, read,
                SecondsSince(start));
    opening.records.clear();
    opening.text.reset();
    if (!server.Upkeep().IsStale()) return Report(server.Journal().ReplayError());
    start = std::clock();
    const bool isDone = Report(server.Upkeep().Renew());
    std::printf("written anew in %.1f s\n", SecondsSince(start));
    return isDone;
}

} // namespace

int main(int count, char** arguments) {
    const std::size_t registrations = count > 1 ? std::stoul(arguments[1]) : kUsualRegistrations;
    const auto folder = std::filesystem::temp_directory_path() / ("start-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const auto path = folder / "journal";
    const bool isDone = Prepare(path, registrations) && Start(path, "before") && Start(path, "after");
    std::filesystem::remove_all(folder);
    return isDone ? 0 : 1;
}
