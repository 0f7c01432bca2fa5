// The client search and the value edit's text, without their windows.

#include "plugin/controls/TypedText.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

using Key = ClientSearch::Key;

class ClientSearchTest : public ::testing::Test, protected SearchDouble, protected Stage {
protected:
    void SetUp() override {
        host.clients = {{"C001", "Asha Rao"}, {"C002", "Bela Shah"}, {"C0021", "Chetan Rao"}};
        search.SetUp(kPass, "box");
    }

    void Type(std::string_view typed) {
        text = typed;
        search.OnTyped();
    }
    // "1,RAO": the mode and the text of the last search.
    std::string Asked() const {
        for (auto call = host.calls.rbegin(); call != host.calls.rend(); ++call)
            if (call->starts_with("pu_get_entered")) return call->substr(28, call->size() - 29);
        return {};
    }
    // "asked, box ..., list: rows/selected" and what was picked.
    std::string State() const {
        return Asked() + ", box " + text + ", list "
               + (rows == 0 ? "hidden" : std::to_string(rows) + "/" + std::to_string(selected))
               + (picked.empty() ? "" : ", picked " + picked + ", tip " + tip);
    }

    ClientSearch search{session, *this};
};

TEST_F(ClientSearchTest, AsksTheHostAndShowsWhatItFinds) {
    struct Row {
        const char* typed;
        std::string state;
    };
    host.validAccounts = {"C002", "C009"};
    const Row rowsOfTable[] = {
        {"rao", "1,RAO, box rao, list 2/-1"},      {"c00", "1,C00, box c00, list 3/-1"},
        {"c002", "1,C002(, box c002, list 1/0"},   // an account of the user: exactly that one
        {"nobody", "1,NOBODY, box , list hidden"}, // no match empties the box
        {"   ", "1,   , box , list 3/-1"},         {"c009", "1,C009(, box , list hidden"},
    };
    for (const Row& row : rowsOfTable) {
        Type(row.typed);
        EXPECT_TRUE(delayed);
        search.OnDelayElapsed();
        EXPECT_FALSE(delayed);
        EXPECT_EQ(State(), row.state) << row.typed;
    }
}

TEST_F(ClientSearchTest, AnAccountThatNoRowMatchesEmptiesTheBoxBelowTenThousandRows) {
    host.validAccounts = {"ZZ"};
    for (const int count : {9999, 10000}) {
        host.clients.assign(static_cast<std::size_t>(count), {"ZZ(9", "Someone"});
        Type("zz");
        search.Search();
        EXPECT_EQ(State(), count < 10000 ? "1,ZZ(, box , list hidden" : "1,ZZ(, box zz, list 10000/-1");
    }
}

TEST_F(ClientSearchTest, KeysMoveAndPick) {
    host.validAccounts.clear();
    EXPECT_FALSE(search.Wants(Key::enter)); // nothing typed: Enter is the dialog's
    EXPECT_FALSE(search.Wants(Key::escape));
    Type("c00");
    EXPECT_TRUE(search.Wants(Key::enter));
    search.OnKey(Key::enter); // at once, not after the delay
    EXPECT_EQ(State(), "1,C00, box c00, list 3/-1");
    search.OnKey(Key::enter); // only shows the first
    EXPECT_EQ(State(), "1,C00, box c00, list 3/0");
    search.OnKey(Key::down);
    search.OnKey(Key::pageDown);
    EXPECT_EQ(selected, 2);
    search.OnKey(Key::pageUp);
    EXPECT_EQ(selected, 0);
    search.OnKey(Key::down);
    search.OnKey(Key::enter);
    EXPECT_EQ(State(), "1,C00, box C002, list hidden, picked C002, tip C002(Bela Shah)");
    EXPECT_TRUE(textSelected);

    search.OnKey(Key::down); // opens the list again
    EXPECT_EQ(rows, 2);
    EXPECT_TRUE(search.Wants(Key::escape));
    search.OnKey(Key::escape);
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(text, "C002");
    search.OnKey(Key::down);
    search.OnKey(Key::down); // the first of two
    search.OnKey(Key::enter);
    EXPECT_EQ(State(), "1,C002, box C002, list hidden, picked C002, tip C002(Bela Shah)");
}

