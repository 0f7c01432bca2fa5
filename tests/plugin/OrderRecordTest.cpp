// The order record: what stands in its files, what is read of files that were torn or edited, and what it knows
// of each order.
#include "plugin/record/OrderRecord.h"

#include "sdk/Tags.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <sstream>

namespace planfold::test {
namespace {

using Field = RecordField;

// "client=C1 value=5": texts by the columns' names, an event by its own.
class Words {
public:
    explicit Words(const std::string& text) {
        std::istringstream words(text);
        for (std::string word; words >> word;)
            m_words.push_back(word);
        std::istringstream columns{std::string(RecordHeading())};
        std::string column;
        for (std::size_t i = 0; std::getline(columns, column, ','); ++i)
            for (const std::string& word : m_words)
                if (word.starts_with(column.substr(0, column.find('\r')) + "="))
                    texts[static_cast<Field>(i)] = std::string_view(word).substr(word.find('=') + 1);
    }
    RecordTexts texts;

private:
    std::deque<std::string> m_words;
};

struct Files final : RecordFiles {
    bool HasFolder() const override { return true; }
    std::optional<std::string> Read(const LocalDateTime& of) override {
        if (of.Midnight() != day) return std::nullopt;
        return text;
    }
    bool Append(const LocalDateTime&, std::string_view lines, bool, std::size_t& whole) override {
        const std::size_t end = writable ? lines.size() : lines.substr(0, room).rfind('\n') + 1;
        whole = static_cast<std::size_t>(std::ranges::count(lines.substr(0, end), '\n'));
        text += lines.substr(0, end);
        return writable;
    }
    std::string text;
    LocalDateTime day{2027, 3, 5};
    bool writable = true;
    std::size_t room = 0; // for characters, where it is not writable
};

TEST(RecordLine, AnyTextComesBackAndNoLineSpoilsAnother) {
    std::mt19937 random(17);
    constexpr std::string_view signs = "ab,;\t\"'=+-@ \n\r\xE9";
    std::vector<std::string> written;
    std::string csv(RecordHeading());
    for (int line = 0; line < 400; ++line) {
        RecordTexts texts;
        std::array<std::string, kRecordFieldCount> kept;
        for (std::size_t i = 0; i < kRecordFieldCount; ++i) {
            for (auto left = random() % 6; left > 0; --left)
                kept[i] += signs[random() % signs.size()];
            if (static_cast<Field>(i) == Field::event) kept[i] = "refused";
            texts[static_cast<Field>(i)] = kept[i];
        }
        AppendRecordLine(texts, csv);
        std::string all;
        for (std::string& text : kept) {
            std::ranges::replace_if(
                text, [](char c) { return c == '\n' || c == '\r'; }, ' ');
            all += text + "|";
        }
        written.push_back(all);
    }
    // Cut short anywhere, only the last line can suffer.
    for (const std::size_t cut :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{9}, csv.size() / 2}) {
        RecordReader reader(std::string_view(csv).substr(0, csv.size() - cut));
        std::size_t line = 0;
        while (const auto texts = reader.Next()) {
            std::string all;
            for (std::size_t i = 0; i < kRecordFieldCount; ++i)
                all.append((*texts)[static_cast<Field>(i)]).push_back('|');
            ASSERT_LT(line, written.size());
            EXPECT_EQ(all, written[line++]);
        }
        EXPECT_LE(reader.UnreadLines(), 1u);
        EXPECT_TRUE(line == written.size() || cut > 1) << "a line is whole without its line feed";
    }
    EXPECT_EQ(csv.find("\n="), csv.npos);
}

TEST(RecordLine, IsReadWhateverASpreadsheetMadeOfTheFile) {
    const std::string heading =
        "time,event,order_id,registration,user,source,line,client,exchange,trading_symbol,side,"
        "invest_type,value,frequency,start,periods,text";
    EXPECT_EQ(RecordHeading(), heading + "\r\n");
    const struct {
        std::string file;
        const char* read; // order_id client text, of each line
        std::size_t unread;
    } cases[] = {
        {"", "", 0},
        {heading, "", 0},
        {heading + "\nt,sending,o1,,,,,C1,,,,,,,,,x\n", "o1 C1 x;", 0},
        {"\xEF\xBB\xBF" + heading + "\r\nt,sending,o1,,,,,C1\r\n", "o1 C1 ;", 0}, // empty columns dropped
        {"time;event;client;order_id;text\nt;sending;\"C;1\";o1;\"\"\"=x\"\n", "o1 C;1 \"=x;", 0},
        {"time;event;client;order_id;text\nt;sending;C1;o1;x\n2027-03-05 14:02:03,sending,o2,,,,,C2,,,,,,,,,\n",
         "o1 C1 x;o2 C2 ;", 0}, // and appended to
        {"\"time\"\t\"event\"\t\"order_id\"\nt\tsending\to1\n", "o1  ;", 0},
        {"time,event,other,client,order_id\nt,sending,z,C1,o1\nt,sendin,z,C1,o1\n", "o1 C1 ;", 1},
        {heading + "\nt,sending,o1,\"torn\r\n" + heading + "\nt,absent,o2,,,,,C2,,,,,,,,,\n", "o2 C2 ;", 1},
        {heading + "\nt,sending,o1,,,,,C1,nse_cm,A,B,value,5,daily,05-Mar-2027,1", "", 1}, // of 12 periods
        {heading + "\nt,registered,o1,SIP26" + std::string(kTornEnd) + "t,found,o2\n", "o2  ;", 1},
        {heading + "\nt,sending,o1,,,,,C1,,,,,,,,9,add_sip_orders: MKT C", "", 1}, // of CNC, and not sent
        {"t,sending,o1\n", "o1  ;", 0},                                            // no heading: ours
        {std::string("\0\0\0\n\xFF\xFE\n", 6), "", 2},
    };
    for (const auto& each : cases) {
        RecordReader reader(each.file);
        std::string read;
        while (const auto texts = reader.Next())
            read.append((*texts)[Field::orderId])
                .append(" ")
                .append((*texts)[Field::account])
                .append(" ")
                .append((*texts)[Field::text])
                .append(";");
        EXPECT_EQ(read, each.read) << each.file;
        EXPECT_EQ(reader.UnreadLines(), each.unread) << each.file;
    }
}

// Each event, and what is known after it: the orders in each state, and how many like the first may be
// registered.
TEST(OrderLedger, KnowsTheStateOfEachOrder) {
    const std::string plan = " client=C1 value=5 frequency=daily";
    const std::pair<std::string, const char*> steps[] = {
        {"event=registered order_id=o1 registration=S1" + plan, "0 0 0 0 0 0 like 0"}, // of a day before
        {"event=sending order_id=o1" + plan, "1 0 0 0 0 0 like 1"},
        {"event=registered order_id=o1 registration=S1" + plan, "0 1 0 0 0 0 like 1"},
        {"event=sending order_id=o2" + plan, "1 1 0 0 0 0 like 2"},
        {"event=in_doubt order_id=o2" + plan, "0 1 0 0 1 0 like 2"},
        {"event=absent order_id=o2" + plan, "0 1 0 0 0 1 like 1"},
        {"event=sending order_id=o2" + plan, "1 1 0 0 0 0 like 2"}, // again, under the same identifier
        {"event=found order_id=o2 registration=S2" + plan, "0 2 0 0 0 0 like 2"},
        {"event=in_doubt order_id=o2" + plan, "0 2 0 0 0 0 like 2"}, // another terminal knew less
        {"event=absent order_id=o2" + plan, "0 2 0 0 0 0 like 2"},
        {"event=sending order_id=o3" + plan, "1 2 0 0 0 0 like 3"},
        {"event=refused order_id=o3" + plan, "0 2 1 0 0 0 like 2"},
        {"event=sending" + plan, "1 2 1 0 0 0 like 3"}, // without identifiers
        {"event=sending" + plan, "2 2 1 0 0 0 like 4"},
        {"event=not_sent" + plan, "1 2 1 1 0 0 like 3"},
        {"event=sending registration=S1 value=7 text=modify_sip_order",
         "2 2 1 1 0 0 like 3"}, // a change is no order
        {"event=refused registration=S1 text=modify_sip_order:no", "1 2 2 1 0 0 like 3"},
        {"event=in_doubt registration=S1 text=pause_sip_order:", "1 2 2 1 0 0 like 3"},
        {"event=sending order_id=o4 client=C1 trading_symbol=A", "2 2 2 1 0 0 like 3"}, // without a frequency
        {"event=registered order_id=o4 registration=S4 client=C1 trading_symbol=A", "1 3 2 1 0 0 like 3"},
        {"event=sending order_id=o2" + plan, "2 3 2 1 0 0 like 4"}, // a host that gives one identifier twice
    };
    OrderLedger ledger;
    for (const auto& [event, known] : steps) {
        ledger.Take(Words(event).texts);
        std::string text;
        for (std::size_t i = 0; i < static_cast<std::size_t>(OrderState::count); ++i)
            text += std::to_string(ledger.Count(static_cast<OrderState>(i))) + " ";
        EXPECT_EQ(text + "like " + std::to_string(ledger.StandingLike(Words(plan).texts).size()), known)
            << event;
    }
    const RecordedOrder& order = ledger[ledger.Find(Words("order_id=o1").texts)];
    EXPECT_EQ(order.Text(Field::registration), "S1");
    EXPECT_EQ(order.Text(Field::account), "C1");
}

TEST(OrderRecord, IsOnTheDiskBeforeAnythingIsSentAndGoesOnAfterACrash) {
    Files files;
    LocalDateTime now{2027, 3, 5, 23, 59, 59};
    const auto clock = [&] { return now; };
    const RecordedOrder first(Words("order_id=o1 client=C1 frequency=daily").texts);
    const RecordedOrder second(Words("order_id=o2 client=C2 frequency=daily").texts);
    OrderRecord record(files, clock);
    files.writable = false;
    EXPECT_FALSE(record.Sending({&first, 1}));
    EXPECT_TRUE(record.Ledger().Orders().empty()) << "what is not on the disk was not sent";
    files.writable = true;
    EXPECT_TRUE(record.Sending(std::vector{first, second}));
    files.writable = false;
    now = {2027, 3, 6, 0, 0, 1};
    record.Tell(first, OrderEvent::registered, "SIP registered", "S1");
    files.writable = true;
    now.second = 2;
    record.Tell(second, OrderEvent::refused, "no");
    const std::string columns = ",,,,,C1,,,,,,daily,,,";
    EXPECT_EQ(files.text, "2027-03-05 23:59:59,sending,o1" + columns
                              + "\r\n2027-03-05 23:59:59,sending,o2,,,,,C2,,,,,,daily,,,\r\n"
                              + "2027-03-06 00:00:01,registered,o1,S1,,,,C1,,,,,,daily,,,SIP registered\r\n"
                              + "2027-03-06 00:00:02,refused,o2,,,,,C2,,,,,,daily,,,no\r\n");
    OrderRecord next(files, [] { return LocalDateTime{2027, 3, 5, 9, 0, 0}; });
    for (OrderRecord* each : {&record, &next}) {
        EXPECT_EQ(each->Ledger().Count(OrderState::done), 1u);
        EXPECT_EQ(each->Ledger().Count(OrderState::refused), 1u);
        EXPECT_EQ(each->Ledger()[each->Ledger().Find(first.Texts())].Text(Field::text), "SIP registered");
    }
}

TEST(OrderRecord, ReadsEachOfItsLinesOnceAndNotItsOwn) {
    Files files;
    LocalDateTime now{2027, 3, 5, 15, 0, 0};
    OrderRecord record(files, [&] { return now; });
    const RecordedOrder first(Words("order_id=o1 client=C1 frequency=daily").texts);
    const RecordedOrder second(Words("order_id=o2 client=C2 frequency=daily").texts);
    record.Sending(std::vector{first, second});
    record.Tell(first, OrderEvent::registered, "", "S1");
    // Another terminal writes the same line in the same second, but earlier.
    const std::string line = files.text.substr(files.text.find("2027-03-05 15:00:00,registered"));
    files.text.insert(files.text.find("2027-03-05 15:00:00,sending,o2"), line);
    record.Refresh();
    OrderRecord next(files, [&] { return now; });
    for (OrderRecord* each : {&record, &next}) {
        EXPECT_EQ(each->Ledger().Orders().size(), 2u);
        EXPECT_EQ(each->Ledger().Count(OrderState::done), 1u);
    }
    // It waits no longer when the clock is set back.
    now = {2027, 3, 5, 14, 0, 0};
    record.OnTime();
    now.second = 30;
    record.OnTime();
    EXPECT_EQ(record.Ledger().Count(OrderState::inDoubt), 1u);
}

// Of the day before only what is still open is known, with when it was sent.
TEST(OrderRecord, TakesWhatIsOpenOverMidnight) {
    Files files;
    OrderRecord record(files, [] { return LocalDateTime{2027, 3, 5, 23, 59, 50}; });
    const RecordedOrder orders[] = {RecordedOrder(Words("order_id=o1 client=C1 frequency=daily").texts),
                                    RecordedOrder(Words("order_id=o2 client=C2 frequency=daily").texts),
                                    RecordedOrder(Words("order_id=o3 client=C3 frequency=daily").texts)};
    record.Sending(orders);
    record.Tell(orders[0], OrderEvent::registered, "", "S1");
    record.Tell(orders[1], OrderEvent::refused, "no");
    OrderRecord next(files, [] { return LocalDateTime{2027, 3, 6, 9, 0, 0}; });
    ASSERT_EQ(next.Ledger().Orders().size(), 1u);
    EXPECT_EQ(next.Ledger()[0].Text(Field::account), "C3");
    EXPECT_EQ(next.Ledger()[0].SentAt(), "2027-03-05 23:59:50");
}

TEST(OrderRecord, DaysThatPassUnseenAreReadWithTheNext) {
    Files files;
    LocalDateTime now{2027, 3, 5, 18, 0, 0};
    OrderRecord record(files, [&] { return now; });
    record.Refresh();
    const struct {
        int written,
            asked; // days of the month: another terminal sent on the first, the record looks on the second
        bool isSeen;
    } rows[] = {{6, 8, true}, {18, 19, true}, {20, 20, true}, {19, 20, false}};
    for (const auto& [written, asked, isSeen] : rows) {
        Files others;
        now = {2027, 3, written, 10, 0, 0};
        OrderRecord another(others, [&] { return now; });
        const RecordedOrder order(Words("order_id=o" + std::to_string(written) + " frequency=daily").texts);
        another.Sending({&order, 1});
        files.text = others.text;
        files.day = now.Midnight();
        now = {2027, 3, asked, 11, 0, 0};
        record.Refresh();
        EXPECT_EQ(record.Ledger().Find(order.Texts()) != kNoOrder, isSeen) << written;
    }
}

// Of orders without identifiers a line that stands there twice would be two orders.
TEST(OrderRecord, WhatADiskTookBeforeItWasFullIsNotWrittenOnceMore) {
    const std::vector<RecordedOrder> twins(2, RecordedOrder(Words("client=C1 frequency=daily").texts));
    const RecordedOrder later(Words("client=C2 frequency=daily").texts);
    for (const std::size_t room : {0, 60, 120}) {
        for (const bool agrees : {false, true}) {
            SCOPED_TRACE(std::to_string(room) + (agrees ? ", agrees" : ", does not agree"));
            Files files;
            LocalDateTime now{2027, 3, 5, 15, 0, 0};
            OrderRecord record(files, [&] { return now; });
            files.writable = false;
            files.room = room;
            ASSERT_FALSE(record.Sending(twins));
            if (agrees)
                for (const OrderPlace place : record.SendingUnwritten(twins))
                    record.Tell(place, OrderEvent::registered, "", "S" + std::to_string(place));
            files.writable = true;
            now.second = 30;
            record.Tell(record.Sending({&later, 1})->front(), OrderEvent::registered, "", "S9");
            OrderRecord next(files, [&] { return now; });
            next.OnTime();
            const std::size_t written = agrees ? 2 : room / 60;
            EXPECT_EQ(next.Ledger().Orders().size(), written + 1);
            EXPECT_EQ(next.Ledger().Count(OrderState::done), agrees ? 3u : 1u);
            EXPECT_EQ(next.Ledger().Count(OrderState::notSent), agrees ? 0u : room / 60);
        }
    }
}

TEST(OrderRecord, WhatIsSentAgainWaitsAnew) {
    Files files;
    LocalDateTime now{2027, 3, 5, 15, 0, 0};
    OrderRecord record(files, [&] { return now; });
    const RecordedOrder cancel(Words("order_id=o1 registration=S1 text=cancel_sip_order").texts);
    record.Sending({&cancel, 1});
    record.Tell(cancel, OrderEvent::refused, "no");
    for (const auto& [second, inDoubt] : {std::pair(20, 0u), {40, 0u}, {50, 1u}}) {
        now.minute = second / 60;
        now.second = second % 60;
        if (second == 20) record.Sending({&cancel, 1});
        record.OnTime();
        EXPECT_EQ(record.Ledger().Count(OrderState::inDoubt), inDoubt) << second;
    }
    OrderRecord another(files, [&] { return now; });
    another.Refresh();
    EXPECT_EQ(another.Ledger().Count(OrderState::refused), 0u) << "of the first time";
}

TEST(OrderRecord, OnlyWhatWasSentAgainSinceItWasAbsentIsToldAsRegisteredTwice) {
    const struct {
        const char* steps; // s: sending C1, o: sending C2, with a place: a: absent, r: registered, x: refused
        int told;
    } rows[] = {
        {"s a0 s r0 r1", 1}, {"s s a0 r0 r1", 0}, {"o a0 s s r1 r2", 0},
        {"s a0 s r0 x1", 0}, {"s a0 s r1", 0},    {"s a0 o r0 r1", 0},
    };
    for (const auto& [steps, told] : rows) {
        Files files;
        LocalDateTime now{2027, 3, 5, 10, 0, 0};
        OrderRecord record(files, [&] { return now; });
        struct Listener final : RecordListener {
            void OnRegisteredTwice(OrderPlace, std::string_view) override { ++times; }
            int times = 0;
        } listener;
        record.AddListener(listener);
        std::istringstream words(steps);
        for (std::string step; words >> step; ++now.minute) {
            const auto place = static_cast<OrderPlace>(step.size() > 1 ? step[1] - '0' : 0);
            const RecordedOrder order(Words(step == "s" ? "client=C1 frequency=daily" : "client=C2").texts);
            if (step.size() == 1) record.Sending({&order, 1});
            if (step[0] == 'a')
                record.Tell(place, OrderEvent::inDoubt, ""), record.Tell(place, OrderEvent::absent, "");
            if (step[0] == 'r') record.Tell(place, OrderEvent::registered, "", "S" + step.substr(1));
            if (step[0] == 'x') record.Tell(place, OrderEvent::refused, "no");
        }
        EXPECT_EQ(listener.times, told) << steps;
    }
}

// Some hosts give the same to all.
TEST(OrderRecord, OrdersUnderOneIdentifierAreKnownByWhatTheyAskFor) {
    Files files;
    const std::string plan = " order_id=o1 frequency=daily client=";
    for (const char* event : {"sending C1", "sending C2", "registered C1"}) {
        const std::string text = event;
        const std::size_t blank = text.find(' ');
        AppendRecordLine(
            Words("event=" + text.substr(0, blank) + " registration=S1" + plan + text.substr(blank + 1)).texts,
            files.text);
    }
    OrderRecord record(files, [] { return LocalDateTime{2027, 3, 5}; });
    struct Listener final : RecordListener {
        void OnRegisteredTwice(OrderPlace, std::string_view) override { ADD_FAILURE(); }
    } listener;
    record.AddListener(listener);
    EXPECT_EQ(record.Ledger()[0].State(), OrderState::done);
    EXPECT_EQ(record.Ledger()[1].State(), OrderState::sent);
    const Words asked("frequency=daily client=C2"), other("frequency=daily client=C1");
    record.OnRow({.orderId = "o1", .registration = "S2", .asked = asked.texts});
    record.OnRow({.orderId = "o1", .registration = "S3", .asked = other.texts});
    EXPECT_EQ(record.Ledger()[1].State(), OrderState::done);
    EXPECT_EQ(record.Ledger().Find(Words("order_id=o1").texts), kNoOrder);
}

} // namespace
} // namespace planfold::test
