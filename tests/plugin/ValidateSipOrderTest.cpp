#include "plugin/orderentry/SipOrder.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

constexpr LocalDateTime kNow{2027, 1, 10, 15, 30, 0};

SipOrderForm GoodForm() {
    SipOrderForm form;
    form.exchange = "NSE";
    form.series = "EQ";
    form.symbol = "ARBORTEX";
    form.action = "SIP";
    form.orderType = "MARKET";
    form.product = "CNC";
    form.frequency = "monthly";
    form.investType = "Amount";
    form.value = "1234.5";
    form.totalPeriod = "12";
    form.account = "C001";
    form.startDate = {2027, 1, 11, 15, 30, 0};
    return form;
}

class ValidateSipOrderTest : public ::testing::Test, protected Stage {
protected:
    // The refusal's text, or empty.
    std::string Check(const SipOrderForm& form) {
        record = {};
        const auto refusal = ValidateSipOrder(kPass, session, nullptr, form, kNow, record);
        leadsTo = !refusal                       ? ""
                  : refusal->focus == IDC_VALUE  ? "value"
                  : refusal->focus == IDC_PERIOD ? "period"
                                                 : "";
        return refusal ? refusal->text : std::string();
    }

    sSipOrderData record;
    std::string leadsTo; // an edit
};

TEST_F(ValidateSipOrderTest, FindsTheScripInTheMasterWhenTheHostCannotReadTheDialog) {
    session.host.pu_get_trading_symbol_n_token = nullptr;
    ASSERT_EQ(Check(GoodForm()), "");
    EXPECT_EQ(host.calls, (Texts{"pu_get_intersted_scrip_field(nse_cm|EQ|ARBORTEX,0,6)",
                                 "pu_get_scrip_details_from_TradSymbol(NSE,ARBORTEX-EQ)"}));
    EXPECT_EQ(record.exchange + " " + record.token + " " + record.tradingSymbol, "nse_cm 1013 ARBORTEX-EQ");
    EXPECT_EQ(host.log,
              (Texts{"SIP OrderDetails Get Trading Symbol -Exng : nse_cm,Series : EQ,Symbol : "
                     "ARBORTEX,TradingSymbol : ARBORTEX-EQ ",
                     "SIP OrderDetails Get Token -Exng : NSE,Trading Symbol : ARBORTEX-EQ,Token : 1013 "}));
    SipOrderForm other = GoodForm();
    other.exchange = "BSE";
    EXPECT_EQ(Check(other) + record.exchange, "bse_cm");
}

TEST_F(ValidateSipOrderTest, AcceptsAnUnknownScripAndAnEmptyClient) {
    session.host.pu_get_trading_symbol_n_token = nullptr;
    session.host.pu_get_intersted_scrip_field = nullptr;
    session.host.pu_get_scrip_details_from_TradSymbol = nullptr;
    session.host.pu_add_to_tabbed_log = nullptr;
    SipOrderForm form = GoodForm();
    form.account.clear();
    EXPECT_EQ(Check(form), "");
    EXPECT_EQ(record.token + record.tradingSymbol + record.account, "");
}

TEST_F(ValidateSipOrderTest, KeepsAnExchangeWithoutBarAsSegment) {
    host.exchangeAndToken = "nse_cm";
    ASSERT_EQ(Check(GoodForm()), "");
    EXPECT_EQ(record.exchange, "nse_cm");
    EXPECT_EQ(record.token, "");
}

TEST_F(ValidateSipOrderTest, HoldsTheStartDateBetweenTodayAndTwoYears) {
    const std::string early = "Start Date Cannot be less that today's Date";
    const std::string late = "Start Date Cannot be more than 2 years from today's Date";
    struct Row {
        LocalDateTime start;
        bool modifyMode;
        std::string refusal;
    };
    const Row rows[] = {
        {{2027, 1, 9, 23, 59, 59}, false, early},
        {{2027, 1, 10, 0, 0, 0}, false, ""},
        {{2029, 1, 10, 0, 0, 0}, false, ""},
        {{2029, 1, 10, 0, 0, 1}, false, late}, // the picker keeps its time of day
        {{2029, 1, 11, 0, 0, 0}, false, late},
        {{2020, 1, 9, 0, 0, 0}, true, ""},
        {{2035, 1, 9, 0, 0, 0}, true, ""},
    };
    for (const Row& row : rows) {
        SipOrderForm form = GoodForm();
        form.startDate = row.start;
        form.modifyMode = row.modifyMode;
        EXPECT_EQ(Check(form), row.refusal) << FormatPickerDate(row.start);
    }
}

