// Basket files: what becomes of each line, what is told about it, and that what is written loads again.
#include "plugin/base/Dates.h"
#include "plugin/basket/BasketFile.h"

#include <gtest/gtest.h>

#include <ranges>

namespace planfold {
namespace {

using Field = BasketField;

class Scrips final : public ScripSource {
public:
    std::optional<ScripDetails> Details(std::string_view exchange, std::string_view symbol) override {
        ++lookups;
        if (exchange != "nse_cm") return std::nullopt;
        if (symbol == "BYTEFIN-EQ" || symbol == "bytefin-eq")
            return ScripDetails{2, 0, 100.0, 5, "1234", "BYTEFIN-EQ"};
        if (symbol == "FINE-EQ") return ScripDetails{4, 0, 10000.0, 25, "77", "FINE-EQ"};
        if (symbol == "ODD-EQ") return ScripDetails{-1, 0, -1.0, -5, "78", "ODD-EQ"};
        return std::nullopt;
    }
    ScripNames Names(std::string_view exchange, std::string_view series, std::string_view symbol) override {
        if (exchange != "bse_cm" || series != "EQ" || symbol != "KNOWN") return {};
        return {"KNOWN-EQ", "42", "Known Ltd"};
    }

    int lookups = 0;
};

// What is told of the lines in the order in which it comes, a text each; of a line that is refused its report.
class Recorder final : public BasketSink {
public:
    explicit Recorder(std::string_view text, const BasketRules& rules) : load(text, rules, scrips, *this) {
        while (load.Read(2)) {
        }
    }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void OnRow(const BasketTexts& texts) override { rows.emplace_back(texts, 7); }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override {
        told.push_back(line.report);
        numbers.push_back(line.number);
    }
    void OnNotice(std::string_view text) override { told.push_back("box " + std::string(text)); }
    void OnLog(std::string_view text) override { told.push_back("log " + std::string(text)); }

