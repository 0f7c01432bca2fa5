// The answer to get_sip_operation_mode: frequencies, the label of the period and its hint, the least periods.
#include "tests/window/PluginTest.h"

namespace {

using Texts = std::vector<std::string>;

struct ModeRow {
    const char* name;
    Fields answer; // behind the request's name
    Texts frequencies;
    bool serverPeriods;   // the label reads "SIP Periods", the hint is hidden
    const char* refused;  // what a period of 5 with the first frequency is told; null: sent
    const char* sentMode; // tag 63715
};
const ModeRow kModes[] = {
    {"list with minima",
     {{10012, "monthly"}, {10012, "yearly"}, {54101, "6"}, {54101, "2"}},
     {"monthly", "yearly"},
     true,
     "Minimum SIP value is 6",
     nullptr},
    {"minimum reached", {{10012, "daily"}, {54101, "5"}}, {"daily"}, true, nullptr, "1"},
    {"no minimum given", {{10012, "weekly"}}, {"weekly"}, true, nullptr, "1"},
    {"no list", {{10012, "0"}}, {"daily", "weekly", "monthly"}, false, nullptr, nullptr},
    {"error", {{32766, "77"}}, {"daily", "weekly", "monthly"}, false, nullptr, nullptr},
    {"end within the list",
     {{10012, "yearly"}, {10012, "0"}, {10012, "daily"}, {54101, "2"}},
     {"yearly", "daily", "weekly", "monthly"},
     false,
     nullptr,
     nullptr},
    {"neither list nor error", {{20008, "text"}}, {}, false, nullptr, nullptr},
    {"unknown word", {{10012, "hourly"}, {54101, "9"}}, {"hourly"}, true, nullptr, "1"},
};

class OperationMode : public PluginTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(OperationMode, AnswerSetsFrequenciesLabelAndMinimum) {
    const ModeRow& row = kModes[GetParam()];
    SCOPED_TRACE(row.name);
    HWND dialog = OpenOrderEntry();
    ASSERT_NE(dialog, nullptr);
    Fields answer{{32767, "get_sip_operation_mode"}};
    answer.insert(answer.end(), row.answer.begin(), row.answer.end());
    host.Answer(kOrderEntryControl, answer);

    EXPECT_EQ(probe::Items(dialog, order::kFrequency), row.frequencies);
    EXPECT_EQ(probe::Text(dialog, order::kFrequency), row.frequencies.empty() ? "" : row.frequencies.front());
    EXPECT_EQ(HasChildWithText(dialog, "SIP Periods"), row.serverPeriods);
    EXPECT_EQ(HasChildWithText(dialog, "Total Period ( < 60 )"), !row.serverPeriods);
    for (const int control : {order::kPeriodHint, order::kPeriodIcons[0], order::kPeriodIcons[1]})
        EXPECT_EQ(probe::IsShown(dialog, control), !row.serverPeriods) << control;
    EXPECT_TRUE(host.log.empty());
    EXPECT_EQ(boxes.Texts(), "");

    probe::SetEdit(dialog, order::kValue, "100");
    probe::SetEdit(dialog, order::kPeriod, "5");
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(boxes.Texts(), row.refused ? row.refused + std::string("|") : "");
    EXPECT_EQ(host.requests.size(), row.refused ? 1u : 2u);
    const std::string mode = row.sentMode ? "63715=" + std::string(row.sentMode) + ";" : "";
    if (row.refused) return;
    EXPECT_TRUE(host.LastRequest().ends_with("53405=N;" + mode + "64756=TWS;")) << host.LastRequest();
}

INSTANTIATE_TEST_SUITE_P(All, OperationMode, testing::Range<std::size_t>(0, std::size(kModes)));

TEST_F(PluginTest, PicksForgetTheMinimaOfTheServer) {
    HWND dialog = OpenOrderEntry();
    host.Answer(kOrderEntryControl, {{32767, "get_sip_operation_mode"}, {10012, "monthly"}, {54101, "6"}});
    plugin->Pick("Order Entry");
    probe::SetEdit(dialog, order::kValue, "100");
    probe::SetEdit(dialog, order::kPeriod, "5");
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(boxes.Texts(), "");
    EXPECT_EQ(host.requests.size(), 2u);
}

} // namespace
