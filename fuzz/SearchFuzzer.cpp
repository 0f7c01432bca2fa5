// The client search with any matches from the host, under any keys: what it shows is always there, and what it
// tells is what was picked.

#include "fuzz/Fuzz.h"
#include "tests/plugin/Doubles.h"

#include <cstring>

using fuzz::Demand;
using namespace planfold;

namespace {

// What the host gives; with a count that may not be theirs when there are none.
std::vector<std::string> g_texts;
std::vector<ClientResult> g_matches;
std::string g_valid;

const ClientResult* GiveMatches(int mode, int* count, InString, int) {
    Demand(mode >= 1 && mode <= 3);
    *count = g_matches.empty() ? 3 : static_cast<int>(g_matches.size());
    return g_matches.empty() ? nullptr : g_matches.data();
}
int IsValid(InString account) {
    return account->View() == g_valid;
}

struct Box final : test::SearchDouble {
    void ShowResults(int count, int row) override {
        Demand(count > 0 && row >= -1 && row < count);
        rows = count;
    }
    void SelectResult(int row) override { Demand(row >= 0 && row < rows); }
    void HideResults() override { Demand(std::exchange(rows, 0) > 0); }
    void TellPicked(const ClientResult& result) override {
        Demand(rows == 0 && text == result.clientId);
        Demand(std::strlen(result.clientName) < 5000);
        if (onPicked) onPicked->Search();
    }

    ClientSearch* onPicked = nullptr;
};

// "id|name" each; "-" gives a null text.
void ReadMatches(fuzz::Input& input) {
    g_texts.clear();
    g_matches.clear();
    while (!input.AtEnd()) {
        const std::string line = input.Line();
        std::string_view rest = line;
        g_texts.emplace_back(fuzz::Input::CutAt(rest, '|'));
        g_texts.emplace_back(rest);
    }
    const auto text = [](const std::string& kept) { return kept == "-" ? nullptr : kept.c_str(); };
    for (std::size_t i = 0; i + 1 < g_texts.size(); i += 2)
        g_matches.push_back({text(g_texts[i]), text(g_texts[i + 1])});
}

void Step(ClientSearch& search, Box& box, char step, const std::string& typed) {
    using Key = ClientSearch::Key;
    switch (step) {
    case 't':
        box.text += typed;
        return search.OnTyped();
    case 'w':
        return search.OnDelayElapsed();
    case 'l':
        return search.OnFocusLost();
    case 'c':
        if (box.rows) search.OnSelected(box.rows - 1);
        return;
    case 'p':
        return search.Pick(static_cast<int>(typed.size()) - 1);
    case '1':
    case '2':
    case '3':
        return search.SetMode(static_cast<SearchMode>(step - '0'));
    default:
        search.OnKey(static_cast<Key>(static_cast<unsigned char>(step) % 6));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Its strings, which are kept when they are freed, go with it.
    test::FakeHost host;
    Session session(host.Lookup(), host.IdentityStrings(), host.strings, host.record);
    session.host.pu_get_entered_text_results = GiveMatches;
    session.host.pu_is_valid_account = IsValid;
    fuzz::Input input(data, size);
    const std::string steps = input.Line();
    const std::string typed = input.Line();
    g_valid = input.Line();
    ReadMatches(input);

    Box box;
    ClientSearch search(session, box);
    search.SetUp(test::kPass, "key");
    if (steps.starts_with('a')) box.onPicked = &search;
    for (const char step : std::string_view(steps).substr(0, 100)) {
        Step(search, box, step, typed);
        Demand(search.Wants(ClientSearch::Key::escape) == (box.rows > 0));
        Demand(box.rows == 0 || box.rows == search.Results().Count());
    }
    return 0;
}