    Scrips scrips;
    std::vector<sBasketOrderData> rows;
    std::vector<std::string> told;
    std::vector<int> numbers;
    BasketReader load;
};

const BasketRules kMonths{{"CNC", "MIS"}, {}, false, {}, ToSeconds({2027, 3, 4, 15, 30, 0})};
const BasketRules kServer{
    {"CNC"}, {"Daily", "monthly", "hourly"}, true, {5, 4, 6, 2}, ToSeconds({2027, 3, 4, 15, 30, 0})};

using Changes = std::vector<std::pair<int, std::string>>; // column, text
using Texts = std::vector<std::string>;

std::string Line(const Changes& changes, std::size_t commas = 19) {
    Texts columns = {"CL100",  "nse_cm", "EQ",      "BYTEFIN", "1234",        "BYTEFIN-EQ", "CNC",
                     "150000", "",       "monthly", "",        "05/Mar/2027", "12",         "MKT",
                     "B",      "",       "",        "",        "value"};
    for (const auto& [column, text] : changes)
        columns[static_cast<std::size_t>(column)] = text;
    columns.resize(commas + 1);
    std::string line = columns.front();
    for (const std::string& column : columns | std::views::drop(1))
        line += ',' + column;
    return line;
}
Changes Shares(const std::string& text) {
    return {{18, "qty"}, {8, text}};
}

// "box" and "log" begin texts that come before the report; any other text is the reason in it.
void ExpectTold(const Recorder& recorder, const std::string& line, const Texts& outcome) {
    Texts told;
    std::string reason;
    for (const std::string& text : outcome) {
        reason = text.starts_with("box ") ? "" : text.substr(text.starts_with("log ") ? 4 : 0);
        if (reason != text) told.push_back(text);
    }
    if (!outcome.empty())
        told.push_back(line + "failed to load"
                       + (reason.empty() ? "" : " due to " + reason + " In Line Number 1"));
    EXPECT_EQ(recorder.told, told) << line;
    EXPECT_EQ(recorder.rows.size(), outcome.empty()) << line;
    EXPECT_EQ(recorder.load.LastReason(), reason) << line;
}

TEST(BasketLine, IsTakenOrRefusedByEachRuleAtItsBounds) {
    const Texts row, badAmount = {"InValid Amount"}, badPeriod = {"Invalid Period"}, badDate = {"Invalid Date"},
                     badQuantity = {"InValid Quantity"}, badToken = {"InValid Token"},
                     months = {"Period Should be Between 1 and 60"}, zero = {"Quantity cannot be zero"};
    const Texts tooMany = {
        "log Quantity should not be more than integer max value(2147483647) In Line Number 1"};
    const auto tooDear = [](const char* most) {
        return Texts{std::string("log Amount exceeds the long variable range, Max Price is : ") + most
                     + " In Line Number 1"};
    };
    const Changes fine = {{5, "FINE-EQ"}, {4, "77"}};
    // Without details, and so by series and symbol.
    const auto named = [](const Changes& more) {
        Changes changes = {{1, "bse_cm"}, {3, "KNOWN"}, {5, "KNOWN-EQ"}, {4, "42"}};
        changes.insert(changes.end(), more.begin(), more.end());
        return changes;
    };
    struct Case {
        const BasketRules& rules;
        Changes changes;
        Texts outcome;
    };
    const Case cases[] = {
        {kMonths, {}, row},
        {kMonths, {{5, "bytefin-eq"}}, badToken},
        {kMonths, named({}), row},
        {kMonths, named({{4, ""}}), badToken},
        {kMonths, named({{5, "OTHER-EQ"}}), badToken},
        {kMonths, named({{3, "OTHER"}}), badToken},
        {kMonths, named({{2, "BE"}}), badToken},
        {kMonths, named({{7, "2147483647"}}), row},
        {kMonths, named({{7, "2147483648"}}), {"log Amount exceeds the long variable range In Line Number 1"}},
        {kMonths, {{1, "bse_cm"}}, badToken},
        {kMonths, {{4, "1234 "}}, badToken},
        {kMonths, {{11, "04/Mar/2027"}}, badDate},
        {kMonths, {{11, "5-3-27"}}, row},
        {kMonths, {{11, "05/Mar/"}}, badDate},
        {kMonths, {{11, "29/Feb/2028"}}, row},
        {kMonths, {{12, ""}}, badPeriod},
        {kMonths, {{12, "0"}}, badPeriod},
        {kMonths, {{12, "1.5"}}, badPeriod},
        {kMonths, {{12, "00"}}, months},
        {kMonths, {{12, "1"}}, row},
        {kMonths, {{12, "60"}}, row},
        {kMonths, {{12, "61"}}, months},
        {kMonths, {{12, "99999999999999999999"}}, months},
        {kServer, {{12, "5"}}, {"box Minimum SIP value is 6"}},
        {kServer, {{12, "6"}}, row},
        {kServer, {{12, "61"}}, row},
        {kServer, {{9, "daily"}, {12, "4"}}, {"box Minimum SIP value is 5"}},
        {kServer, {{9, "daily"}, {12, "5"}}, row},
        {kServer, {{9, "DAILY"}, {12, "1"}}, {"InValid Frequency."}},
        {kServer, {{9, "hourly"}}, {"InValid Frequency."}},
        {kServer, {{9, "yearly"}, {14, "x"}}, {"box yearly Frequency not set"}},
        {kServer, {{9, "%s"}}, {"box %s Frequency not set"}},
        {kMonths, {{14, "b"}}, {"InValid Action Type."}},
        {kMonths, {{14, "S"}}, row},
        {kMonths, {{18, "Value"}}, {"InValid Invest Type."}},
        {kMonths, {{9, "Monthly"}}, {"InValid Frequency."}},
        {kMonths, {{13, "mkt"}}, {"InValid Order Type"}},
        {kMonths, {{6, "cnc"}}, {"InValid Product"}},
        {kMonths, {{6, "MIS"}}, row},
        {kMonths, Shares(""), badQuantity},
        {kMonths, Shares("."), badQuantity},
        {kMonths, Shares("0"), badQuantity},
        {kMonths, Shares("-5"), badQuantity},
        {kMonths, Shares("00"), zero},
        {kMonths, Shares("a5"), zero},
        {kMonths, Shares("5a"), badQuantity},
        {kMonths, Shares("2147483647"), row},
        {kMonths, Shares("2147483648"), tooMany},
        {kMonths, {{7, ""}}, badAmount},
        {kMonths, {{7, "0"}}, {"Enter valid Amount"}},
        {kMonths, {{7, "abc"}}, {"Enter valid Amount"}},
        {kMonths, {{7, "-100"}}, badAmount},
        {kMonths, {{7, "1e999"}}, badAmount},
        {kMonths, {{7, "2147483647"}}, row},
        {kMonths, {{7, "2147483648"}}, tooDear("21474836.45")},
        {kMonths, {fine[0], fine[1], {7, "2147483648"}}, tooDear("214748.3625")},
        {kMonths, {fine[0], fine[1], {7, "2147483647"}}, row},
        // A record that makes no sense is read as rupees and paise.
        {kMonths, {{5, "ODD-EQ"}, {4, "78"}, {7, "2147483648"}}, tooDear("21474836.47")},
        {kMonths, {{5, "ODD-EQ"}, {4, "78"}, {7, "2147483647"}}, row},
    };
    for (const Case& each : cases) {
        const std::string line = Line(each.changes);
        ExpectTold(Recorder(line, each.rules), line, each.outcome);
    }
}

TEST(BasketLine, TellsTheFirstOfTwoFaults) {
    const std::tuple<int, const char*, const char*> faults[] = {
        {4, "x", "InValid Token"},        {11, "", "Invalid Date"},         {12, "0", "Invalid Period"},
        {14, "", "InValid Action Type."}, {18, "", "InValid Invest Type."}, {9, "", "InValid Frequency."},
        {13, "", "InValid Order Type"},   {6, "", "InValid Product"},       {7, "", "InValid Amount"},
    };
    for (const auto& [column, text, reason] : faults)
        for (const auto& [otherColumn, otherText, otherReason] : faults) {
            if (&otherColumn < &column) continue;
            const std::string line = Line({{column, text}, {otherColumn, otherText}});
            ExpectTold(Recorder(line, kMonths), line, {reason});
        }
}

TEST(BasketLine, IsCutIntoItsColumns) {
    const std::string name(127, 'n'), filled = Line({}) + std::string(1022 - Line({}).size(), 'x');
    const struct {
        std::string text;
        std::size_t rows;
        int lines = 1;
    } cases[] = {
        {"", 0, 0},
        {"\r\n\n", 0, 2},
        {Line({}, 18), 0},
        {Line({}, 19), 1},
        {Line({}, 21), 0},
        {Line({{0, ""}}), 0},
        {Line({}) + "\r\n" + Line({}) + "\r\n", 2, 2},
        {Line({{12, "12\r"}}), 0}, // the columns behind it are empty
        {Line({{18, "value\rx"}}), 1},
        {Line({{18, std::string("value\0x", 7)}}), 0}, // no 19 commas before the zero
        {Line({}) + std::string("\0,,,", 4), 1},
        {Line({{0, name}}), 1},
        {Line({{0, name + 'n'}}), 0},
        {Line({{0, "\xe9\xff\x80"}}), 1},
        {filled, 1},
        {filled + '\n' + filled + "x\n", 1, 2},
        {std::string(1 << 20, 'x') + '\n' + Line({}), 1, 2},
    };
    for (const auto& each : cases) {
        const Recorder recorder(each.text, kMonths);
        EXPECT_EQ(recorder.rows.size(), each.rows) << each.text.substr(0, 200);
        EXPECT_EQ(recorder.load.LinesRead(), each.lines) << each.text.substr(0, 200);
        EXPECT_EQ(recorder.load.LastReason().empty(), recorder.told.empty());
    }
}

TEST(BasketLine, IsNoneOfAFileInUtf16) {
    const auto wide = [](bool bigEndian, const std::string& text) {
        std::string result;
        for (const char c : text)
            result.append({bigEndian ? '\0' : c, bigEndian ? c : '\0'});
        return result;
    };
    const std::string line = Line({});
    const struct {
        std::string text;
        bool isUtf16;
    } cases[] = {
        {"\xFE\xFF" + wide(true, line), true},
        {wide(false, line), true},
        {wide(true, line), true},
        // Half of it beyond the first code page, and a letter whose low byte is zero.
        {wide(false, line) + std::string(line.size() * 2 - 40, '\x20') + std::string("\0\1", 2), true},
        {"", false},
        {line, false},
        {"\xEF\xBB\xBF" + line, false},
        {line + std::string(40, '\0'), false},
        {std::string("a\0b,", 4) + line, false},
    };
    for (const auto& each : cases)
        EXPECT_EQ(base::IsUtf16(each.text), each.isUtf16) << each.text;
}

TEST(BasketLine, IsBroughtIntoTheFormOfARow) {
    const struct {
        Changes changes;
        Field field;
        const char* text;
    } cases[] = {
        {{{16, "x"}}, Field::customerFirm, "C"},
        {{{17, "IOC"}}, Field::validity, "DAY"},
        {{{15, "SELL"}}, Field::sideWord, "BUY"},
        {{{14, "S"}}, Field::sideWord, "SELL"},
        {{{11, "05-Mar-27"}}, Field::startDateText, "05/Mar/2027"},
        {{{11, "05-Mar-27-"}}, Field::startDateText, "05/Mar/27/"},
        {{{7, "150000.6"}}, Field::amount, "150001"},
        {{{7, "  1.5e5x"}}, Field::amount, "150000"},
        {{}, Field::userText, "NA"},
        {{{0, "CL 7 "}}, Field::account, "CL 7 "},
        {{{0, "\xEF\xBB\xBF"
              "CL7"}},
         Field::account,
         "CL7"},
    };
    for (const auto& each : cases) {
        BasketRules rules = kMonths;
        if (each.field == Field::startDateText) rules.now = INT64_MIN;
        const Recorder recorder(Line(each.changes), rules);
        ASSERT_EQ(recorder.rows.size(), 1u) << each.text;
        EXPECT_EQ(recorder.rows[0].Text(each.field), each.text);
    }
    const Recorder marked(BasketFileText(Line({{0, "\xEF\xBB\xBF"}})), kMonths);
    EXPECT_EQ(marked.rows[0].Text(Field::account), "\xEF\xBB\xBF") << "a client, not the mark of a file";
    EXPECT_EQ(Recorder(Line({}), kMonths).rows[0].Text(Field::startDate),
              std::to_string(ToSeconds({2027, 3, 5, 0, 0, 0})));
}

// What lies in a line already is copied with its commas; what does not fit is cut off behind the rest.
TEST(BasketRow, KeepsItsTextsWhereverTheyComeFrom) {
    BasketTexts line;
    const std::string text = Line({});
    ASSERT_TRUE(SplitBasketLine(text, line));
    const std::string neighbours("a;b", 3), tooLong(70'000, 'x');
    BasketTexts scattered = line, adjacent = line, cut = line;
    scattered[Field::symbol] = {};
    scattered[Field::userText] = "NA";
    adjacent[Field::account] = std::string_view(neighbours).substr(0, 1);
    adjacent[Field::exchange] = std::string_view(neighbours).substr(2);
    cut[Field::userText] = tooLong;
    for (const BasketTexts& given : {BasketTexts(), line, scattered, adjacent, cut}) {
        const sBasketOrderData row(given, 1);
        std::string columns;
        for (const Field field : kBasketColumns) {
            EXPECT_EQ(row.Text(field), given[field]);
            columns.append(given[field]).append(1, ',');
        }
        EXPECT_EQ(std::string(row.Columns()) + ',', columns);
        const std::string_view last = row.Text(Field::userText);
        EXPECT_EQ(last.size(), std::min(given[Field::userText].size(), 65'535 - columns.size()));
        EXPECT_TRUE(given[Field::userText].starts_with(last));
    }
}

TEST(BasketReader, NumbersLinesAndReportsThemLetterByLetter) {
    const std::string heading = "client,exchange\r\n", bad = Line({{4, "9"}}),
                      few = Line({{8, "3000000000"}, {18, "qty"}, {14, "S"}});
    const Recorder recorder(heading + Line({}) + '\n' + bad + "\r\n" + few + "\n\n" + Line({}), kMonths);
    const std::string reason =
        "Quantity should not be more than integer max value(2147483647) In Line Number 4";
    EXPECT_EQ(recorder.told,
              (Texts{"client,exchange\nfailed to load due to Invalid Format",
                     bad + "\nfailed to load due to InValid Token In Line Number 3", "log " + reason,
                     few + "\nfailed to load due to " + reason + " In Line Number 4",
                     "\nfailed to load due to Invalid Format"}));
    EXPECT_EQ(recorder.numbers, (std::vector{1, 3, 4, 5}));
    EXPECT_EQ(recorder.load.RowsLoaded(), 2u);
    EXPECT_EQ(recorder.load.LinesRead(), 6);
    EXPECT_EQ(recorder.scrips.lookups, 1);
    EXPECT_EQ(recorder.load.LastReason(), "Invalid Format");
    // What is remembered of a scrip does not lift its limit.
    const std::string most = Line({{7, "2147483647"}}) + '\n', more = Line({{7, "2147483648"}}) + '\n';
    EXPECT_EQ(Recorder(most + more + most, kMonths).numbers, std::vector{2});
    // Nor does one that is known by its names pass for another.
    const Changes known = {{1, "bse_cm"}, {3, "KNOWN"}, {5, "KNOWN-EQ"}, {4, "42"}, {2, "EQ"}};
    Changes other = known;
    other.back().second = "BE";
    EXPECT_EQ(Recorder(Line(known) + '\n' + Line(other), kMonths).numbers, std::vector{2});
    // A line told by a box alone leaves no reason to show at the end.
    EXPECT_EQ(Recorder(Line({}, 3) + '\n' + Line({{9, "x"}}), kServer).load.LastReason(), "");
}

} // namespace
} // namespace planfold