TEST_F(ClientSearchTest, ASingleMatchIsTakenByEnter) {
    Type("bela");
    search.OnKey(Key::down);
    search.OnKey(Key::enter);
    EXPECT_EQ(picked, "C002");
}

TEST_F(ClientSearchTest, LosingTheFocusOrEmptyingTheBoxClosesTheList) {
    Type("rao");
    search.OnFocusLost();
    EXPECT_FALSE(delayed) << "nothing comes later";
    search.Search();
    search.OnFocusLost();
    EXPECT_EQ(rows, 0);
    search.Search();
    Type("");
    EXPECT_EQ(rows, 0);
    EXPECT_FALSE(delayed);
    for (const int row : {-1, 2, 99}) {
        search.Pick(row);
        EXPECT_EQ(picked, "") << "no such row: " << row;
    }
}

TEST_F(ClientSearchTest, ModesAreKeptApartByBox) {
    search.SetMode(SearchMode::clientName);
    EXPECT_EQ(host.settings["Client_Search_Settings/box"], "3");
    ClientSearch other(session, *this);
    other.SetUp(kPass, "other");
    EXPECT_EQ(other.Mode(), SearchMode::all);
    other.SetMode(SearchMode::clientId);
    search.SetUp(kPass, "box");
    EXPECT_EQ(search.Mode(), SearchMode::clientName);
    Type("rao");
    search.Search();
    EXPECT_EQ(Asked(), "3,RAO");
    for (const char* bad : {"", "0", "4", "-1", "abc"}) {
        host.settings["Client_Search_Settings/box"] = bad;
        search.SetUp(kPass, "box");
        EXPECT_EQ(search.Mode(), SearchMode::all) << bad;
    }
}

TEST(ClientResults, TakesCopiesAndDistrustsTheHost) {
    ClientResults results;
    {
        std::string id = "C1";
        const ClientResult rows[] = {{id.c_str(), nullptr}, {nullptr, "Name"}};
        results.Assign(rows, 2);
    }
    ASSERT_EQ(results.Count(), 2);
    EXPECT_STREQ(results.Row(0).clientId, "C1");
    EXPECT_STREQ(results.Row(0).clientName, "");
    EXPECT_STREQ(results.Row(1).clientName, "Name");
    results.Assign(nullptr, 5);
    EXPECT_EQ(results.Count(), 0);
    const ClientResult one{"a", "b"};
    results.Assign(&one, -1);
    EXPECT_EQ(results.Count(), 0);
}

TEST(ValueText, LetsThroughAndKeepsOnlyAPositiveDecimal) {
    constexpr std::string_view allowed = "0123456789.";
    for (const char32_t typed : {U'0', U'9', U'.', U'\x03', U'\x08', U'\x16', U'\x18'})
        EXPECT_TRUE(MayBeTyped(typed, allowed)) << static_cast<int>(typed);
    for (const char32_t typed : {U'-', U'a', U' ', U',', U'\x01', U'\x0D', U'\u20B9', U'\u0130'})
        EXPECT_FALSE(MayBeTyped(typed, allowed)) << static_cast<int>(typed);
    EXPECT_TRUE(MayBeTyped(U'x', ""));
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"12.5", "12.5"},
        {"12.5.3", "12.53"},
        {"1,234.50 Rs", "1234.50"},
        {"-5", "5"},
        {"...", "."},
        {"Rs. 10.50", ".1050"},
        {"\xFF"
         "1",
         "1"},
    };
    for (const auto& [text, clean] : rows)
        EXPECT_EQ(CleanValueText(text), clean) << text;
}

} // namespace
} // namespace planfold::test
