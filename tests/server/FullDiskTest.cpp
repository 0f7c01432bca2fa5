// The journal on a disk that refuses.

#include "tests/server/ServerFixture.h"

#include <csignal>
#include <sys/resource.h>

namespace vesk {
namespace {

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
        EXPECT_NE(running.server->EnterMadeUp({running.server->Held().All()[0]}), "");
        EXPECT_EQ(running.server->Held().All().size(), 1u);
    }
    running.Ask(Order("orderId=id-2 frequency=weekly"));
    EXPECT_EQ(running.server->Clock().ExecuteDue({}).instalments, 2u);
}

TEST(Journal, ChangesThatAreHeldAreWrittenAndToldTogetherOrUndone) {
    struct Listener : UpdateListener {
        void OnUpdate(const Registration&) override { ++updates; }
        int updates = 0;
    } listener;
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    RunningServer running(path);
    running.Ask(Order());
    running.server->AddListener(listener);
    const std::string journal = FileText(path), state = StateOf(running);
    const Fields order = Order("orderId=id-2");
    const auto hold = [&] {
        const std::string before = FileText(path);
        running.server->Hold();
        running.Ask(order, "1-1");
        running.Ask("pause_sip_order registrationNumber=SIP2603020000001", "1-2");
        running.Ask("calendar_add_restricted_dates restrictedYear=2026 startDate=5 restrictedTo=7");
        EXPECT_EQ(running.server->Clock().AdvanceTo(std::chrono::year(2026) / 3 / 5), "");
        EXPECT_EQ(FileText(path), before);
        EXPECT_EQ(listener.updates, 0);
    };
    std::string fault;
    hold();
    {
        const FullDisk full(journal.size() + 300);
        fault = running.server->Release();
    }
    EXPECT_NE(fault, "");
    EXPECT_EQ(FileText(path), journal);
    EXPECT_EQ(StateOf(running), state);
    EXPECT_EQ(listener.updates, 0);
    for (const auto& [request, code] : {std::pair(order, "106"), std::pair(Order(), "")}) {
        const std::string bytes = Message(request);
        const qmx::MessageReader reader(bytes);
        const Reply reply = running.server->HandleUndone(reader.Handle(), running.user, "1-1", fault);
        EXPECT_EQ(qmx::Text(qmx::MessageReader(reply.answers.at(0)).Handle(), tag::errorCode), code);
    }
    // The first once more is flushed alone.
    EXPECT_NE(running.Ask(Order("orderId=id-3"))[0].find("registered"), std::string::npos);
    const std::size_t records = ReadJournalText(FileText(path)).records.size();
    listener.updates = 0;
    hold();
    EXPECT_EQ(running.server->Release(), "");
    EXPECT_EQ(ReadJournalText(FileText(path)).records.size(), records + 4);
    EXPECT_EQ(listener.updates, 2);
    running.AdvanceTo(running.server->Clock().Today()); // until the restricted days are told of
    WriteJournal(folder.File("killed"), FileText(path));
    RunningServer again(folder.File("killed"));
    EXPECT_EQ(StateOf(again), StateOf(running));
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
    EXPECT_EQ(FileText(path), JournalOf({"{\"third\":3}"}, before));
}

} // namespace
} // namespace vesk
