// The journal after a crash at every byte, after damage, and on a disk that refuses.

#include "host/server/schedule/Schedule.h"
#include "tests/server/ServerFixture.h"

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#endif

namespace vesk {
namespace {

std::string ThreeLines() {
    return JournalLine("{\"a\":1}") + JournalLine("") + JournalLine("{\"c\":3}");
}

TEST(Journal, TornAtEveryByteKeepsExactlyTheWholeRecordsAndGoesOn) {
    const TemporaryFolder folder;
    const std::string whole = ThreeLines();
    const auto path = folder.File("journal");
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::string left = whole.substr(0, length);
        const auto kept = static_cast<std::size_t>(std::count(left.begin(), left.end(), '\n'));
        const std::size_t end = kept ? left.rfind('\n') + 1 : 0;
        WriteFileText(path, left);
        {
            JournalOpening opening = Journal::Open(path);
            ASSERT_TRUE(opening.journal) << "at " << length << ": " << opening.error;
            EXPECT_EQ(opening.records.size(), kept) << "at " << length;
            EXPECT_EQ(opening.warning.empty(), end == length) << "at " << length;
            if (end != length) {
                EXPECT_NE(opening.warning.find(path.string()), std::string::npos);
                EXPECT_NE(opening.warning.find("offset " + std::to_string(end)), std::string::npos);
            }
            std::string error;
            ASSERT_TRUE(opening.journal->Append("{\"d\":4}", error)) << error;
        }
        EXPECT_EQ(FileText(path), whole.substr(0, end) + JournalLine("{\"d\":4}")) << "at " << length;
    }
}

TEST(Journal, AnyChangedByteIsDamageUnlessItTearsTheLastRecord) {
    const std::string whole = ThreeLines();
    for (std::size_t i = 0; i < whole.size(); ++i)
        for (int bit = 0; bit < 8; ++bit) {
            std::string changed = whole;
            changed[i] = static_cast<char>(changed[i] ^ (1 << bit));
            const JournalText judged = ReadJournalText(changed);
            const bool lastLineEnd = i + 1 == whole.size();
            EXPECT_EQ(judged.damaged, !lastLineEnd) << "byte " << i << " bit " << bit;
            EXPECT_EQ(judged.torn, lastLineEnd) << "byte " << i << " bit " << bit;
            const auto before = static_cast<std::size_t>(
                std::count(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(i), '\n'));
            EXPECT_EQ(judged.records.size(), before);
        }
}

TEST(Journal, DamageIsToldWithPathRecordAndOffsetAndNothingIsChanged) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    std::string text = ThreeLines();
    const std::size_t second = text.find('\n') + 1;
    text[second + 4] = 'x';
    WriteFileText(path, text);
    const JournalOpening opening = Journal::Open(path);
    EXPECT_FALSE(opening.journal);
    EXPECT_EQ(opening.error, "journal " + path.string() + " is damaged: record 2 at offset "
                                 + std::to_string(second) + " does not match its checksum");
    EXPECT_EQ(FileText(path), text);
}

TEST(Journal, SecondServerAndRecordOfTwoLinesAreKeptOut) {
    const TemporaryFolder folder;
    const JournalOpening first = Journal::Open(folder.File("journal"));
    ASSERT_TRUE(first.journal);
    EXPECT_FALSE(Journal::Open(folder.File("journal")).journal);
    std::string error;
    EXPECT_FALSE(first.journal->Append("a\nb", error));
    EXPECT_EQ(FileText(folder.File("journal")), "");
}

