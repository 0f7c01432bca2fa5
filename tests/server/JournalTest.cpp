// The journal after a crash at every byte and after damage.

#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

const std::vector<std::string> kThree{"{\"a\":1}", "", "{\"c\":3}"};

TEST(FieldRecord, ReadsTextsAsAnyWriterOfJsonEscapesThem) {
    const struct {
        const char* said;
        const char* text; // null: no record
    } rows[] = {
        {R"(a\u00e9\n\\\/\")", "a\xE9\n\\/\""},
        {"\xC3\xA9 ", "\xE9 "},
        {R"(\u0020)", " "},
        {R"(\u0100)", nullptr},
        {R"(\u00e)", nullptr},
        {R"(\x41)", nullptr},
        {R"(\x0041)", nullptr},
        {"\x1F", nullptr},
        {"\xC4\x80", nullptr},
    };
    for (const auto& [said, text] : rows) {
        const std::string json = "{\"order\":{\"7\":\"" + std::string(said) + "\"}}";
        FieldRecord record;
        EXPECT_EQ(RecordReader(json).TakeAll("order", record), text != nullptr) << said;
        if (text) {
            EXPECT_EQ(record.Text(7), text);
        }
    }
}

TEST(Journal, TornAtEveryByteKeepsExactlyTheWholeRecordsAndGoesOn) {
    const TemporaryFolder folder;
    const std::string whole = JournalOf(kThree);
    const auto path = folder.File("journal");
    std::string torn;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::string left = whole.substr(0, length);
        const auto kept = static_cast<std::size_t>(std::count(left.begin(), left.end(), '\n'));
        const std::size_t end = kept ? left.rfind('\n') + 1 : 0;
        WriteJournal(path, left);
        {
            JournalOpening opening = Journal::Open(path);
            ASSERT_TRUE(opening.journal) << "at " << length << ": " << opening.error;
            EXPECT_EQ(opening.records.size(), kept) << "at " << length;
            EXPECT_EQ(opening.warning.empty(), end == length) << "at " << length;
            if (end != length) {
                EXPECT_NE(opening.warning.find(path.string()), std::string::npos);
                EXPECT_NE(opening.warning.find("offset " + std::to_string(end)), std::string::npos);
                torn += left.substr(end) + "\n";
            }
            std::string error;
            ASSERT_TRUE(opening.journal->Append("{\"d\":4}", error)) << error;
        }
        EXPECT_EQ(FileText(path), JournalOf({"{\"d\":4}"}, whole.substr(0, end))) << "at " << length;
        EXPECT_EQ(FileText(folder.File("journal.torn")), torn) << "what a crash tore is kept";
    }
}

TEST(Journal, WhatWasTornStaysWhereItCannotBePutBeside) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    const std::string whole = JournalOf(kThree), text = whole.substr(0, whole.size() - 3);
    WriteJournal(path, text);
    std::filesystem::create_directory(folder.File("journal.torn"));
    const JournalOpening opening = Journal::Open(path);
    EXPECT_FALSE(opening.journal);
    EXPECT_NE(opening.error.find("ends in a torn record and "), std::string::npos) << opening.error;
    EXPECT_EQ(FileText(path), text);
}