TEST_F(ValidateSipOrderTest, ChecksThePeriodByOperationMode) {
    session.m_dMinSipDaily = 10;
    session.m_dMinSipWeekly = 8;
    session.m_dMinSipMonthly = 6;
    session.m_dMinSipYearly = 2;
    struct Row {
        int mode;
        const char* frequency;
        const char* period;
        const char* refusal;
    };
    const Row rows[] = {
        {0, "monthly", "", "Enter a Month."},
        {0, "monthly", "0", "Enter valid Month."},
        {0, "monthly", "00", "Month Should be Between 1 and 60"},
        {0, "monthly", "1", ""},
        {0, "monthly", "60", ""},
        {0, "monthly", "61", "Month Should be Between 1 and 60"},
        {0, "monthly", "-1", "Month Should be Between 1 and 60"},
        {2, "monthly", "61", "Month Should be Between 1 and 60"},
        {1, "monthly", "5", "Minimum SIP value is 6"},
        {1, "monthly", "6", ""},
        {1, "monthly", "61", ""},
        {1, "daily", "9", "Minimum SIP value is 10"},
        {1, "daily", "10", ""},
        {1, "weekly", "7", "Minimum SIP value is 8"},
        {1, "yearly", "1", "Minimum SIP value is 2"},
        {1, "Monthly", "1", ""}, // a word of its own: no minimum
    };
    for (const Row& row : rows) {
        SipOrderForm form = GoodForm();
        session.m_nSipOperationMode = row.mode;
        form.frequency = row.frequency;
        form.totalPeriod = row.period;
        EXPECT_EQ(Check(form), row.refusal) << row.mode << " " << row.frequency << " " << row.period;
        EXPECT_EQ(leadsTo, *row.refusal ? "period" : "");
    }
}

TEST_F(ValidateSipOrderTest, ChecksAndConvertsTheValue) {
    const std::string digits = "cannot have more than 7 digits in rupees part of Amount";
    struct Row {
        const char* investType;
        const char* value;
        std::string outcome; // "= wire form", or the refusal
    };
    const Row rows[] = {
        {"Quantity", "", "Enter Quantity"},
        {"Quantity", ".", "Enter valid Quantity"},
        {"Quantity", "0", "Enter valid Quantity"},
        {"Quantity", "00", "Quantity cannot be zero"},
        {"Quantity", "abc", "Quantity cannot be zero"},
        {"Quantity", "1", "= 1"},
        {"Quantity", "1.5", "= 1"},
        {"Quantity", "2147483647", "= 2147483647"},
        {"Quantity", "2147483648", " should not be more than integer max value(2147483647)"},
        {"Amount", "", "Enter Amount"},
        {"Amount", "0", "Enter valid Amount"},
        {"Amount", "abc", "Enter valid Amount"},
        {"Amount", "0.004", "= 0"},
        {"Amount", "0.01", "= 1"},
        {"Amount", "1234.5", "= 123450"},
        {"Amount", "9999999.994", "= 999999999"},
        {"Amount", "9999999.996", digits},
        {"Amount", "10000000", digits},
        {"Amount", "1e999", "Please enter valid amount."},
        {"Amount", "-5", "Please enter valid amount."},
        {"Units", "anything", "= anything"},
    };
    for (const Row& row : rows) {
        SipOrderForm form = GoodForm();
        form.investType = row.investType;
        form.value = row.value;
        const std::string refusal = Check(form);
        EXPECT_EQ(refusal.empty() ? "= " + record.amountOrQuantity : refusal, row.outcome)
            << row.investType << " " << row.value;
        EXPECT_EQ(leadsTo, refusal.empty() ? "" : "value") << row.investType << " " << row.value;
    }
}

TEST_F(ValidateSipOrderTest, TellsTheFirstOfSeveralFaults) {
    SipOrderForm form = GoodForm();
    form.value = "";
    EXPECT_EQ(Check(form), "Enter Amount");
    form.totalPeriod = "61";
    EXPECT_EQ(Check(form), "Month Should be Between 1 and 60");
    form.totalPeriod = "";
    EXPECT_EQ(Check(form), "Enter a Month.");
    form.startDate = {2030, 1, 1, 0, 0, 0};
    EXPECT_EQ(Check(form), "Start Date Cannot be more than 2 years from today's Date");
    form.startDate = {2020, 1, 1, 0, 0, 0};
    EXPECT_EQ(Check(form), "Start Date Cannot be less that today's Date");
}

} // namespace
} // namespace planfold::test
