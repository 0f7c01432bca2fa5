// Submit at the window: what is sent, what is refused with which text, what answers do.
#include "tests/window/PluginTest.h"

namespace {

struct Setting {
    int control;
    const char* value;
};

bool IsCombo(HWND dialog, int control) {
    return probe::ClassOf(GetDlgItem(dialog, control)) == "ComboBox";
}

class Submit : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        AnswerDefaults();
        host.requests.clear();
        host.calls.clear();
    }
    void Set(const std::vector<Setting>& settings) {
        for (const auto& [control, value] : settings) {
            if (control == order::kClient)
                ChooseClient(dialog, value);
            else if (IsCombo(dialog, control))
                EXPECT_TRUE(probe::Select(dialog, control, value)) << control << ": " << value;
            else
                probe::SetEdit(dialog, control, value);
        }
    }

    HWND dialog = nullptr;
};

struct SentRow {
    const char* name;
    std::vector<Setting> settings; // beyond those of a good order
    const char* request;
    const char* log;
};
const SentRow kSent[] = {
    {"amount",
     {},
     "0=add_sip_orders;63001=nse_cm;10100=2901;63100=BYTEFIN-EQ;12003=B;12008=MKT;64030=CNC;54152=value;53063="
     "123450;"
     "10012=monthly;49165=DATE;63415=12;31003=LOGIN;54056=C;54001=C002;12005=DAY;64056=PEERA;64053=PEERB;"
     "54158=UUID-1;53405=N;64756=TWS;",
     "NSE BUY SIP Order : Status : Trigger Pending CNC BYTEFIN-EQ at 1234.50 DAY monthly for period : 12 "
     "Months "
     "Client ID : C002 by LOGIN"},
    {"quantity of a selling plan at the other exchange",
     {{order::kExchange, "BSE"},
      {order::kAction, "SWP"},
      {order::kInvestBy, "Quantity"},
      {order::kValue, "1.5"},
      {order::kFrequency, "daily"},
      {order::kPeriod, "60"},
      {order::kClient, "C001"}},
     "0=add_sip_orders;63001=bse_cm;10100=500100;63100=INFOCAR;12003=S;12008=MKT;64030=CNC;54152=qty;53063=1;"
     "10012=daily;49165=DATE;63415=60;31003=LOGIN;54056=C;54001=C001;12005=DAY;64056=PEERA;64053=PEERB;"
     "54158=UUID-1;53405=N;64756=TWS;",
     "BSE SELL SIP Order : Status : Trigger Pending CNC INFOCAR at 1 DAY daily for period : 60 Months "
     "Client ID : C001 by LOGIN"},
};

TEST_F(Submit, SendsTheLaidDownFieldsInOrder) {
    for (const SentRow& row : kSent) {
        SCOPED_TRACE(row.name);
        FillGoodOrder(dialog);
        Set(row.settings);
        host.log.clear();
        probe::Press(dialog, order::kSubmit);
        EXPECT_EQ(WithoutDate(host.LastRequest()), row.request);
        EXPECT_NE(host.LastRequest().find("49165=" + WireDate(DaysFromNow(1)) + ";"), std::string::npos);
        EXPECT_EQ(host.log, std::vector<std::string>{row.log});
        EXPECT_EQ(boxes.Texts(), "");
        EXPECT_EQ(probe::Text(dialog, order::kValue), "");
        EXPECT_EQ(probe::Text(dialog, order::kPeriod), "");
    }
    EXPECT_EQ(host.requests.size(), std::size(kSent));
}

struct FlagRow {
    int caution;
    const char* uuid;
    const char* end; // of the request, behind the branch
};
constexpr FlagRow kFlags[] = {
    {0, "UUID-2", "54158=UUID-2;53405=N;64756=TWS;"},
    {1, "", "53405=Y;64756=TWS;"},
    {2, "UUID-2", "54158=UUID-2;64756=TWS;"},
    {-1, "", "64756=TWS;"},
};

TEST_F(Submit, HostDecidesIdentifierAndCautionaryFlag) {
    for (const FlagRow& row : kFlags) {
        host.caution = row.caution;
        host.uuid = row.uuid;
        host.calls.clear();
        FillGoodOrder(dialog);
        probe::Press(dialog, order::kSubmit);
        EXPECT_TRUE(host.LastRequest().ends_with(std::string("64053=PEERB;") + row.end)) << host.LastRequest();
        EXPECT_EQ(host.calls.back(),
                  "pu_invoke_caution_order_confirmation(C002,value,CNC,123450,BYTEFIN-EQ,nse_cm)");
    }
    EXPECT_EQ(host.requests.size(), std::size(kFlags));
}

struct RefusedRow {
    std::vector<Setting> settings;
    int daysFromNow;
    const char* text;
};
const RefusedRow kRefused[] = {
    {{}, -1, "Start Date Cannot be less that today's Date"},
    {{}, 740, "Start Date Cannot be more than 2 years from today's Date"},
    {{{order::kPeriod, ""}}, 1, "Enter a Month."},
    {{{order::kPeriod, "0"}}, 1, "Enter valid Month."},
    {{{order::kPeriod, "61"}}, 1, "Month Should be Between 1 and 60"},
    {{{order::kValue, ""}}, 1, "Enter Amount"},
    {{{order::kValue, "0.00"}}, 1, "Enter valid Amount"},
    {{{order::kValue, "10000000"}}, 1, "cannot have more than 7 digits in rupees part of Amount"},
    {{{order::kInvestBy, "Quantity"}}, 1, "Enter Quantity"},
    {{{order::kInvestBy, "Quantity"}, {order::kValue, "0"}}, 1, "Enter valid Quantity"},
    {{{order::kInvestBy, "Quantity"}, {order::kValue, "00"}}, 1, "Quantity cannot be zero"},
    {{{order::kInvestBy, "Quantity"}, {order::kValue, "3000000000"}},
     1,
     " should not be more than integer max value(2147483647)"},
    // The first failing rule wins.
    {{{order::kPeriod, ""}, {order::kValue, ""}}, -1, "Start Date Cannot be less that today's Date"},
    {{{order::kPeriod, "61"}, {order::kValue, ""}}, 1, "Month Should be Between 1 and 60"},
};

