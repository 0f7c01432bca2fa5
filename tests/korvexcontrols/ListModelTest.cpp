// The list without its window, beside a plain model and by tables.
#include "host/korvexcontrols/model/Export.h"
#include "host/korvexcontrols/model/KeptLayout.h"
#include "host/korvexcontrols/model/ListSums.h"
#include "tests/support/ListPair.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <sstream>

using namespace korvex;

namespace {

// Few records meet every case of selection and filters; many fill blocks, keys and slots that are closed up.
TEST(ListModel, DoesWhatAPlainListDoes) {
    struct Run {
        std::uint32_t records;
        bool filled;
        int steps;
    };
    for (const Run& run : {Run{6, false, 20000}, Run{40, false, 3000}, Run{1500, true, 150}}) {
        for (unsigned seed = 1; seed <= 2; ++seed) {
            std::mt19937 random(seed);
            const auto next = [&] { return static_cast<unsigned>(random() % 256); };
            test::ListPair pair(run.records);
            if (run.filled) pair.Fill(next);
            for (int step = 0; step < run.steps; ++step) {
                pair.Step(next);
                ASSERT_EQ(pair.Difference(), "")
                    << run.records << " records, seed " << seed << ", step " << step;
            }
        }
    }
}

// In each round a few records more stay behind while the others move to the end: blocks that hold next to
// nothing become many.
TEST(SortedRows, KeepsItsOrderWhenNearlyAllMovesOn) {
    constexpr std::uint32_t count = 4000, kinds = 40;
    std::vector<std::uint32_t> records(count);
    std::iota(records.begin(), records.end(), 0u);
    std::vector<std::uint64_t> keys(records.begin(), records.end());
    SortedRows rows;
    rows.Assign(records, keys);
    for (std::uint32_t round = 1; round < kinds; ++round)
        for (std::uint32_t record = 0; record < count; ++record) {
            if (record % kinds < round) continue;
            rows.Erase(record);
            keys[record] += count;
            ASSERT_EQ(rows.Insert(record, keys[record], [](std::uint32_t) { return false; }), count - 1);
        }
    std::ranges::sort(records, {}, [&](std::uint32_t record) { return keys[record]; });
    for (std::uint32_t row = 0; row < count; ++row) {
        ASSERT_EQ(rows.RecordAt(row), records[row]);
        ASSERT_EQ(rows.RowOf(records[row]), row);
    }
}

TEST(ColumnFilter, ComparesExactlyAndSaysWhatItCannotRead) {
    using enum FilterOperator;
    struct Row {
        FilterOperator id;
        const char *value, *second;
        const char* passing; // cells between bars
        const char* failing;
        const char* fault = "";
    };
    const Row rows[] = {
        {contains, "Ten", "", "ten|mitTEN|often", "te|t en|"},
        {containsNot, "Ten", "", "te|t en|", "ten|mitTEN"},
        // Long cells are looked at in pieces.
        {contains, "Ten", "", "TEN------------------|---------------tEn---|--------------------teN",
         "te-------------------|---------------te----|-------------------t-en"},
        {contains, "A[", "", "--------a[|a[--------", "--------a{|--------[a"},
        {contains, "p", "", "--------P|P--------|--------p-------", "----------------0"},
        {equalsText, "", "", "", " |a"},
        {equalsText, "aB", "", "ab|AB", "a|abc|ab |"},
        {exactly, "Ab", "", "Ab", "ab|AB|Ab |"},
        {equals, "0.1", "", "0.10|.1|+00.1| 0.1 ", "0.10000000000000000001|0.1x|1e-1|-0.1|"},
        {equalsNot, "1", "", "0|2|x", "1|1.0"},
        {less, "-5", "", "-5.01|-10", "-5|-4.99|x|"},
        {atMost, "90071992547409920001", "", "90071992547409920001|1", "90071992547409920002"},
        {greater, "9.99", "", "10|9.991", "9.99|9|-10"},
        {between, "-1", "1", "-1|0|1.0", "-1.0001|1.0001|x"},
        {between, "2", "1.99", "", "", "The second number is less than the first."},
        {between, "1", "", "", "", "\"\" is not a number."},
        {atLeast, "1,000", "", "", "", "\"1,000\" is not a number."},
        {contains, "", "", "", "", "Type the text to look for."},
        {on, "05/03/2027", "", "05-Mar-2027|05-MAR-2027 23:59:59|2027-03-05",
         "06-Mar-2027|05-Mar-2027x|05-Mar-2027 10:3|5|"},
        {before, "today", "", "09-Jun-2027|31-Dec-1969", "10-Jun-2027|"},
        {after, "2024-02-29", "", "01-Mar-2024", "29-Feb-2024 10:00|30-Feb-2025|01-Xyz-2025|1-1-1|01-Mar/2024"},
        {betweenDates, "1-Mar-2027", " today ", "01-Mar-2027|10-Jun-2027", "28-Feb-2027|11-Jun-2027"},
        {nextDays, "", "", "10-Jun-2027|17-Jun-2027", "09-Jun-2027|18-Jun-2027"},
        {betweenDates, "02-Mar-2027", "01-Mar-2027", "", "", "The second date is before the first."},
        {on, "31-Feb-2027", "", "", "", "\"31-Feb-2027\" is not a date such as 05-Mar-2027."},
    };
    const std::int64_t today = DayOf(*ReadDate("10-Jun-2027"));
    for (const Row& row : rows) {
        const FilterInput input{row.id, row.value, row.second};
        ASSERT_EQ(ColumnFilter::FaultOf(input, today), row.fault) << row.value;
        if (*row.fault) continue;
        const ColumnFilter filter(0, input, today);
        for (const bool passes : {true, false}) {
            std::istringstream cells(std::string(passes ? row.passing : row.failing) + "|");
            for (std::string cell; std::getline(cells, cell, '|');)
                EXPECT_EQ(filter.Passes(cell), passes) << row.value << " on \"" << cell << '"';
        }
    }
}

TEST(ContainsFolded, FindsATextAtEachPlace) {
    for (const std::string_view text : {"q", "qz", "quartz", "quartz-yz", "quartz-quiz-z"})
        for (std::size_t at = 0; at < 40; ++at) {
            const std::string before(at, 'x'), behind(40 - at, 'X');
            std::string found = before + std::string(text) + behind, close = found;
            close[at + text.size() / 2] = '_';
            EXPECT_TRUE(ContainsFolded(found, text)) << found;
            EXPECT_FALSE(ContainsFolded(close, text)) << close;
        }
}

TEST(OperatorsFor, FollowWhatTheCellsHold) {
    struct Row {
        ValueType type;
        std::vector<std::string_view> cells;
        std::string_view first;
    };
    const Row rows[] = {
        {ValueType::text, {"05-Mar-2027", "", "06-Mar-2027"}, "on"},
        {ValueType::text, {"05-Mar-2027", "soon"}, "contains"},
        {ValueType::text, {"12", "6"}, "="},
        {ValueType::text, {"12", "05-Mar-2027"}, "contains"},
        {ValueType::text, {"", ""}, "contains"},
        {ValueType::identifier, {"12"}, "contains"},
        {ValueType::date, {}, "on"},
        {ValueType::amount, {}, "="},
    };
    for (const Row& row : rows)
        EXPECT_EQ(OperatorsFor(row.type, ContentOf(row.cells)).front().name, row.first) << row.cells.size();
}

TEST(AfterClick, TurnsRoundAddsAndTakesAway) {
    const struct {
        const char* before; // columns, descending ones in brackets
        std::int32_t column;
        bool adding;
        const char* after;
    } rows[] = {
        {"", 1, false, "1 "},        {"1 ", 1, false, "(1) "},  {"(1) ", 1, false, ""},
        {"1 ", 2, false, "2 "},      {"1 ", 2, true, "1 2 "},   {"1 2 ", 2, false, "2 "},
        {"1 2 ", 1, true, "(1) 2 "}, {"(1) 2 ", 1, true, "2 "},
    };
    for (const auto& row : rows) {
        std::vector<SortColumn> before;
        std::istringstream words(row.before);
        for (std::string word; words >> word;) {
            const bool descending = word[0] == '(';
            before.push_back({word[descending ? 1 : 0] - '0', descending, ValueType::text});
        }
        std::string after;
        for (const SortColumn& by : AfterClick(before, row.column, ValueType::text, row.adding))
            after += by.descending ? "(" + std::to_string(by.column) + ") " : std::to_string(by.column) + " ";
        EXPECT_EQ(after, row.after) << row.before << row.column << row.adding;
    }
}

TEST(Export, QuotesAndDisarmsCells) {
    struct Row {
        std::string cell;
        ValueType type;
        const char *csv, *tabbed;
    };
    using enum ValueType;
    const Row rows[] = {
        {"plain", text, "plain", "plain"},
        {"a,b", text, "\"a,b\"", "a,b"},
        {"say \"x\"", text, "\"say \"\"x\"\"\"", "say \"x\""},
        {"two\r\nlines\tand", text, "\"two\r\nlines\tand\"", "two  lines and"},
        {"=1+1", text, "'=1+1", "'=1+1"},
        {"\tx", text, "'\tx", "' x"},
        {"-5", text, "'-5", "'-5"},
        {"-5.50", amount, "-5.50", "-5.50"},
        {"-5+cmd", amount, "'-5+cmd", "'-5+cmd"},
        {"", amount, "", ""},
        {"05-Mar-2027", text, "2027-03-05", "05-Mar-2027"},
        {"5/3/2027 9:15", text, "5/3/2027 9:15", "5/3/2027 9:15"},
        {"05/03/2027 09:15", ValueType::date, "2027-03-05 09:15", "05/03/2027 09:15"},
        {"05-Mar-2027", ValueType::identifier, "05-Mar-2027", "05-Mar-2027"},
    };
    struct Source final : CellSource {
        void Cells(std::span<const std::uint32_t> records, std::int32_t, std::string_view* texts) override {
            std::fill_n(texts, records.size(), cell);
        }
        std::string_view cell;
    } source;
    for (const Row& row : rows) {
        source.cell = row.cell;
        const ExportColumn columns[] = {{0, "=H", row.type}, {1, "I", row.type}};
        const auto text = [&](Notation notation) {
            RowsText out(notation, {columns, columns + 2}, {0, 1});
            out.AddSome(source, [](std::uint32_t record) { return record == 1; });
            return out.Text();
        };
        EXPECT_EQ(text(Notation::csv), std::string("'=H,I\r\n") + row.csv + "," + row.csv + "\r\n");
        EXPECT_EQ(text(Notation::tabbed), std::string("'=H\tI\r\n") + row.tabbed + "\t" + row.tabbed + "\r\n");
    }
}

TEST(ColumnsState, IsReadWholeOrNotAtAll) {
    const ColumnsState state{{2, 0, 1}, {0, 10000, 80}};
    const std::string line = WriteColumns(state);
    EXPECT_EQ(ReadColumns(line, 3), state);
    const std::string bad[] = {"0,1,2",        "0,1,2;1,2",    "0,1;1,2,3",       "0,1,1;1,2,3",  "0,1,3;1,2,3",
                               "0,1,2;1,2,-3", "0,1,2;1,2,3,", "0,1,2;1,2,10001", "x0,1,2;1,2,3", "0,1,2;1,,3"};
    for (const std::string& damaged : bad)
        EXPECT_FALSE(ReadColumns(damaged, 3)) << damaged;
    for (const std::size_t columns : {0, 2, 4})
        EXPECT_FALSE(ReadColumns(line, columns));
}

TEST(RowsState, IsReadWholeOrNotAtAll) {
    const RowsState state{{{2, true}, {0, false}},
                          {{1, {FilterOperator::contains, "a;b|c,d%=\r\n", ""}},
                           {0, {FilterOperator::betweenDates, "01-Mar-2027", "today"}}},
                          "Due; Today",
                          {"Mine | Only", "x"}};
    const std::string line = WriteRows(state);
    EXPECT_EQ(ReadRows(line, 3), state);
    EXPECT_EQ(ReadRows(WriteRows({}), 3), RowsState());
    EXPECT_FALSE(ReadRows(line, 2));
    for (const char* damaged : {"", ";;", ";;;;", "0;;;", "+;;;", "0+|;;;", "-1+;;;", ";0,0,x;;", ";0,99,x,;;",
                                ";0,4,many,;;", ";0,16,C001,;;", ";3,0,x,;;"})
        EXPECT_FALSE(ReadRows(damaged, 3)) << damaged;
}

// Whatever happens between portions, the sums become those of the rows.
TEST(ListSums, BecomeThoseOfTheRows) {
    struct Source final : CellSource {
        std::vector<std::array<std::string, 3>> cells;
        void Cells(std::span<const std::uint32_t> records, std::int32_t column,
                   std::string_view* texts) override {
            for (const std::uint32_t record : records)
                *texts++ = cells[record][static_cast<std::size_t>(column)];
        }
    } source;
    constexpr std::uint32_t count = 60;
    source.cells.resize(count);
    ListModel model(source);
    ListSums sums(model, source);
    std::mt19937 random(7);
    const auto next = [&](unsigned most) { return static_cast<std::uint32_t>(random() % most); };
    const auto fill = [&](std::uint32_t record) {
        constexpr const char* sides[] = {"SIP", "SWP", ""};
        source.cells[record] = {sides[next(3)], next(4) ? std::to_string(next(90000)) + ".05" : "n/a",
                                std::to_string(next(50))};
    };
    const auto plain = [&](const std::vector<std::uint32_t>& records) {
        std::map<std::string, std::array<std::uint64_t, 3>> sides;
        for (const std::uint32_t record : records) {
            auto& [rows, paise, quantity] = sides[source.cells[record][0]];
            const std::string& amount = source.cells[record][1];
            ++rows;
            if (amount != "n/a") paise += std::stoull(amount) * 100 + 5;
            quantity += std::stoull(source.cells[record][2]);
        }
        return sides;
    };
    const auto told = [&](const ListSums::Sides& all) {
        std::map<std::string, std::array<std::uint64_t, 3>> sides;
        for (const auto& [name, rows, paise, quantity] : all)
            if (rows || paise || quantity) sides[name] = {rows, paise, quantity};
        return sides;
    };
    const auto step = [&] {
        const std::uint32_t record = next(count);
        const FilterInput filter{FilterOperator::greater, "20", {}};
        switch (next(9)) {
        case 0:
        case 1:
            if (!model.Contains(record)) fill(record);
            return sums.Note(model.InsertFront(record), record);
        case 2:
            return sums.Note(model.Remove(record), record);
        case 3:
        case 4:
            fill(record);
            return sums.Note(model.Repaint(record), record);
        case 5:
            return sums.Note(model.SetFilter(2, next(2) ? &filter : nullptr), kNone);
        case 6:
            return sums.Note(model.SetSort({{static_cast<std::int32_t>(next(3)), false, ValueType::number}}),
                             kNone);
        case 7:
            if (next(20) == 0) return sums.Note(model.RemoveAll(), kNone);
            [[fallthrough]];
        default:
            model.SelectRows(next(count), next(count), next(3) != 0);
            sums.SelectionChanged();
        }
    };
    for (std::uint32_t record = 0; record < count; record += 2)
        model.InsertFront((fill(record), record));
    sums.Begin({0, 1, 2});
    for (int round = 0; round < 20000; ++round) {
        step();
        sums.Work(next(4));
        if (next(4)) continue;
        while (sums.Work(1 + next(9)))
            ASSERT_FALSE(sums.IsComplete());
        ASSERT_EQ(told(sums.Shown()), plain(model.Rows().ShownRecords())) << round;
        if (model.Selection().Count() > 1) {
            ASSERT_EQ(told(sums.Selected()), plain(model.SelectedRecords())) << round;
        }
    }
    ListModel many(source);
    ListSums merged(many, source);
    for (std::uint32_t record = 0; record < count; ++record) {
        source.cells[record] = {std::to_string(record % 6), "1", "1"};
        many.InsertFront(record);
    }
    merged.Begin({0, 1, 2});
    while (merged.Work(count)) {
    }
    ASSERT_EQ(merged.Shown().size(), ListSums::kMostSides);
    EXPECT_EQ(merged.Shown().back().rows, 30u) << "of three sides";
}

TEST(SplitPosition, KeepsItsShareAndTheLeastLengths) {
    constexpr SplitPosition::Least least{100, 50};
    struct Row {
        int share, room, first;
    };
    for (const Row& row :
         {Row{6000, 333, 200}, {0, 1000, 100}, {10000, 1000, 950}, {6000, 90, 60}, {6000, -5, 0}})
        EXPECT_EQ(SplitPosition(row.share).First(row.room, least), row.first)
            << row.share << " of " << row.room;
    for (int room = 120; room < 3000; room += 97)
        for (int first = 100; first <= room - 50; ++first) {
            SplitPosition position(0);
            position.MoveTo(first, room, least);
            ASSERT_EQ(position.First(room, least), first) << "stands where it was put, in " << room;
        }
    for (const char* text : {"", "x", "-1", "10001", "12 ", "99999999999"})
        EXPECT_FALSE(ReadSplit(text)) << text;
}

} // namespace
