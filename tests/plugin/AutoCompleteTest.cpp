// Completing a typed text from a list, and the search once the typing has paused.

#include "plugin/controls/AutoComplete.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

struct ComboDouble final : AutoCompleteView {
    std::string TypedText() const override { return text; }
    Texts Entries() const override { return {"CL100", "CL105", "cm1", "CL10"}; }
    void ShowCompletion(const std::string& entry, std::size_t typed) override {
        text = entry;
        seen += entry.substr(0, typed) + "[" + entry.substr(typed) + "]";
    }
    void PickEntry(int entry) override { seen += "pick " + std::to_string(entry); }
    void StartTimer() override { seen += "start "; }
    void StopTimer() override { seen += "stop "; }

    std::string text, seen;
};

TEST(AutoComplete, CompletesToTheFirstThatStartsSoAndPicksOnlyAnEqual) {
    struct Row {
        const char* text;
        const char* completed;
        const char* picked; // once the typing has paused
    };
    const Row rows[] = {
        {"c", "C[L100]", "pick 0"},
        {"cl105", "CL105[]", "pick 1"},
        {"CM", "cm[1]", "pick 2"},
        {"CL10", "CL10[0]", "pick 0"},
        {"CL1000", "", ""},
        {"L", "", ""},
        {"", "", ""},
    };
    for (const Row& row : rows) {
        ComboDouble combo;
        AutoComplete search(combo);
        combo.text = row.text;
        search.OnTyped();
        EXPECT_EQ(std::exchange(combo.seen, {}), row.completed);
        search.OnChanged();
        for (int tick = 0; tick < 5; ++tick)
            search.OnTimer();
        EXPECT_EQ(combo.seen, std::string("start stop ") + row.picked) << row.text;
    }
}

TEST(AutoComplete, WaitsForThePauseAndNeverBesideARunningTimer) {
    ComboDouble combo;
    AutoComplete search(combo);
    combo.text = "CL10"; // after a deletion: an entry of its own is meant
    search.OnChanged();
    for (int key = 0; key < 3; ++key) {
        search.OnTimer();
        search.OnTimer();
        search.OnChanged();
    }
    EXPECT_EQ(combo.seen, "start ");
    for (int tick = 0; tick < 3; ++tick)
        search.OnTimer();
    EXPECT_EQ(combo.seen, "start stop pick 3");
    search.OnChanged();
    search.Forget();
    search.OnTimer();
    EXPECT_EQ(combo.seen, "start stop pick 3start stop ");
}

TEST(AutoComplete, TheHostsDelayIsAskedForTwice) {
    FakeHost host;
    for (const auto& [answers, period, calls] : {std::tuple{std::deque{900, 1200}, 400u, 2},
                                                 {std::deque{0, 900}, 1000u, 1},
                                                 {std::deque{900, 0}, 1u, 2},
                                                 {std::deque{-1, -50}, 1u, 2}}) {
        host.calls.clear();
        host.searchTimes = answers;
        EXPECT_EQ(SearchTimerPeriod(ResolveHostCallbacks(host.Lookup())), period);
        EXPECT_EQ(host.CallsOf("pu_get_client_search_time"), calls);
    }
    EXPECT_EQ(SearchTimerPeriod({}), 1000u) << "a host without the export";
}

} // namespace
} // namespace planfold::test
