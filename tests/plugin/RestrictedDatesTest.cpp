// The restricted dates: lists, checks, requests and answers, without a window.

#include "plugin/restricted/RestrictedDates.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

constexpr int kLists[] = {IDC_RESTRICT_FROM, IDC_RESTRICT_TO, IDC_RESTRICT_YEAR};
constexpr int kHeld[] = {IDC_HELD_FROM, IDC_HELD_TO, IDC_HELD_YEAR};

class RestrictedDatesTest : public ::testing::Test, protected Stage {
protected:
    void SetUp() override { dates.Initialise({2027, 12, 31, 23, 59, 59}); }

    // What a step leaves, after each display has been filled with "1".
    template <class Step>
    std::string After(Step step) {
        for (const int edit : kHeld)
            view.SetText(edit, "1");
        host.requests.clear();
        host.calls.clear();
        step();
        std::string seen;
        for (Texts* texts : {&view.boxes, &host.requests, &host.log, &host.calls})
            for (const std::string& text : std::exchange(*texts, {}))
                seen += text + ";";
        for (const int edit : kHeld)
            seen += view.Text(edit) + "|";
        return seen;
    }

    DialogDouble view;
    RestrictedDates dates{session, view, &control};
};

TEST_F(RestrictedDatesTest, OffersDaysAndYearsUnchosenOrTellsThatAListIsMissing) {
    std::string offered;
    for (const int list : kLists) {
        const DialogDouble::Control& its = view.controls[list];
        offered += its.items.front() + "-" + its.items.back() + " " + std::to_string(its.selected) + ";";
    }
    EXPECT_EQ(offered, "1-31 -1;1-31 -1;2027-2047 -1;");
    for (const int list : kLists) {
        view.lacking = {list};
        EXPECT_EQ(After([&] { dates.Initialise({2027, 1, 1}); }), "Populating days failed;1|1|1|");
    }
}

TEST_F(RestrictedDatesTest, ChecksInOrderThenSendsAndClearsWhatWasHeld) {
    struct Row {
        int chosen[3]; // indices
        const char* seen;
    };
    const Row rows[] = {
        {{-1, -1, -1}, "Please select a From date;1|1|1|"},
        {{30, -1, -1}, "Please select a To date;1|1|1|"},
        {{30, 0, -1}, "Please select the year;1|1|1|"},
        {{9, 8, 0}, "From date can't be greater than To date;1|1|1|"}, // 10 and 9, compared as numbers
        {{4, 4, 0}, "calendar_add_restricted_dates startDate=5 restrictedTo=5 restrictedYear=2027;|||"},
        {{8, 9, 20}, "calendar_add_restricted_dates startDate=9 restrictedTo=10 restrictedYear=2047;|||"},
    };
    for (const Row& row : rows) {
        for (int i = 0; i < 3; ++i)
            view.Select(kLists[i], row.chosen[i]);
        EXPECT_EQ(After([&] { dates.Set(); }), row.seen);
        EXPECT_EQ(view.controls[IDC_RESTRICT_FROM].selected, row.chosen[0]);
    }
    EXPECT_EQ(After([&] { dates.Get(); }), "calendar_get_restricted_dates;1|1|1|");
}

TEST_F(RestrictedDatesTest, EveryStepThatFailsIsTold) {
    struct Row {
        FailQmxCall::Function function;
        int call;
        const char* box;
        bool ofBoth = true;
    };
    const Row rows[] = {
        {FailQmxCall::startMsg, 1, "zup_add_parameter: Error while building message;"},
        {FailQmxCall::addData, 1, "Failed to add the request calendar_add_restricted_dates;"},
        {FailQmxCall::addData, 4, "Failed to add start date;", false},
        {FailQmxCall::openScratch, 0, "Sending Request calendar_add_restricted_dates Failed;"},
    };
    for (const int list : kLists)
        view.Select(list, 0);
    for (const Row& row : rows) {
        host.refuses = row.call == 0;
        const auto tried = [&](void (RestrictedDates::*action)()) {
            const FailQmxCall failing(row.function, row.call);
            return After([&] { (dates.*action)(); });
        };
        EXPECT_EQ(tried(&RestrictedDates::Set), row.box + std::string("|||"));
        if (!row.ofBoth) continue;
        EXPECT_EQ(tried(&RestrictedDates::Get), row.box + std::string("1|1|1|"));
    }
}

TEST_F(RestrictedDatesTest, AnswersAreShownOrLogged) {
    struct Row {
        const char* name;
        Fields fields;
        const char* seen;
    };
    constexpr const char *set = "calendar_add_restricted_dates", *get = "calendar_get_restricted_dates";
    const Row rows[] = {
        {set, {}, "Restricted Date configured Succesfully;pu_resend_nontradingDate_Request();1|1|1|"},
        {set, "errorCode=41", "Error in response : calendar_add_restricted_dates . Error Code : 41;1|1|1|"},
        {get, "startDate=5 restrictedTo=31 restrictedYear=2030",
         "Restricted date retrieved succesfully;5|31|2030|"},
        {get, "restrictedYear=2030 restrictedTo=", "Restricted date retrieved succesfully;||2030|"},
        {get, "errorCode=7", "Error in response : calendar_get_restricted_dates . Error Code : 7;1|1|1|"},
        {"add_sip_orders", "startDate=5", "1|1|1|"},
    };
    const auto answer = [&](Fields fields, const char* name) {
        fields.push_back({tag::echoedRequest, {name}});
        return After([&] { dates.OnResponse(Received(fields).Message()); });
    };
    for (const Row& row : rows)
        EXPECT_EQ(answer(row.fields, row.name), row.seen);
    for (const char* told :
         {"startDate=5 restrictedTo=6 restrictedYear=2031", "startDate=1 restrictedTo=2 restrictedYear=2030"})
        answer(told, get);
    std::string known;
    for (const RestrictedRange& range : session.restricted)
        known += Format("%d: %d-%d;", range.year, range.from, range.to);
    EXPECT_EQ(known, "2031: 5-6;2030: 1-2;") << "one range a year";
    session.host.pu_resend_nontradingDate_Request = nullptr;
    EXPECT_EQ(answer({}, set), "Restricted Date configured Succesfully;1|1|1|");
    session.End();
    EXPECT_EQ(answer({}, set), "1|1|1|") << "nothing is told after the end";
}

} // namespace
} // namespace planfold::test