// Whatever happens to a record that was answered, the journal is not opened, and nothing is changed.
TEST(Journal, NoRecordIsLostChangedOrMovedUnseen) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    std::vector<std::string> lines, contents;
    std::string whole, head;
    {
        const JournalOpening opening = Journal::Open(path);
        std::string error;
        for (int i = 0; i < 12; ++i) {
            contents.push_back("{\"registration\":" + std::to_string(i) + "}");
            ASSERT_TRUE(opening.journal->Append(contents.back(), error)) << error;
            lines.push_back(FileText(path).substr(whole.size()));
            whole = FileText(path);
        }
        head = FileText(folder.File("journal.head"));
    }
    std::size_t looked = 0;
    const auto expectRefused = [&](const std::string& text, const std::string& what) {
        ++looked;
        WriteFileText(path, text);
        WriteFileText(folder.File("journal.head"), head);
        const JournalOpening opening = Journal::Open(path);
        EXPECT_FALSE(opening.journal) << what;
        EXPECT_NE(opening.error, "") << what;
        EXPECT_EQ(FileText(path), text) << what;
        // A last line that may be torn, or is gone as a whole, only the head knows.
        EXPECT_EQ(FindJournalFaults(text).empty() && MissingBy(head, ReadJournalText(text)).empty(), false)
            << what;
    };
    const auto joined = [](const std::vector<std::string>& some) {
        std::string text;
        for (const std::string& line : some)
            text += line;
        return text;
    };
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string place = " record " + std::to_string(i + 1);
        const auto at = lines.begin() + static_cast<std::ptrdiff_t>(i);
        std::vector<std::string> changed(lines.begin(), at);
        changed.insert(changed.end(), at + 1, lines.end());
        expectRefused(joined(changed), "deleted" + place);
        changed = lines;
        changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(i), lines[i]);
        expectRefused(joined(changed), "doubled" + place);
        changed = lines;
        changed.push_back(lines[i]);
        expectRefused(joined(changed), "repeated" + place);
        if (i > 0) {
            changed = lines;
            std::swap(changed[i], changed[i - 1]);
            expectRefused(joined(changed), "swapped" + place);
        }
        const std::size_t start = joined({lines.begin(), at}).size();
        for (std::size_t length = start; length < start + lines[i].size(); ++length)
            expectRefused(whole.substr(0, length), "cut" + place);
        expectRefused(whole.substr(0, start) + std::string(whole.size() - start, '\0'), "zeros from" + place);
        std::string zeros = whole;
        zeros.replace(start, lines[i].size() - 1, lines[i].size() - 1, '\0');
        expectRefused(zeros, "zeros in" + place);
        // The same with a checksum that is good for itself.
        changed = lines;
        JournalChain chain = ReadJournalText(joined({lines.begin(), at})).chain;
        changed[i].clear();
        chain.AppendLine(changed[i], "{\"registration\":99}");
        expectRefused(joined(changed), "another" + place);
    }
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string changed = whole;
        changed[i] = static_cast<char>(changed[i] ^ (1 << i % 8));
        expectRefused(changed, "byte " + std::to_string(i));
    }
    for (const char character : {'\0', '\n', '\x1F'})
        expectRefused(whole + "V2R " + std::to_string(lines.size() + 1) + ' ' + character, "no text");
    expectRefused("another program's file", "another program's file");
    expectRefused("", "an empty file");
    EXPECT_GT(looked, 800u);

    WriteFileText(path, joined({lines[0], lines[2], lines[3], "V2R 5 rubbish\n", lines[5], lines[5]}));
    const JournalOpening opening = Journal::Open(path);
    EXPECT_EQ(opening.error, "journal " + path.string() + " is damaged: record 2 at offset "
                                 + std::to_string(lines[0].size()) + " does not follow the one before");
    EXPECT_EQ(FindJournalFaults(FileText(path)).size(), 4u) << "each once, with its place";
}

TEST(Journal, OlderOneIsTakenOverOnceAndItsNumbersGoOn) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    const std::string old = "V1 561bacaf {\"a\":1}\nV1 00000000 \n";
    for (const auto& [left, records] : {std::pair(old, 2u), {old + "V1 4bd", 2u}, {old.substr(0, 20), 1u}}) {
        WriteJournal(path, left);
        EXPECT_EQ(Journal::Open(path).records.size(), records);
        const JournalOpening again = Journal::Open(path);
        EXPECT_EQ(again.records.size(), records);
        EXPECT_TRUE(FileText(path).starts_with("V2F " + std::to_string(records + 1) + " "));
    }
    for (const std::string& left :
         {old + "V2R 3 00000000 \n", std::string("V1 561bacae {\"a\":1}\n"), old + "x"}) {
        WriteJournal(path, left);
        EXPECT_FALSE(Journal::Open(path).journal);
        EXPECT_EQ(FileText(path), left);
    }
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
    const auto state = [&] {
        RunningServer running(path);
        return StateOf(running);
    };
    {
        RunningServer running(path);
        running.Ask(Order());
        running.Ask(Order("orderId=id-2"));
        running.Ask("cancel_sip_order registrationNumber=SIP2603020000002 orderId=cancel");
        running.AdvanceTo(std::chrono::year(2026) / 6 / 20);
        running.Ask("calendar_add_restricted_dates restrictedYear=2026 startDate=5 restrictedTo=7");
        running.Ask("pause_sip_order registrationNumber=SIP2603020000001");
        EXPECT_FALSE(running.server->Upkeep().IsStale());
    }
    const std::string few = FileText(path);
    const std::string last(ReadJournalText(few).records.back());
    const std::string old = JournalOf(std::vector<std::string>(1001, last), few);
    WriteJournal(path, old);
    const std::string before = state();
    std::string compacted;
    {
        RunningServer running(path);
        EXPECT_TRUE(running.server->Upkeep().IsStale());
        EXPECT_EQ(running.server->Upkeep().Renew(), "");
        EXPECT_FALSE(Journal::Open(path).journal); // nobody else has it meanwhile
        compacted = FileText(path);
        EXPECT_LE(compacted.size(), few.size());
        // It goes on, and knows the requests of before.
        running.Ask("resume_sip_order registrationNumber=SIP2603020000001");
        for (const char* identifier : {"id-1", "id-2", "cancel"})
            running.Ask(Order(std::string("orderId=") + identifier));
        EXPECT_EQ(running.server->Held().All().size(), 3u);
    }
    EXPECT_EQ(state().find("Paused"), std::string::npos);

    // What is in place, and what stands beside it.
    std::vector<std::pair<std::string, std::string>> crashes{{compacted, ""}};
    for (std::size_t length = 0; length <= compacted.size(); length += compacted.size() / 7)
        crashes.emplace_back(old, compacted.substr(0, length));
    for (const auto& [inPlace, left] : crashes) {
        WriteJournal(path, inPlace);
        WriteFileText(beside, left);
        EXPECT_EQ(state(), before);
        EXPECT_EQ(RunningServer(path).server->Upkeep().Renew(), "");
        EXPECT_EQ(ReadJournalText(FileText(path)).records, ReadJournalText(compacted).records);
        EXPECT_FALSE(std::filesystem::exists(beside));
        EXPECT_EQ(state(), before);
    }
}

