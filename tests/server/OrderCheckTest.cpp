// Orders that the server refuses, each with its code, and the limits at which it begins to.

#include "host/server/OrderRules.h"
#include "host/server/schedule/Schedule.h"
#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

const UserIdentity kUser{"USER1", "BROKER", "BRANCH"};

std::string Code(const Fields& changes, const ServerConfig& config = {}) {
    const std::string bytes = Message(Order(changes));
    const qmx::MessageReader reader(bytes);
    const auto refusal = JudgeOrder(reader.Handle(), kUser, config);
    if (!refusal) return "";
    EXPECT_NE(refusal->text, "");
    return std::string(refusal->code);
}

TEST(OrderCheck, EveryNeededFieldIsMissedWhenAbsentOrEmpty) {
    const std::uint32_t mayBeAbsent[] = {tag::requestName, tag::peerIdA,       tag::peerIdB,
                                         tag::orderId,     tag::operationMode, tag::cautionaryFlag};
    for (const auto& [tag, text] : Order()) {
        const bool needed =
            std::find(std::begin(mayBeAbsent), std::end(mayBeAbsent), tag) == std::end(mayBeAbsent);
        EXPECT_EQ(Code({{tag, ""}}), needed ? kCodeMissingField : "") << tag;
        Fields without = Order();
        without.erase(tag);
        const std::string bytes = Message(without);
        const qmx::MessageReader reader(bytes);
        EXPECT_EQ(JudgeOrder(reader.Handle(), kUser, {}).has_value(), needed) << tag;
    }
}

TEST(OrderCheck, ValuesAreJudgedByTheirForm) {
    const struct {
        std::uint32_t tag;
        const char* text;
        std::string_view code;
    } rows[] = {
        {tag::side, "b", kCodeWrongValue},
        {tag::investType, "Amount", kCodeWrongValue},
        {tag::amountOrQuantity, "1", ""},
        {tag::amountOrQuantity, "0", kCodeWrongValue},
        {tag::amountOrQuantity, "1.5", kCodeWrongValue},
        {tag::amountOrQuantity, "9223372036854775807", ""},
        {tag::amountOrQuantity, "9223372036854775808", kCodeWrongValue},
        {tag::startDate, "4102444799", ""},
        {tag::startDate, "4102444800", kCodeWrongValue},
        {tag::totalPeriod, "0", kCodeWrongValue},
        {tag::validity, "IOC", kCodeWrongValue},
        {tag::cautionaryFlag, "Y", ""},
        {tag::cautionaryFlag, "yes", kCodeWrongValue},
        {tag::operationMode, "x", kCodeWrongValue},
        {tag::loginId, "USER2", kCodeUser},
        {tag::peerIdA, "OTHER", kCodeUser},
        {tag::peerIdB, "BRANCH", ""},
        {tag::peerIdB, "BR2", kCodeUser},
        {tag::frequency, "Monthly", kCodeFrequency},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Code({{row.tag, row.text}}), row.code) << row.tag << "=" << row.text;
}

TEST(OrderCheck, PeriodsGoByTheListOrByThePlainLimits) {
    ServerConfig list;
    list.frequencies = {{"monthly", 6}, {"yearly", std::nullopt}};
    ServerConfig none;
    none.frequencies.clear();
    ServerConfig zeroed = list;
    zeroed.operationModeShape = OperationModeShape::listThenZero;
    const struct {
        const ServerConfig& config;
        const char* frequency;
        const char* periods;
        std::string_view code;
    } rows[] = {
        {list, "monthly", "5", kCodePeriods},
        {list, "monthly", "6", ""},
        {list, "monthly", "61", ""},
        {list, "monthly", "10001", kCodePeriods},
        {list, "yearly", "1", ""},
        {list, "daily", "10", kCodeFrequency},
        {none, "daily", "1", ""},
        {none, "monthly", "60", ""},
        {none, "monthly", "61", kCodePeriods},
        {none, "yearly", "2", kCodeFrequency},
        {zeroed, "monthly", "1", ""},
        {zeroed, "daily", "60", ""},
        {zeroed, "weekly", "61", kCodePeriods},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Code(std::string("frequency=") + row.frequency + " totalPeriod=" + row.periods, row.config),
                  row.code)
            << row.frequency << " " << row.periods;
}

} // namespace
} // namespace vesk
