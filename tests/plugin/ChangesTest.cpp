// Registrations that come back from a spreadsheet: what may be changed, and what is sent.
#include "plugin/changes/ChangeRun.h"
#include "plugin/changes/ChangeSet.h"
#include "plugin/orderbook/BookLists.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

#include <sstream>

namespace planfold::test {
namespace {

// "number client user status value periods": a value in rupees has a point.
void Enter(OrderCache& book, const std::string& text) {
    std::istringstream words(text);
    std::string number, client, user, status, value, periods;
    words >> number >> client >> user >> status >> value >> periods;
    const bool byValue = value.find('.') != value.npos;
    OrderChanges changes;
    changes[OrderField::account] = client;
    const std::string name = "of " + client;
    changes[OrderField::accountName] = name;
    changes[OrderField::loginId] = user;
    changes[OrderField::sipStatus] = status;
    changes[byValue ? OrderField::amount : OrderField::quantity] = value;
    changes[OrderField::investType] = byValue ? "value" : "qty";
    changes[OrderField::totalPeriod] = periods;
    changes[OrderField::side] = number.starts_with("W") ? "SWP" : "SIP";
    changes[OrderField::frequency] = "monthly";
    changes[OrderField::startDate] = "05-Mar-2027";
    changes[OrderField::userText] = "not shown";
    changes[OrderField::orderSource] = "=TWS, \"a\"";
    const RecordId known = book.Find(number);
    book[known == kNoRecord ? book.Add(number) : known].Apply(changes);
}

class ChangesTest : public testing::Test, protected Stage, protected ChangeView {
protected:
    ChangesTest() {
        Enter(book, "S1 C1 DEALER1 active 1500.00 22");
        Enter(book, "S2 C2 DEALER1 Paused 100000.00 12");
        Enter(book, "Q3 C3 DEALER1 active 40 6");
        Enter(book, "W4 C4 DEALER1 active 500.00 60");
        Enter(book, "S5 C5 DEALER2 active 500.00 9");
        session.identity.loginId = "DEALER1";
    }

    bool IsOpen() const override { return open; }
    bool MayAsk() override { return !otherBox; }
    bool Ask(Pass, std::string_view question) override {
        questions.emplace_back(question);
        if (const auto action = std::exchange(duringQuestion, nullptr)) action();
        return yes;
    }
    void ShowMessage(Pass, std::string_view text) override { boxes.emplace_back(text); }
    void ShowRows(bool) override {
        shownRows = run.Set() ? run.Set()->Changes().size() : 0;
        shown = run.Set() ? Listed() : "";
    }
    void ShowRun() override {}
    std::int64_t Milliseconds() const override { return clock += clockStep; }

    std::string File() const {
        std::vector<RecordId> all(book.Size());
        for (RecordId i = 0; i < all.size(); ++i)
            all[i] = i;
        return ChangeFileText(book, all, false);
    }
    // The file with "old>new" in the line of the registration. Without stamps their column goes.
    static std::string Edited(std::string file, const std::string& number, const std::string& edit,
                              bool stamps = true) {
        const std::size_t line = file.rfind('\n', file.find("," + number + ",")) + 1, arrow = edit.find('>');
        if (arrow != edit.npos)
            file.replace(file.find(edit.substr(0, arrow), line), arrow, edit.substr(arrow + 1));
        if (stamps) return file;
        std::istringstream lines(file);
        std::string text;
        for (std::string each; std::getline(lines, each);)
            text += each.substr(0, each.rfind(',')) + "\n";
        return text;
    }
    std::string Listed() const {
        std::string text = run.Set()->Fault();
        for (std::size_t row = 0; row < run.Set()->Changes().size(); ++row) {
            text += text.empty() ? "" : "\n";
            for (const ChangeField field :
                 {ChangeField::line, ChangeField::state, ChangeField::registration, ChangeField::columns,
                  ChangeField::before, ChangeField::after, ChangeField::difference, ChangeField::reason})
                text += run.Set()->Text(row, field) + (field == ChangeField::reason ? "" : "|");
        }
        return text;
    }
    void Load(const std::string& text) {
        run.Load(text, "edited.csv");
        while (run.IsUnderWay())
            run.Continue();
    }
    void Answer(const std::string& fields) { run.OnResponse(Received(fields).Message()); }
    Texts Modifications() const {
        Texts sent;
        for (const std::string& request : host.requests)
            if (request.find("modify_sip_order") != request.npos) sent.push_back(request);
        return sent;
    }

