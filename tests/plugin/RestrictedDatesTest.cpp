// The restricted dates: lists, checks, requests and answers, without a window.

#include "plugin/restricted/RestrictedDates.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class RestrictedDatesTest : public ::testing::Test, protected Stage {
protected:
    void SetUp() override { dates.Initialise({2027, 12, 31, 23, 59, 59}); }

    void Choose(int from, int to, int year) {
        for (const auto& [list, index] :
             {std::pair{IDC_RESTRICT_FROM, from}, {IDC_RESTRICT_TO, to}, {IDC_RESTRICT_YEAR, year}})
            view.Select(list, index);
    }
    void FillHeld() {
        for (const int edit : {IDC_HELD_FROM, IDC_HELD_TO, IDC_HELD_YEAR})
            view.SetText(edit, "1");
    }
    std::string Held() const {
        return view.Text(IDC_HELD_FROM) + "|" + view.Text(IDC_HELD_TO) + "|" + view.Text(IDC_HELD_YEAR);
    }
    void Answer(Fields fields, const char* name) {
        fields.push_back({32767, {name}});
        dates.OnResponse(Received(fields).Message());
    }

    DialogDouble view;
    RestrictedDates dates{session, view, &control};
};

constexpr char kSet[] = "calendar_add_restricted_dates";
constexpr char kGet[] = "calendar_get_restricted_dates";

TEST_F(RestrictedDatesTest, OffersDaysAndYearsUnchosenOrTellsThatAListIsMissing) {
    for (const auto& [list, first, last, count] : {std::tuple{IDC_RESTRICT_FROM, "1", "31", 31u},
                                                   {IDC_RESTRICT_TO, "1", "31", 31u},
                                                   {IDC_RESTRICT_YEAR, "2027", "2047", 21u}}) {
        const auto& [text, items, selected, shown, enabled, digits] = view.controls[list];
        EXPECT_EQ(items.front() + " " + items.back(), std::string(first) + " " + last);
        EXPECT_EQ(items.size(), count);
        EXPECT_EQ(selected, -1);
    }
    for (const int list : {IDC_RESTRICT_FROM, IDC_RESTRICT_TO, IDC_RESTRICT_YEAR}) {
        view.lacking = {list};
        dates.Initialise({2027, 1, 1});
        EXPECT_EQ(std::exchange(view.boxes, {}), Texts{"Populating days failed"});
    }
}

TEST_F(RestrictedDatesTest, ChecksInOrderThenSendsAndClearsWhatWasHeld) {
    struct Row {
        int from, to, year; // indices
        const char* box;
        const char* request;
    };
    const Row rows[] = {
        {-1, -1, -1, "Please select a From date", nullptr},
        {30, -1, -1, "Please select a To date", nullptr},
        {30, 0, -1, "Please select the year", nullptr},
        {30, 0, 0, "From date can't be greater than To date", nullptr},
        {9, 8, 0, "From date can't be greater than To date", nullptr}, // 10 and 9, compared as numbers
        {4, 4, 0, nullptr, "49165=5 63025=5 46000=2027"},
        {8, 9, 20, nullptr, "49165=9 63025=10 46000=2047"},
    };
    for (const Row& row : rows) {
        host.requests.clear();
        FillHeld();
        Choose(row.from, row.to, row.year);
        dates.Set();
        EXPECT_EQ(std::exchange(view.boxes, {}), row.box ? Texts{row.box} : Texts{});
        EXPECT_EQ(host.requests,
                  row.request ? Texts{"0=calendar_add_restricted_dates " + std::string(row.request)} : Texts{});
        EXPECT_EQ(Held(), row.request ? "||" : "1|1|1");
        EXPECT_EQ(view.controls[IDC_RESTRICT_FROM].selected, row.from);
    }
    dates.Get();
    EXPECT_EQ(host.LastRequest(), "0=calendar_get_restricted_dates");
}

TEST_F(RestrictedDatesTest, EveryStepThatFailsIsTold) {
    struct Row {
        FailQmxCall::Function function;
        int call;
        const char* box;
    };
    constexpr const char* name = "Failed to add the request calendar_add_restricted_dates";
    const Row rows[] = {
        {FailQmxCall::startMsg, 1, "zup_add_parameter: Error while building message"},
        {FailQmxCall::addData, 1, name},
        {FailQmxCall::addData, 2, "Failed to add start date"},
        {FailQmxCall::addData, 3, "Failed to add start date"},
        {FailQmxCall::addData, 4, "Failed to add start date"},
        {FailQmxCall::functionCount, 0, "Sending Request calendar_add_restricted_dates Failed"},
    };
    Choose(0, 1, 2);
    for (const Row& row : rows)
        for (const bool get : {false, true}) {
            if (get && row.function == FailQmxCall::addData && row.call > 1) continue;
            FillHeld();
            host.refuses = row.function == FailQmxCall::functionCount;
            std::optional<FailQmxCall> failing;
            if (!host.refuses) failing.emplace(row.function, row.call);
            get ? dates.Get() : dates.Set();
            EXPECT_EQ(std::exchange(view.boxes, {}), Texts{row.box});
            EXPECT_EQ(Held(), get ? "1|1|1" : "||") << row.box;
        }
    EXPECT_EQ(host.requests, Texts{});
    RestrictedDates(session, view, nullptr).Get();
    EXPECT_EQ(view.boxes, Texts{rows[5].box}) << "without a control";
}

TEST_F(RestrictedDatesTest, AnswersAreShownOrLogged) {
    struct Row {
        const char* name;
        Fields fields;
        const char* box;
        const char* log;
        const char* held;
        int resends = 0;
    };
    const Row rows[] = {
        {kSet, {}, "Restricted Date configured Succesfully", nullptr, "1|1|1", 1},
        {kSet,
         {{32766, {"41"}}},
         nullptr,
         "Error in response : calendar_add_restricted_dates . Error Code : 41",
         "1|1|1"},
        {kGet,
         {{49165, {"5"}}, {63025, {"31"}}, {46000, {"2030"}}},
         nullptr,
         "Restricted date retrieved succesfully",
         "5|31|2030"},
        {kGet, {{46000, {"2030"}}, {63025, {""}}}, nullptr, "Restricted date retrieved succesfully", "||2030"},
        {kGet,
         {{32766, {"7"}}, {49165, {"5"}}},
         nullptr,
         "Error in response : calendar_get_restricted_dates . Error Code : 7",
         "1|1|1"},
        {"add_sip_orders", {{49165, {"5"}}}, nullptr, nullptr, "1|1|1"},
    };
    for (const Row& row : rows) {
        host.calls.clear();
        FillHeld();
        Answer(row.fields, row.name);
        EXPECT_EQ(std::exchange(view.boxes, {}), row.box ? Texts{row.box} : Texts{});
        EXPECT_EQ(std::exchange(host.log, {}), row.log ? Texts{row.log} : Texts{});
        EXPECT_EQ(Held(), row.held);
        EXPECT_EQ(host.CallsOf("pu_resend_nontradingDate_Request"), row.resends);
    }
    session.host.pu_resend_nontradingDate_Request = nullptr;
    Answer({}, kSet);
    EXPECT_EQ(view.boxes.size(), 1u) << "a host without the export";
    session.End();
    Answer({}, kSet);
    EXPECT_EQ(view.boxes.size(), 1u) << "nothing is told after the end";
}

} // namespace
} // namespace planfold::test
