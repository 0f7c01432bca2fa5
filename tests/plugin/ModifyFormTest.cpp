// A form filled to modify a registration: what is locked, what it says, what is sent, and which answer closes
// it.
#include "tests/plugin/OrderEntryStage.h"

namespace planfold::test {
namespace {

class ModifyTest : public OrderEntryTest {
protected:
    static SipRegistration Registered(const char* number) {
        return {.number = number,
                .exchange = "NSE",
                .frequency = "monthly",
                .orderType = "MARKET",
                .product = "CNC",
                .totalPeriod = "12",
                .installments = "24",
                .tradingSymbol = "A-B-EQ",
                .action = "SWP",
                .investType = "value",
                .amount = "123.45",
                .quantity = "",
                .startDate = "05-Mar-2020",
                .account = "C001",
                .nextExecutionDate = "07-Sep-2020", // the 5th is a Saturday
                .endDate = "05-Feb-2021",
                .status = "active",
                .changedBy = "DEALER2"};
    }
    void Fill(const SipRegistration& registration) {
        entry.Initialise(kNow, {});
        entry.FillForModify(registration);
    }
    std::string LockedControls() const {
        std::string locked;
        for (const auto& [id, its] : view.controls)
            if (!its.enabled) locked += std::to_string(id) + " ";
        return locked;
    }
};

TEST_F(ModifyTest, OnlyValueAndPeriodCanBeChangedAndAPastStartDoesNotBlock) {
    Fill(Registered("SIP7"));
    EXPECT_EQ(view.title, "Planfold Modify Order: SIP7");
    EXPECT_EQ(LockedControls(), "1003 1005 1008 1018 1019 1026 1030 1040 1041 1057 1058 ");
    const std::pair<int, const char*> texts[] = {
        {IDC_EXCHANGE, "NSE"},      {IDC_SERIES, "EQ"},          {IDC_SYMBOL, "A-B"},
        {IDC_ACTION, "SWP"},        {IDC_ORDER_TYPE, "MARKET"},  {IDC_PRODUCT, "CNC"},
        {IDC_FREQUENCY, "monthly"}, {IDC_INVEST_BY, "Amount"},   {IDC_VALUE, "123.45"},
        {IDC_PERIOD, "12"},         {IDC_CLIENT_SEARCH, "C001"}, {IDC_SUBMIT, "Modify"},
    };
    for (const auto& [id, text] : texts)
        EXPECT_EQ(view.Text(id), text) << id;
    EXPECT_EQ(FormatPickerDate(view.date), "05/Mar/2020");
    // The answer of the opening comes late: it must not touch the filled form.
    Answer("echoedRequest=get_sip_operation_mode frequency=daily,weekly minimumPeriods=2,2");
    EXPECT_EQ(view.controls[IDC_FREQUENCY].items, Texts{"monthly"});

    Type("200", "18", "C001");
    entry.Submit(kNow);
    EXPECT_EQ(host.LastRequest(),
              "modify_sip_order registrationNumber=SIP7 amountOrQuantity=20000 totalPeriod=18");
    EXPECT_EQ(host.log, Texts{"Request sent Modify SIP Order: SIP7"});
    EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "");
    Type("200", "18", "C001");
    const FailQmxCall failing(FailQmxCall::addData, 3);
    entry.Submit(kNow);
    EXPECT_EQ(view.boxes.back(), "Failed to add Amount or Quantity");
    EXPECT_EQ(view.Text(IDC_VALUE) + " " + view.Text(IDC_PERIOD), "200 18") << "nothing was sent";
    EXPECT_EQ(host.requests.size(), 2u);
}

TEST_F(ModifyTest, RowsOfEveryShapeFillTheForm) {
    struct Row {
        const char* symbol;
        const char* investType;
        int mode;
        const char* expected; // symbol, series, invest by, value, period, title
    };
    const Row rows[] = {
        {"ARBORTEX-EQ", "value", 0, "ARBORTEX|EQ|Amount|123.45|12|Planfold Modify Order: SIP7"},
        {"ARBORTEX", "qty", 1, "ARBORTEX||Quantity|5|24|Planfold Modify Order: SIP7"},
        {"-", "other", 1, "||Amount|123.45|24|Planfold Modify Order: SIP7"},
    };
    for (const Row& row : rows) {
        SipRegistration registration = Registered("SIP7");
        registration.tradingSymbol = row.symbol;
        registration.investType = row.investType;
        registration.quantity = "5";
        entry.Initialise(kNow, {});
        session.m_nSipOperationMode = row.mode;
        entry.FillForModify(registration);
        std::string seen;
        for (const int id : {IDC_SYMBOL, IDC_SERIES, IDC_INVEST_BY, IDC_VALUE, IDC_PERIOD})
            seen += view.Text(id) + "|";
        EXPECT_EQ(seen + view.title, row.expected);
    }
    EXPECT_EQ(view.Text(IDC_PERIOD_LABEL), "SIP Periods");
}

TEST_F(ModifyTest, AnUnreadableMonthStopsTheFillingButNeverMakesANewOrder) {
    Fill(Registered("SIP7"));
    for (const char* date : {"05-mar-2027", "05/Mar/2027", "", "05-Mar", "--"}) {
        SipRegistration unreadable = Registered("SIP8");
        unreadable.startDate = date;
        view.title.clear();
        entry.FillForModify(unreadable);
        EXPECT_NE(view.title, "Planfold Modify Order: SIP8") << date;
        EXPECT_NE(view.Text(IDC_SUBMIT), "Modify") << date;
        EXPECT_TRUE(entry.FilledForModify());
        entry.Submit(kNow);
        EXPECT_EQ(host.LastRequest(),
                  "modify_sip_order registrationNumber= amountOrQuantity=12345 totalPeriod=12")
            << "neither a new order nor a change of the registration shown before";
    }
    entry.Initialise(kNow, {});
    EXPECT_FALSE(entry.FilledForModify()) << "a window made anew places new orders";
}

// A capital letter opens the registration of that name in the window, s sends. A small letter is the answer
// that names it, "." one that names none; "!" behind it refuses. "_" lets the time pass in which an answer is
// waited for.
TEST_F(ModifyTest, AnAnswerClosesTheWindowThatSentItWhateverWasLost) {
    const std::pair<const char*, bool> rows[] = {
        {"Asa", true},    {"As.", true},     {"Asb", false},     {"Aa", false},     {"A.", false},
        {"Asa!", false},  {"As.!", false},   {"As.!s.", true},   {"Asa!sa", true},  {"AsBsb", true},
        {"AsBsa", false}, {"AsBsab", true},  {"AsBb", false}, // the first is lost, or late
        {"AsBs.", false}, {"AsBs..", true},  {"AsB.s.", true},   {"AsBs_.", true},  {"As_Bs.", true},
        {"AsAsa", true},  {"AsAs.", true},   {"AsAa", false},    {"AsAsa!a", true}, {"Assa", true},
        {"Ass.", true},   {"AssaBs.", true}, {"AsBsCs_.", true}, {"AsBsCsc", true}, {"AsBsCs...", true},
        {"Asba", true},
    };
    for (const auto& [steps, closes] : rows) {
        view.closed = false;
        OrderEntry form(session, view, &control);
        form.Initialise(kNow, {});
        for (const char* step = steps; *step; ++step) {
            if (*step >= 'A' && *step <= 'Z') {
                view.closed = false;
                form.FillForModify(Registered(std::string(1, *step).c_str()));
            } else if (*step == 's') {
                Type("1", "2", "C001");
                form.Submit(kNow);
            } else if (*step == '_') {
                view.now += 11'000;
            } else if (*step != '!') {
                Fields answer{{tag::echoedRequest, {"modify_sip_order"}}};
                if (*step != '.')
                    answer.push_back(
                        {tag::registrationNumber, {std::string(1, static_cast<char>(*step - 32))}});
                if (step[1] == '!') answer.push_back({tag::errorCode, {"9"}});
                form.OnResponse(Received(answer).Message());
            }
        }
        EXPECT_EQ(view.closed, closes) << steps;
    }
}

TEST_F(ModifyTest, WhatOthersChangeIsSaidAndAskedAbout) {
    struct Row {
        std::string SipRegistration::*field;
        const char* now;
        const char* user;
        const char* news; // empty: none
    };
    const Row rows[] = {
        {&SipRegistration::amount, "2000.00", "DEALER2", "by DEALER2: Amount Rs 2,000.00 instead of Rs 123.45"},
        {&SipRegistration::totalPeriod, "30", "", ": Total Period 30 instead of 12"},
        {&SipRegistration::status, "Paused", "DEALER2", "by DEALER2: Status Paused instead of active"},
        {&SipRegistration::nextExecutionDate, "05-Oct-2020", "DEALER2", ""}, // one more has run
        {&SipRegistration::amount, "", "DEALER2", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.news);
        Fill(Registered("SIP7"));
        SipRegistration changed = Registered("SIP7");
        changed.*row.field = row.now;
        changed.changedBy = row.user;
        SipRegistration another = Registered("SIP8");
        another.amount = "7.00";
        entry.OnRegistrationChanged(another);
        EXPECT_FALSE(view.alarms) << "another's";
        entry.OnRegistrationChanged(changed);
        const std::string said = "Changed meanwhile" + std::string(*row.user ? " " : "") + row.news;
        EXPECT_EQ(view.summary.find(said) != std::string::npos, *row.news != 0) << view.summary;
        EXPECT_EQ(view.alarms, *row.news != 0);
        for (const bool yes : {false, true}) {
            Type("200", "18", "C001");
            view.yes = yes;
            view.questions.clear();
            const auto sent = host.requests.size();
            entry.Submit(kNow);
            EXPECT_EQ(view.questions.size(), *row.news ? 1u : 0u);
            EXPECT_EQ(host.requests.size() - sent, *row.news && !yes ? 0u : 1u);
            EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), *row.news && !yes ? "20018" : "");
        }
        EXPECT_FALSE(view.alarms) << "the dealer knows";
    }
}