TEST_F(Submit, RefusalIsToldAndTheFormKeepsWhatWasTyped) {
    for (const RefusedRow& row : kRefused) {
        SCOPED_TRACE(row.text);
        probe::Select(dialog, order::kInvestBy, "Amount");
        FillGoodOrder(dialog);
        Set(row.settings);
        probe::SetDate(dialog, order::kStartDate, DaysFromNow(row.daysFromNow));
        const std::string value = probe::Text(dialog, order::kValue),
                          period = probe::Text(dialog, order::kPeriod);
        boxes.Clear();
        probe::Press(dialog, order::kSubmit);
        ASSERT_EQ(boxes.Texts(), std::string(row.text) + "|");
        EXPECT_EQ(boxes.Boxes().front().owner, dialog);
        EXPECT_EQ(probe::Text(dialog, order::kValue), value);
        EXPECT_EQ(probe::Text(dialog, order::kPeriod), period);
    }
    EXPECT_TRUE(host.requests.empty());
    EXPECT_EQ(host.CallsOf("pu_invoke_caution_order_confirmation"), 0);
}

struct FailureRow {
    const char* name;
    bool startFails;
    std::optional<std::uint32_t> tagFails;
    int sendResult;
    const char* text;
    const char* log;
};
constexpr FailureRow kFailures[] = {
    {"message", true, {}, 1, "zup_add_parameter: Error while building message", nullptr},
    {"name", false, 0, 1, "Failed to add the request add_sip_orders", nullptr},
    {"token", false, 10100, 1, "Failed to add the Token",
     "NSE BUY SIP Order Failed Status : Trigger Pending CNC BYTEFIN-EQ at 123450 DAY monthly for period : 12 "
     "Months "
     "Client ID : C002 by LOGIN"},
    {"last field", false, 64756, 1, "Failed to add Order Source", nullptr},
    {"sending", false, {}, 0, "Sending Request add_sip_orders Failed", nullptr},
};

TEST_F(Submit, FailureIsToldAndClearsTheForm) {
    for (const FailureRow& row : kFailures) {
        SCOPED_TRACE(row.name);
        FillGoodOrder(dialog);
        ConnectionWatch::Current().failStart = row.startFails;
        ConnectionWatch::Current().failTag = row.tagFails;
        host.sendResult = row.sendResult;
        host.log.clear();
        boxes.Clear();
        probe::Press(dialog, order::kSubmit);
        EXPECT_EQ(boxes.Texts(), std::string(row.text) + "|");
        EXPECT_EQ(host.log, row.log ? std::vector<std::string>{row.log} : std::vector<std::string>{});
        EXPECT_EQ(probe::Text(dialog, order::kValue) + probe::Text(dialog, order::kPeriod), "");
    }
    EXPECT_TRUE(host.requests.empty());
}

TEST_F(Submit, TextTooLongForAMessageIsRefused) {
    FillGoodOrder(dialog);
    ChooseClient(dialog, std::string(33000, 'x'));
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(boxes.Texts(), "Failed to add Account ID|");
    EXPECT_TRUE(host.requests.empty());
    FillGoodOrder(dialog);
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(host.requests.size(), 1u) << "the next one goes out";
}

struct AnswerRow {
    Fields answer;
    const char* boxes;
    const char* log;
};
const AnswerRow kAnswers[] = {
    {{{32767, "add_sip_orders"}, {20008, "SIP registered"}, {54001, "C001"}}, "SIP registered|", ""},
    {{{32767, "add_sip_orders"}, {32766, "17"}, {20008, "not shown"}},
     "",
     "Error in response : add_sip_orders . Error Code : 17"},
    {{{32767, "Add_Sip_Orders"}, {20008, "not shown"}}, "", ""},
    {{{32767, "pause_sip_order"}, {20008, "not ours"}}, "", ""},
    {{{32766, "9"}}, "", "Error in response :  . Error Code : 9"},
    {{{20008, "without a name"}}, "", ""},
    {{{32767, "pause_sip_order"}, {32766, "4"}}, "", "Error in response : pause_sip_order . Error Code : 4"},
};

TEST_F(Submit, AnswersAreToldOrLogged) {
    for (const AnswerRow& row : kAnswers) {
        SCOPED_TRACE(Dump(row.answer));
        boxes.Clear();
        host.log.clear();
        host.Answer(kOrderEntryControl, row.answer);
        EXPECT_EQ(boxes.Texts(), row.boxes);
        std::string log;
        for (const std::string& line : host.log)
            log += line;
        EXPECT_EQ(log, row.log);
    }
    host.Broadcast(kOrderEntryControl, {{32767, "add_sip_orders"}, {20008, "not for this window"}});
    EXPECT_EQ(OrderEntry(), dialog);
}

} // namespace
