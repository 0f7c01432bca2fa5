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
        seen += entry.substr(0, typed) + "[" + entry.substr(typed) + "] ";
    }
    void PickEntry(int entry) override { seen += "pick " + std::to_string(entry); }
    void StartTimer() override { seen += "start "; }
    void StopTimer() override { seen += "stop "; }

    std::string text, seen;
};

TEST(AutoComplete, CompletesToTheFirstThatStartsSoAndPicksOnlyAnEqualAfterThePause) {
    struct Row {
        const char* text;
        bool deleted;
        const char* seen;
    };
    const Row rows[] = {
        {"c", false, "C[L100] start stop pick 0"},
        {"CM", false, "cm[1] start stop pick 2"},
        {"CL10", true, "start stop pick 3"},
        {"CL1", true, "start stop "},
        {"CL1000", false, "start stop "},
        {"", false, "start stop "},
        {"cl105", false, "CL105[] start stop pick 1"},
    };
    for (const Row& row : rows) {
        ComboDouble combo;
        AutoComplete search(combo);
        combo.text = row.text;
        if (!row.deleted) search.OnTyped();
        for (const bool changes : {true, false, false, true, false, false, false, false})
            changes ? search.OnChanged() : search.OnTimer();
        EXPECT_EQ(combo.seen, row.seen) << "one timer, whatever is typed meanwhile";
    }
}

TEST(AutoComplete, TheHostsDelayIsAskedForTwice) {
    FakeHost host;
    for (const auto& [answers, period, calls] : {std::tuple{std::deque{900, 1200}, 400u, 2},
                                                 {std::deque{0, 900}, 1000u, 1},
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