TEST_F(ModifyTest, TheQuestionNamesTheChangeAndComesAgainWithTheNext) {
    Fill(Registered("SIP7"));
    SipRegistration changed = Registered("SIP7");
    changed.status = "cancelled";
    changed.changedBy = "DEALER3";
    entry.OnRegistrationChanged(changed);
    view.duringQuestion = [&] {
        changed.amount = "5.00";
        entry.OnRegistrationChanged(changed);
    };
    entry.Submit(kNow);
    const std::string before = "SIP7 was changed by DEALER3 while this form was open:\n";
    const std::string status = "Status cancelled instead of active\n\nModify it all the same?";
    EXPECT_EQ(view.questions,
              (Texts{before + status, before + "Amount Rs 5.00 instead of Rs 123.45\n" + status}));
    EXPECT_EQ(host.LastRequest(),
              "modify_sip_order registrationNumber=SIP7 amountOrQuantity=12345 totalPeriod=12");
}

TEST_F(ModifyTest, TheDealersOwnChangeIsNoNews) {
    for (const auto& [periods, status] : {std::pair("18", "active"), {"18", "Paused"}, {"30", "active"}}) {
        const bool colleague = *periods == '3' || *status == 'P';
        Fill(Registered("SIP7"));
        Type("200", "18", "C001");
        entry.Submit(kNow);
        SipRegistration changed = Registered("SIP7");
        changed.amount = "200.00";
        changed.totalPeriod = periods;
        changed.status = status;
        entry.OnRegistrationChanged(changed);
        EXPECT_EQ(view.alarms, colleague) << view.summary;
    }
    // The server's one number lands in another field once its mode is known.
    SipRegistration moved = Registered("SIP7");
    moved.installments = std::exchange(moved.totalPeriod, "");
    Fill(moved);
    std::swap(moved.installments, moved.totalPeriod);
    entry.OnRegistrationChanged(moved);
    EXPECT_FALSE(view.alarms) << view.summary;
}

TEST_F(ModifyTest, ARefusedModificationSaysWhyUntilTheNext) {
    Open();
    Type("1500", "6", "C001");
    entry.Submit(kNow);
    Answer("echoedRequest=add_sip_orders errorCode=9");
    Fill(Registered("SIP7"));
    entry.Submit(kNow);
    Answer({{tag::echoedRequest, {"modify_sip_order"}},
            {tag::errorCode, {"108"}},
            {tag::userText, {"too late"}},
            {tag::registrationNumber, {"SIP7"}}});
    EXPECT_NE(view.summary.find("Refused: too late (code 108).\n"), std::string::npos) << view.summary;
    EXPECT_FALSE(entry.BringBack()) << "new orders only";
    Type("1", "13", "C001");
    entry.Submit(kNow);
    EXPECT_EQ(view.summary.find("Refused"), std::string::npos) << view.summary;
}

} // namespace
} // namespace planfold::test