    OrderCache book;
    Texts questions, boxes;
    std::string shown;
    std::size_t shownRows = 0;
    mutable std::int64_t clock = 0, clockStep = 0;
    bool open = true, otherBox = false, yes = true;
    std::function<void()> duringQuestion; // run once
    ChangeRun run{session, book, *this, [this] { return &control; }};
};

TEST_F(ChangesTest, AFileIsReadBackAsItWasMeant) {
    const std::string file = File();
    const struct {
        const char *number, *edit;
        bool stamps;
        const char* listed;
    } rows[] = {
        {"S1", "", true, ""},
        {"S1", "", false, ""},
        {"S1", "1500.00>2000", true, "2|To be sent|S1|Amount|1500.00|2000.00|500.00|"},
        {"S1", "1500.00>2000", false, "2|To be sent|S1|Amount|1500.00|2000.00|500.00|"},
        {"S1", "1500.00>\"1,00,000.50\"", true, "2|To be sent|S1|Amount|1500.00|100000.50|98500.50|"},
        {"S1", "22>24", true, "2|To be sent|S1|Periods|22|24||"},
        {"Q3", "40>55", true, "4|To be sent|Q3|Quantity|40|55||"},
        {"Q3", "40>5.5", true,
         "4|Not possible|Q3|Quantity|40|5.5||Quantity: \"5.5\" is no whole number of shares"},
        {"W4", "500.00>400", true, "5|To be sent|W4|Amount|500.00|400.00|-100.00|"},
        {"W4", "500.00>", true, "5|Not possible|W4|Amount|500.00|||Enter Amount"},
        {"W4", "500.00>0", true, "5|Not possible|W4|Amount|500.00|0.00||Enter valid Amount"},
        {"W4", "500.00>-500", true, "5|Not possible|W4|Amount|500.00|-500.00||Please enter valid amount."},
        {"W4", "500.00>12345678", true,
         "5|Not possible|W4|Amount|500.00|12345678.00||cannot have more than 7 digits in rupees part of "
         "Amount"},
        {"W4", "500.00>5E+02", true, ""},
        {"W4", "500.00>6E+02", true,
         "5|Not possible|W4|Amount|500.00|6E+02||Amount: \"6E+02\" is no amount in rupees and paise"},
        {"W4", ",60,>,61,", true, "5|Not possible|W4|Periods|60|61||Month Should be Between 1 and 60"},
        {"W4", ",60,>,0,", true, "5|Not possible|W4|Periods|60|0||Enter valid Month."},
        {"W4", ",60,>,,", true, "5|Not possible|W4|Periods|60|||Enter a Month."},
        {"S5", "500.00>600", true,
         "6|Not possible|S5|Amount|500.00|600.00||The registration is of another user: DEALER2"},
        {"S1", ",S1,>,S9,", true, "2|Not possible|S9|||||No such registration in the book"},
        {"S1", ",S1,>,2.7E+12,", true,
         "2|Not possible|2.7E+12|||||A spreadsheet has rounded the registration number: make its column text"},
        {"S1", "monthly>weekly", true,
         "2|Not possible|S1|||||Frequency is \"monthly\" in the book, \"weekly\" in the file: only amount, "
         "quantity and "
         "periods can be changed"},
        {"S1", "monthly>weekly", false,
         "2|Not possible|S1|||||Frequency is \"monthly\" in the book, \"weekly\" in the file: changed since it "
         "was "
         "exported, or in the spreadsheet"},
        {"S1", "2027-03-05>05/03/27", true, ""},
        {"S1", "|22|>|22", true, "2|Not possible|S1|||||\"As Exported\" is not as it was written"},
        {"S1", "\"'=>\"=", true, ""},
        {"S1", "'=TWS, \"\"a\"\"\">never ends", true,
         "Line 2 has a quote that is not closed, or text behind one."},
    };
    for (const auto& row : rows) {
        Load(Edited(file, row.number, row.edit, row.stamps));
        EXPECT_EQ(Listed(), row.listed) << row.number << " " << row.edit;
        if (!run.Set()->Changes().empty()) {
            const std::string& client = run.Set()->Text(0, ChangeField::account);
            EXPECT_EQ(client, Format("C%c", row.number[1])) << row.edit;
            const bool isKnown = run.Set()->Text(0, ChangeField::registration) == row.number;
            EXPECT_EQ(run.Set()->Text(0, ChangeField::accountName), isKnown ? "of " + client : "") << row.edit;
        }
    }
}

TEST_F(ChangesTest, WhatChangedSinceTheExportIsNotOverwritten) {
    const std::string file = File();
    const struct {
        const char *now, *edit;
        bool stamps;
        const char* listed;
    } rows[] = {
        {"S1 C1 DEALER1 active 1800.00 22", "", true, ""}, // nobody edited it
        {"S1 C1 DEALER1 active 1800.00 22", "1500.00>2000", true,
         "2|Not possible|S1|Amount|1800.00|2000.00||Changed since it was exported: value 1800.00 instead of "
         "1500.00"},
        {"S1 C1 DEALER1 Paused 1500.00 22", "1500.00>2000", true,
         "2|Not possible|S1|Amount|1500.00|2000.00||Changed since it was exported: SIP Status is \"Paused\" in "
         "the book, "
         "\"active\" in the file"},
        {"S1 C1 DEALER1 Paused 1500.00 22", "1500.00>2000", false,
         "2|Not possible|S1|Amount|1500.00|2000.00||SIP Status is \"Paused\" in the book, \"active\" in the "
         "file: changed "
         "since it was exported, or in the spreadsheet"},
        {"S1 C1 DEALER1 cancelled 1500.00 22", "1500.00>2000", true,
         "2|Not possible|S1|Amount|1500.00|2000.00||Cannot modify SIP. Order status: cancelled"},
        {"S1 C1 DEALER1 expired 1500.00 22", "1500.00>2000", true,
         "2|Not possible|S1|Amount|1500.00|2000.00||Cannot modify SIP. Order status: expired"},
    };
    for (const auto& row : rows) {
        Enter(book, row.now);
        Load(Edited(file, "S1", row.edit, row.stamps));
        EXPECT_EQ(Listed(), row.listed) << row.now << " " << row.edit;
    }
}

TEST_F(ChangesTest, AFileThatLacksSomethingIsToldAsAWhole) {
    const std::string file = File();
    std::string twice = Edited(file, "S1", "1500.00>2000");
    twice += twice.substr(twice.find('\n') + 1, twice.find('\n', twice.find('\n') + 1) - twice.find('\n'));
    Load(twice);
    EXPECT_EQ(Listed(), "2|Not possible|S1|Amount|1500.00|2000.00||The registration is in lines 2 and 7\n"
                        "7|Not possible|S1|Amount|1500.00|2000.00||The registration is in lines 2 and 7");
    std::string semicolons = "\xEF\xBB\xBFSIP Registration No;Amount;Notes;As Exported\n";
    semicolons += "S1;1600,50;mine;" + Stamp::Of(book[0], false).Text() + "\n";
    Load(semicolons);
    EXPECT_EQ(Listed(), "2|To be sent|S1|Amount|1500.00|1600.50|100.50|");
    EXPECT_EQ(StatusOf(run.Set())[2], "Not read: Notes.");
    const struct {
        const char *text, *fault;
    } rows[] = {
        {"", "The file is empty."},
        {"Amount,As Exported\n", "The column \"SIP Registration No\" is missing."},
        {"SIP Registration No,Amount\n", "The column \"User ID\" is missing."},
        {"SIP Registration No,Amount,Amount,As Exported\n", "The column \"Amount\" appears twice."},
        {"\xFF\xFE"
         "A\0,\0",
         "The file is in UTF-16. Save it as CSV in UTF-8."},
    };
    for (const auto& row : rows) {
        Load(row.text[0] == '\xFF' ? std::string(row.text, 6) : row.text);
        EXPECT_TRUE(NoticeOf(run.Set()).starts_with(row.fault)) << NoticeOf(run.Set());
        EXPECT_FALSE(run.CanSend());
    }
}

TEST_F(ChangesTest, SendsAfterOneQuestionAndListsWhatBecameOfEach) {
    std::string file = Edited(Edited(File(), "S1", "1500.00>2000"), "W4", "500.00>400");
    file = Edited(Edited(file, "Q3", "40>55"), "S5", "500.00>600");
    Load(Edited(file, "S2", ",12,>,24,"));
    yes = false;
    run.Send();
    EXPECT_EQ(questions.back(),
              "Send 4 modifications: Rs 500.00 more and 15 shares more a run, Rs 100.00 less a run of "
              "sales\n1 change the number of periods.\n1 more are not possible; the list says why."
              "\nProceed?");
    EXPECT_EQ(Modifications(), Texts());
    yes = true;
    // The list goes while the question is open.
    duringQuestion = [&] { Load(Edited(File(), "S1", "1500.00>2500")); };
    run.Send();
    EXPECT_EQ(Modifications(), Texts());
    Load(Edited(file, "S2", ",12,>,24,"));
    // It changes while the question is open, and is not sent; a second press asks nothing.
    duringQuestion = [&] {
        run.Send();
        Enter(book, "W4 C4 DEALER1 active 700.00 60");
    };
    run.Send();
    EXPECT_EQ(questions.size(), 3u);
    ASSERT_EQ(Modifications().size(), 3u);
    EXPECT_NE(Modifications()[0].find("amountOrQuantity=200000 totalPeriod=22"), std::string::npos)
        << Modifications()[0];
    EXPECT_NE(host.recordFiles.text.find(",edited.csv,2,C1,"), std::string::npos) << host.recordFiles.text;
    EXPECT_TRUE(run.IsUnderWay());
    EXPECT_FALSE(run.CanSend());
    Answer("echoedRequest=modify_sip_order registrationNumber=Q3 userText=too_many errorCode=105");
    Answer("echoedRequest=modify_sip_order registrationNumber=S1 userText=modified");
    host.recordTime.minute += 1;
    host.record.OnTime();
    run.Continue();
    EXPECT_FALSE(run.IsUnderWay());
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_TRUE(
        boxes[0].find("Modify: 3 of 4 requests were sent.\nThe server confirmed 1 and refused 1.\nIn doubt: 1")
        != std::string::npos)
        << boxes[0];
    EXPECT_EQ(Listed(), "2|Modified|S1|Amount|1500.00|2000.00|500.00|\n"
                        "3|In doubt|S2|Periods|12|24||\n"
                        "4|Refused|Q3|Quantity|40|55||too_many (code 105)\n"
                        "5|Not sent|W4|Amount|500.00|400.00|-100.00|Changed meanwhile\n"
                        "6|Not possible|S5|Amount|500.00|600.00||The registration is of another user: DEALER2");
    EXPECT_EQ(shown, Listed());
    // Nothing goes out a second time.
    run.Send();
    EXPECT_EQ(Modifications().size(), 3u);
    EXPECT_EQ(boxes.back(), "There is nothing to send.");
}

TEST_F(ChangesTest, APortionIsOnTheDiskBeforeItGoesOutAndAStopKeepsTheRest) {
    for (int i = 100; i < 500; ++i)
        Enter(book, "S" + std::to_string(i) + " C1 DEALER1 active 1000.00 12");
    std::vector<std::string> numbers;
    for (RecordId record = 0; record < book.Size(); ++record)
        numbers.emplace_back(book[record].Number());
    run.Step(numbers, {.hundredths = 1000});
    EXPECT_EQ(StatusOf(run.Set())[0], "403 to be sent: Rs 50,150.00 more a run, Rs 50.00 more a run of sales");
    host.recordFiles.writable = false;
    yes = false;
    run.Send();
    EXPECT_EQ(Modifications(), Texts());
    host.recordFiles.writable = yes = true;
    boxes.clear();
    otherBox = true;
    run.Send();
    run.Stop();
    EXPECT_EQ(Modifications(), Texts());
    otherBox = false;
    host.onRequest = [&] { run.Continue(); }; // the host lets the progress window in
    EXPECT_TRUE(run.OnBoxGone());
    EXPECT_EQ(Modifications().size(), 250u);
    EXPECT_EQ(run.Progress(), "Modifying 250 of 403");
    host.onRequest = nullptr;
    run.Stop();
    for (const std::string& number : numbers)
        Answer("echoedRequest=modify_sip_order registrationNumber=" + number + " userText=ok");
    EXPECT_FALSE(run.IsUnderWay());
    EXPECT_TRUE(StatusOf(run.Set())[0].starts_with("153 to be sent")) << StatusOf(run.Set())[0];
    EXPECT_TRUE(StatusOf(run.Set())[1].starts_with("250 modified")) << StatusOf(run.Set())[1];
    // A reading that is stopped leaves nothing, nor the rows before it.
    EXPECT_EQ(shownRows, numbers.size());
    for (int i = 500; i < 900; ++i)
        Enter(book, "S" + std::to_string(i) + " C1 DEALER1 active 1000.00 12");
    clockStep = 100;
    run.Load(File(), "edited.csv");
    EXPECT_TRUE(run.IsUnderWay());
    run.Stop();
    EXPECT_FALSE(run.IsUnderWay());
    EXPECT_EQ(shownRows, 0u);
    Load(Edited(File(), "S899", "1000.00>2000"));
    EXPECT_EQ(shownRows, 1u);
    open = false;
    run.Forget();
    EXPECT_EQ(run.Set(), nullptr);
}

TEST_F(ChangesTest, WhyNothingIsLeftToSendIsListed) {
    Load(Edited(File(), "S1", "1500.00>2000"));
    Enter(book, "S1 C1 DEALER1 Paused 1500.00 22");
    run.Send();
    EXPECT_EQ(boxes, Texts{"There is nothing to send."});
    EXPECT_NE(shown.find("Changed meanwhile"), std::string::npos) << shown;
}

TEST_F(ChangesTest, WhatIsOnItsWayIsJudgedNoMore) {
    session.m_nSipOperationMode = 1;
    Load(Edited(File(), "S1", "1500.00>2000"));
    run.Send();
    const std::string sent = Listed();
    EXPECT_TRUE(run.IsUnderWay() && !sent.starts_with("2|Not possible|")) << sent;
    Answer("echoedRequest=get_sip_operation_mode frequency=monthly minimumPeriods=30");
    EXPECT_EQ(Listed(), sent);
}

// What the server demands is known before anything is asked.
TEST_F(ChangesTest, TheServersLeastPeriodsAreAsked) {
    session.m_nSipOperationMode = 1;
    Load(Edited(File(), "S1", "1500.00>2000"));
    EXPECT_NE(host.requests.back().find("get_sip_operation_mode"), std::string::npos);
    EXPECT_TRUE(run.CanSend());
    Answer("echoedRequest=get_sip_operation_mode frequency=monthly minimumPeriods=30");
    EXPECT_EQ(Listed(), "2|Not possible|S1|Amount|1500.00|2000.00||Minimum SIP value is 30");
    // It goes by its own count of them.
    OrderChanges registered;
    registered[OrderField::installmentsRegistered] = "40";
    book[book.Find("S1")].Apply(registered);
    Load(Edited(File(), "S1", "1500.00>2000"));
    EXPECT_EQ(Listed(), "2|To be sent|S1|Amount|1500.00|2000.00|500.00|");
}

} // namespace
} // namespace planfold::test
