#include "plugin/base/Codes.h"
#include "plugin/base/Dates.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <gtest/gtest.h>

#include <climits>

namespace planfold {
namespace {

TEST(Format, WritesWhatPrintfDoesAtHome) {
    EXPECT_EQ(Format("%.2lf|%.02f|%.lf|%.0f|%.*f", 1234.5, -0.001, 2.5, 3.5, 3, 0.0625),
              "1234.50|-0.00|2|4|0.062");
    EXPECT_EQ(Format("%.lf|%f|%.15g|%.15g", 1e22, 0.1, 0.1, 1e20),
              "10000000000000000000000|0.100000|0.1|1e+20");
    EXPECT_EQ(Format("%03d|%-3d|%3d|%02lld|%ld|%zu|%u", -7, -7, 1234, 5LL, LONG_MIN, SIZE_MAX, 7u),
              "-07|-7 |1234|05|" + std::to_string(LONG_MIN) + "|" + std::to_string(SIZE_MAX) + "|7");
    EXPECT_EQ(Format("100 %%%c%-4s|%4s|%.*s", 'C', "ab", "abcde", 2, "abc"), "100 %Cab  |abcde|ab");
}

TEST(LeadingNumbers, ReadWhatATextBeginsWith) {
    struct Row {
        const char* text;
        std::int64_t integer;
        double real;
    };
    const Row rows[] = {
        {"", 0, 0},
        {".5", 0, 0.5},
        {"12abc", 12, 12},
        {"-5", -5, -5},
        {"  8", 8, 8},
        {"0x10", 0, 0},
        {"inf", 0, 0},
        {"nan", 0, 0},
        {"1e3", 1, 1000},
        {"1e-999", 1, 0.0},
        {"99999999999999999999", LLONG_MAX, 1e20},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(LeadingInteger(row.text), row.integer) << row.text;
        EXPECT_DOUBLE_EQ(LeadingReal(row.text), row.real) << row.text;
    }
    EXPECT_GT(LeadingReal("1e999"), 1e308);
}

TEST(FormatRupees, GroupsAsTheMarketDoes) {
    const std::pair<std::int64_t, const char*> rows[] = {
        {0, "Rs 0.00"},
        {7, "Rs 0.07"},
        {-7, "Rs -0.07"},
        {-10000000, "Rs -1,00,000.00"},
        {-123456750, "Rs -12,34,567.50"},
        {INT64_MIN, "Rs -92,23,37,20,36,85,47,758.08"},
        {99999, "Rs 999.99"},
        {100000, "Rs 1,000.00"},
        {9999999, "Rs 99,999.99"},
        {123456750, "Rs 12,34,567.50"},
        {100000000000, "Rs 1,00,00,00,000.00"},
    };
    for (const auto& [paise, text] : rows)
        EXPECT_EQ(FormatRupees(paise), text);
}

ScripDetails Scrip(int decimals, double multiplier, std::int64_t tick) {
    return {decimals, 0, multiplier, tick, {}, {}};
}

TEST(CheckPriceRange, TellsTheRangeAndTheLargestPrice) {
    const ScripDetails rupees = Scrip(2, 100.0, 5);
    const ScripDetails currency = Scrip(4, 10000.0, 25);
    const ScripDetails nonsense = Scrip(-3, 0.0, 0);
    struct Row {
        const char* price;
        const ScripDetails* details;
        bool check32Bit;
        const char* message; // null: passes
    };
    const Row rows[] = {
        {"21474836.47", nullptr, true, nullptr},
        {"21474836.48", nullptr, true, " exceeds the long variable range"},
        {"21474836.48", &rupees, true, " exceeds the long variable range, Max Price is : 21474836.45"},
        {"214748.3648", &currency, true, " exceeds the long variable range, Max Price is : 214748.3625"},
        {"21474836.48", nullptr, false, nullptr},
        {"99999999999999999999", nullptr, false, " exceeds the long long variable range"},
        {"abc", nullptr, true, " exceeds the long variable range"},
        {"12.34.5", nullptr, true, " exceeds the long variable range"},
        {"12.345", nullptr, true, nullptr},
        {"21474836.48", &nonsense, true, " exceeds the long variable range, Max Price is : 21474836.47"},
    };
    for (const Row& row : rows) {
        std::string message;
        EXPECT_EQ(CheckPriceRange(row.price, message, row.details, row.check32Bit), row.message == nullptr)
            << row.price;
        EXPECT_EQ(message, row.message ? row.message : "") << row.price;
    }
}

TEST(NextCsvField, EndsWhereItsTextEnds) {
    const struct {
        std::string_view line;
        int start;
        const char* field;
        int next;
    } rows[] = {
        {"a,bc,d\n", 1, "bc", 4}, {"a,bc,d\n", 4, "d", -1},   {"a,b\r\n", 1, "b", 3},
        {"a\r,b", 1, "", -1},     {{"a\0b,c", 6}, 0, "a", 1}, {"a,b", -3, "", -1},
    };
    for (const auto& row : rows) {
        std::string_view field = "old";
        EXPECT_EQ(NextCsvField(row.line, row.start, field), row.next) << row.line << " at " << row.start;
        EXPECT_EQ(field, row.field) << row.line << " at " << row.start;
    }
}

TEST(CountDaysInYears, CountsYearByYear) {
    struct Row {
        LocalDateTime date;
        int days;
    };
    const Row rows[] = {
        {{2027, 1, 10}, 731}, {{2027, 3, 10}, 731}, {{2028, 1, 10}, 730}, // January of a leap year: one short
        {{2028, 2, 10}, 731}, {{2028, 2, 29}, 730}, {{2028, 3, 1}, 730},  {{2026, 11, 21}, 731},
        {{2025, 1, 1}, 730},  {{2096, 3, 1}, 730},  {{2099, 3, 1}, 730},
    };
    for (const Row& row : rows)
        EXPECT_EQ(CountDaysInYears(row.date, 2), row.days) << FormatPickerDate(row.date);
}

TEST(ParseDate, TakesWhatAUserTypes) {
    const auto midnight = [](int year, int month, int day) { return ToSeconds({year, month, day, 0, 0, 0}); };
    struct Row {
        const char* text;
        std::int64_t seconds;
    };
    const Row rows[] = {
        {"05/Mar/2027", midnight(2027, 3, 5)},
        {"5/3/2027", midnight(2027, 3, 5)},
        {"05-Mar-27", midnight(2027, 3, 5)},
        {"29/Feb/2028", midnight(2028, 2, 29)},
        {"", -1},
        {"05/Mar/", -1},
        {"05//2027", -1},
        {"05-Mar/2027", -1},
        {"29/Feb/2027", -2},
        {"31/Apr/2027", -2},
        {"1/13/2027", -2},
        {"1/mar/2027", -2},
        {"0/Mar/2027", -2},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ParseDate(row.text), row.seconds) << row.text;
}

} // namespace
} // namespace planfold