// Between its steps the server goes on, and may be killed.
TEST(Journal, IsWrittenAnewStepByStepWhileTheServerChangesWhatItHolds) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal"), killed = folder.File("killed");
    RunningServer running(path);
    constexpr std::size_t count = 20;
    const auto number = [](std::size_t place) {
        return " registrationNumber=SIP260302" + std::to_string(10'000'001 + place).substr(1);
    };
    const auto change = [&](std::size_t step) {
        const std::string sentAs = "1-" + std::to_string(step);
        for (const std::size_t place : {std::size_t{0}, count - 1, step % count}) {
            running.Ask("modify_sip_order amountOrQuantity=" + std::to_string(500 + step) + " totalPeriod=20"
                            + number(place),
                        sentAs + "a" + std::to_string(place));
            running.Ask((step % 2 ? "pause_sip_order" : "resume_sip_order") + number(place + 1), sentAs);
        }
        running.AdvanceTo(std::chrono::year(2026) / 4 / 1 + std::chrono::months(step / 20));
        running.Ask("calendar_add_restricted_dates restrictedYear=2026 restrictedTo=9 startDate="
                    + std::to_string(1 + step % 9));
        running.Ask(Order("orderId=new-" + std::to_string(step)));
    };
    for (std::size_t i = 0; i < count; ++i)
        running.Ask(Order("orderId=id-" + std::to_string(i)));
    for (std::size_t step = 0; !running.server->Upkeep().IsStale(); ++step) {
        running.server->Hold();
        change(step % 10);
        EXPECT_EQ(running.server->Release(), "");
    }
    std::string note;
    for (std::size_t step = 100; note.empty(); ++step) {
        change(step);
        note = running.server->Upkeep().RenewWhenStale({});
        WriteJournal(killed, FileText(path));
        RunningServer again(killed);
        EXPECT_EQ(StateOf(again), StateOf(running)) << step;
        change(step + 100);
    }
    EXPECT_EQ(note, "The journal is written anew without what was superseded");
    EXPECT_FALSE(running.server->Upkeep().IsStale());
    WriteJournal(killed, FileText(path));
    RunningServer again(killed);
    EXPECT_EQ(StateOf(again), StateOf(running));
    EXPECT_FALSE(std::filesystem::exists(folder.File("journal.new")));
}

#ifndef _WIN32
TEST(Journal, WhatStandsInItAndBesideItIsItsOwnersAlone) {
    using std::filesystem::perms;
    const TemporaryFolder folder;
    WriteFileText(folder.File("journal"), "V2F 1 0");
    RunningServer running(folder.File("journal"));
    running.Ask(Order());
    EXPECT_EQ(running.server->Upkeep().Renew(), "");
    for (const char* name : {"journal", "journal.head", "journal.torn", "journal.lock"})
        EXPECT_EQ(std::filesystem::status(folder.File(name)).permissions(),
                  perms::owner_read | perms::owner_write)
            << name;
}
#endif

} // namespace
} // namespace vesk
