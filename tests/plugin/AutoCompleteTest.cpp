// Typing in combos: completing a typed text from a list, the search once the typing has paused, and letters
// that are collected over a drop-down list.

#include "plugin/base/Text.h"
#include "plugin/controls/TypedText.h"
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

TEST(TypeAhead, CollectsWhatIsTypedUntilAPause) {
    // As a combo finds: the first behind a place that begins so, ignoring case, going on from the top.
    const Texts entries{"ALPHATEX", "BASALTAGRO", "BASALTCHEM", "GARNETAGRO", "SAFFRON", "1", "15", "5"};
    const auto find = [&](const std::string& text, int after) {
        for (std::size_t i = 1; i <= entries.size(); ++i) {
            const std::size_t place = (static_cast<std::size_t>(after) + i) % entries.size();
            if (StartsWithIgnoringCase(entries[place], text)) return static_cast<int>(place);
        }
        return -1;
    };
    struct Row {
        const char* typed; // '_' is a pause
        int selected;
        const char* then;
    };
    const Row rows[] = {
        {"BASALTAG", -1, "BASALTAGRO"}, {"B", -1, "BASALTAGRO"},         {"B", 1, "BASALTCHEM"},
        {"BBB", -1, "BASALTAGRO"},      {"BASALTAGRO", 1, "BASALTAGRO"}, {"1_5", -1, "5"},
        {"BAS_G", -1, "GARNETAGRO"},    {"BAXG", -1, "BASALTAGRO"},      {"X", 3, "GARNETAGRO"},
    };
    for (const Row& row : rows) {
        TypeAhead typeAhead;
        int selected = row.selected;
        unsigned now = UINT_MAX - 1; // the clock wraps around
        for (const char* typed = row.typed; *typed; ++typed) {
            now += *typed == '_' ? TypeAhead::kPauseMs + 1 : 1;
            if (*typed == '_') continue;
            const int found = typeAhead.OnCharacter(*typed, now, selected, find);
            if (found >= 0) selected = found;
        }
        EXPECT_EQ(entries[static_cast<std::size_t>(selected)], row.then) << row.typed;
    }
}

TEST(AutoComplete, TheHostsDelayIsAskedForTwice) {
    FakeHost host;
    for (const auto& [answers, period, calls] : {std::tuple{std::deque{900, 1200}, 400u, 2},
                                                 {std::deque{0, 900}, 1000u, 1},
                                                 {std::deque{-1, -50}, 1u, 2}}) {
        host.calls.clear();
        host.searchTimes = answers;
        EXPECT_EQ(SearchTimerPeriod(kPass, ResolveHostCallbacks(host.Lookup())), period);
        EXPECT_EQ(host.CallsOf("pu_get_client_search_time"), calls);
    }
    EXPECT_EQ(SearchTimerPeriod(kPass, {}), 1000u) << "a host without the export";
}

} // namespace
} // namespace planfold::test
