// What the cells of a spreadsheet mean, and what a step up makes of an amount.
#include "plugin/changes/Cells.h"
#include "plugin/changes/StepUp.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

TEST(Cells, MeanTheSameHoweverTheyAreWritten) {
    const struct {
        const char *cell, *ofBook;
        bool decimalComma, same;
    } rows[] = {
        {"1,00,000.00", "100000.00", false, true},
        {"100000", "100000.00", false, true},
        {"1E+05", "100000", false, true},
        {"1.5E-01", "0.15", false, true},
        {"1E", "1", false, false},
        {"1E+999999999", "1", false, false},
        {"1E+31", "10000000000000000000000000000000", false, false},
        {"1.23457E+14", "123456789012345", false, false},
        {"1.23456789012345E+14", "123456789012345", false, true},
        {"1500,00", "1500.00", true, true},
        {"1.00.000,50", "100000.50", true, true},
        {"1500,00", "1500.00", false, false},
        {"123", "00123", false, false},
        {"'=A1", "=A1", false, true},
        {"'+91", "+91", false, true},
        {"", "0", false, false},
        {"0", "", false, false},
        {"2027-03-05", "05-Mar-2027", false, true},
        {"05/03/2027", "05-Mar-2027", false, true},
        {"3/5/2027", "05-Mar-2027", false, true},
        {"5-mar-27", "05-Mar-2027", false, true},
        {"05.03.2027", "05-Mar-2027", false, true},
        {"06/03/2027", "05-Mar-2027", false, false},
        {"005/03/2027", "05-Mar-2027", false, false},
        {"05/03/2027", "May", false, false},
        {"2027-03-05 14:02", "05-Mar-2027 14:02:31", false, true},
        {"2027-03-05T14:02", "05-Mar-2027 14:02:31", false, true},
        {"2027-03-05 14:03", "05-Mar-2027 14:02:31", false, false},
        {"2027-03-05", "05-Mar-2027 14:02:31", false, false},
        {"active", "Active", false, false},
        {" active ", "active", false, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(MeansTheSame(row.cell, row.ofBook, row.decimalComma), row.same)
            << row.cell << " / " << row.ofBook;
}

TEST(Cells, AreDatesWhenAllOfThemIsOne) {
    const std::pair<const char*, const char*> rows[] = {
        {"05-Mar-2027", "2027-03-05"},
        {" 05-Mar-2027 14:02:31", "2027-03-05 14:02:31"},
        {"31-Feb-2027", ""},
        {"05-Mar-2027 by phone", ""},
        {"1-2-3", ""},
    };
    for (const auto& [cell, date] : rows)
        EXPECT_EQ(DateInFigures(cell).value_or(""), date) << cell;
}

TEST(Cells, GiveNewNumbersOnlyWhenTheyHaveOneMeaning) {
    const struct {
        const char* cell;
        bool decimalComma;
        const char *rupees, *count; // "-": none
    } rows[] = {
        {"2000", false, "2000.00", "2000"},
        {"Rs 2,000.5", false, "2000.50", "-"},
        {"1,00,000", false, "100000.00", "100000"},
        {"1,0,000", false, "-", "-"},
        {"1,50", false, "-", "-"},
        {"1,50", true, "1.50", "-"},
        {"1,500", true, "-", "-"},
        {"1.500", true, "-", "-"},
        {"1.500", false, "-", "-"},
        {"1.505", false, "-", "-"},
        {"1E+05", false, "-", "-"},
        {"-5", false, "-5.00", "-"},
        {"12abc", false, "-", "-"},
        {"24.00", false, "24.00", "24"},
        {".5", false, "-", "-"},
        {"1e999999999999", false, "-", "-"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ReadRupees(row.cell, row.decimalComma).value_or("-"), row.rupees) << row.cell;
        EXPECT_EQ(ReadCount(row.cell, row.decimalComma).value_or("-"), row.count) << row.cell;
    }
}

TEST(StepUps, GrowAndAreRounded) {
    const struct {
        StepUp::By by;
        const char* value;
        int step;
        std::int64_t paise, expected; // -1: none
    } rows[] = {
        {StepUp::By::percent, "10", 0, 150'000, 165'000},
        {StepUp::By::rupees, "500", 0, 150'000, 200'000},
        {StepUp::By::percent, "7.5", 0, 10'001, 10'751},
        {StepUp::By::percent, "10", 5, 150'000, 170'000},
        {StepUp::By::percent, "10", 6, 150'000, 150'000},
        {StepUp::By::rupees, "1,000", 0, 999'999'999, 1'000'099'999},
        {StepUp::By::rupees, "1", 0, 1'000'000'000, -1},
    };
    for (const auto& row : rows) {
        const StepUpRead read = ReadStepUp(row.by, row.value, row.step);
        EXPECT_EQ(read.fault, "");
        EXPECT_EQ(read.rule.Of(row.paise).value_or(-1), row.expected) << row.value << " of " << row.paise;
    }
    for (const char* wrong : {"", "0", "-1", "ten", "0.001"})
        EXPECT_NE(ReadStepUp(StepUp::By::percent, wrong, 0).fault, "") << wrong;
}

} // namespace
} // namespace planfold::test
