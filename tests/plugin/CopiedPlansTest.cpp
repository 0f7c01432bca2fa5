// Registrations that are placed again, as the orders that they become.
#include "plugin/morning/CopiedPlans.h"
#include "tests/support/FakeHost.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

TEST(CopiedPlans, TakeWhatAskedForTheSameAndTheRunsThatAreLeft) {
    FakeHost host;
    OrderRecord record(host.recordFiles, [&] { return host.recordTime; });
    Session session(host.Lookup(), host.IdentityStrings(), host.strings, record);
    session.m_nSipOperationMode = 1;
    OrderCache book;
    const auto enter = [&](const char* number, const char* status, const char* frequency, const char* next,
                           const char* end, const char* investType, const char* side) {
        OrderChanges changes;
        changes[OrderField::exchange] = "NSE";
        changes[OrderField::tradingSymbol] = "ARBORTEX-EQ";
        changes[OrderField::account] = "C1";
        changes[OrderField::product] = "CNC";
        changes[OrderField::amount] = "1500.50";
        changes[OrderField::quantity] = "7";
        changes[OrderField::installmentsRegistered] = "12";
        changes[OrderField::startDate] = "05-Mar-2026";
        changes[OrderField::sipStatus] = status;
        changes[OrderField::frequency] = frequency;
        changes[OrderField::nextExecutionDate] = next;
        changes[OrderField::endDate] = end;
        changes[OrderField::investType] = investType;
        changes[OrderField::side] = side;
        book[book.Add(number)].Apply(changes);
    };
    enter("S1", "cancelled", "monthly", "05-Aug-2026", "05-Feb-2027", "value", "SIP");
    enter("S2", "expired", "weekly", "21-May-2026", "21-May-2026", "qty", "SWP");
    enter("S3", "active", "monthly", "05-Aug-2026", "05-Feb-2027", "value", "SIP");
    enter("S4", "canceled", "monthly", "", "", "value", "SIP");
    enter("S5", "cancelled", "never", "05-Aug-2026", "", "value", "SIP");
    const std::vector<std::string> all{"S1", "S2", "S3", "S4", "S5", "S9", "S1"};
    const auto text = [&](CopiedPeriods periods) {
        const CopiedPlans copies = CopyPlans(book, all, periods, *ReadServerDay("07-Dec-2026"), session);
        std::string lines;
        for (const sSipOrderData& order : copies.orders)
            lines += order.account + " " + order.exchange + " " + order.side + " " + order.investType + " "
                     + order.amountOrQuantity + " " + order.frequency + " " + order.totalPeriod + " "
                     + order.startDate + "\n";
        return lines + DescribeCopies(copies);
    };
    const std::string start = std::to_string(ParseDate("07/Dec/2026")) + "\n"; // the dealer's own midnight
    const std::string first = "C1 nse_cm B value 150050 monthly 7 " + start,
                      sold = "C1 nse_cm S qty 7 weekly 12 " + start,
                      bought = "C1 nse_cm B value 150050 monthly 12 " + start,
                      once = "C1 nse_cm B value 150050 daily 1 " + start;
    EXPECT_EQ(text(CopiedPeriods::left), first + first
                                             + "2 orders come into the basket. Left out: 1 still running, 1 "
                                               "without runs left, 3 not readable");
    EXPECT_EQ(text(CopiedPeriods::registered),
              bought + sold + bought + bought
                  + "4 orders come into the basket. Left out: 1 still running, 2 not readable");
    EXPECT_EQ(text(CopiedPeriods::one), once + "C1 nse_cm S qty 7 daily 1 " + start + once + once + once
                                            + "5 orders come into the basket. Left out: 2 not readable")
        << "the server may want more runs by the month";
    session.m_nSipOperationMode = 0; // as each new order form makes it until the server has answered
    EXPECT_TRUE(text(CopiedPeriods::registered).starts_with(bought + sold));
    session.MinimumPeriods(*FindFrequency("daily")) = 5;
    EXPECT_TRUE(text(CopiedPeriods::one).starts_with("C1 nse_cm B value 150050 monthly 1 " + start));
}

} // namespace
} // namespace planfold::test