TEST(Journal, IsWrittenAnewWhenMostIsSupersededAndACrashLeavesTheOldOrTheNewOne) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal"), beside = folder.File("journal.new");
    std::string held;
    const auto state = [&] {
        RunningServer running(path);
        held = RecordDate(running.server->Clock().Today());
        for (const Registration& registration : running.server->Registrations())
            held += registration.Json();
        for (const char* request :
             {"qry_eq_sip_orders registrationNumber=SIP2603020000001",
              "qry_eq_sip_trades registrationNumber=SIP2603020000001", "calendar_get_restricted_dates"})
            for (const std::string& answer : running.Ask(request))
                held += answer;
        return held;
    };
    {
        RunningServer running(path);
        running.Ask(Order());
        running.Ask(Order("orderId=id-2"));
        running.Ask("cancel_sip_order registrationNumber=SIP2603020000002 orderId=cancel");
        running.AdvanceTo(std::chrono::year(2026) / 6 / 20);
        running.Ask("calendar_add_restricted_dates restrictedYear=2026 startDate=5 restrictedTo=7");
        running.Ask("pause_sip_order registrationNumber=SIP2603020000001");
        EXPECT_FALSE(running.server->IsJournalStale());
    }
    const std::string few = FileText(path);
    std::string old = few;
    for (int i = 0; i < 1001; ++i)
        old += few.substr(few.rfind('\n', few.size() - 2) + 1);
    WriteFileText(path, old);
    const std::string before = state();
    std::string compacted;
    {
        RunningServer running(path);
        EXPECT_TRUE(running.server->IsJournalStale());
        EXPECT_EQ(running.server->CompactJournal(), "");
        EXPECT_FALSE(Journal::Open(path).journal); // nobody else has it meanwhile
        compacted = FileText(path);
        EXPECT_LE(compacted.size(), few.size());
        // It goes on, and knows the requests of before.
        running.Ask("resume_sip_order registrationNumber=SIP2603020000001");
        for (const char* identifier : {"id-1", "id-2", "cancel"})
            running.Ask(Order(std::string("orderId=") + identifier));
        EXPECT_EQ(running.server->Registrations().size(), 3u);
    }
    EXPECT_EQ(state().find("Paused"), std::string::npos);

    // What is in place, and what stands beside it.
    std::vector<std::pair<std::string, std::string>> crashes{{compacted, ""}};
    for (std::size_t length = 0; length <= compacted.size(); length += compacted.size() / 7)
        crashes.emplace_back(old, compacted.substr(0, length));
    for (const auto& [inPlace, left] : crashes) {
        WriteFileText(path, inPlace);
        WriteFileText(beside, left);
        EXPECT_EQ(state(), before);
        EXPECT_EQ(RunningServer(path).server->CompactJournal(), "");
        EXPECT_EQ(FileText(path), compacted);
        EXPECT_FALSE(std::filesystem::exists(beside));
        EXPECT_EQ(state(), before);
    }
}

#ifndef _WIN32
// A file size limit in the middle of a record stands for a full disk.
class FullDisk {
public:
    explicit FullDisk(std::size_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_normal);
        rlimit small = m_normal;
        small.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_normal); }

private:
    rlimit m_normal{};
};

TEST(Journal, InstalmentsGoOnOnceItTakesRecordsAgain) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    RunningServer running(path);
    running.Ask(Order("frequency=weekly"));
    running.AdvanceTo(std::chrono::year(2026) / 3 / 5);
    EXPECT_EQ(running.server->Clock().AdvanceToNextInstalment(), "");
    {
        const FullDisk full(FileText(path).size() + 10);
        EXPECT_NE(running.server->Clock().ExecuteDue({}).fault, "");
        EXPECT_FALSE(running.server->Clock().HasDue());
        running.Ask(Order("orderId=id-2"));
        EXPECT_FALSE(running.server->Clock().HasDue());
        EXPECT_EQ(running.server->Registrations().size(), 1u);
    }
    running.Ask(Order("orderId=id-2 frequency=weekly"));
    EXPECT_EQ(running.server->Clock().ExecuteDue({}).instalments, 2u);
}

TEST(Journal, RecordThatCannotBeWrittenLeavesNoTraceAndNoHarm) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    const JournalOpening opening = Journal::Open(path);
    std::string error;
    ASSERT_TRUE(opening.journal->Append("{\"first\":1}", error));
    const std::string before = FileText(path);

    bool written = true, replaced = true;
    {
        const FullDisk full(before.size() + 10);
        written = opening.journal->Append("{\"second\":2}", error);
        replaced = opening.journal->Replace(
            [&](const Journal::Sink& sink) { sink(std::string(before.size() + 20, 'x')); }, error);
    }
    EXPECT_FALSE(written || replaced);
    EXPECT_NE(error, "");
    EXPECT_EQ(FileText(path), before);
    EXPECT_TRUE(opening.journal->Append("{\"third\":3}", error)) << error;
    EXPECT_EQ(FileText(path), before + JournalLine("{\"third\":3}"));
}
#endif

} // namespace
} // namespace vesk
