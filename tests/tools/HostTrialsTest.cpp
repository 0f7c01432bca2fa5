// What is said of a host's exports when they are called.
#include "tests/support/FakeHost.h"
#include "tools/planfold-hostcheck/Trials.h"

#include <gtest/gtest.h>

namespace {

using hostcheck::AnyFunction;
using hostcheck::State;
using planfold::test::FakeHost;
using planfold::test::Host;

struct FakePlace final : hostcheck::Workplace {
    HostWindow Form() const override { return nullptr; }
    HostWindow Control(int) const override { return nullptr; }
    std::vector<std::string> Items(int combo) const override {
        if (combo == hostcheck::id::symbol) return {Host().scrips.front().symbol};
        if (combo == hostcheck::id::series) return {"EQ", "BE"};
        if (combo == hostcheck::id::client || combo == hostcheck::id::product) return {"any"};
        return {};
    }
    void Choose(int, std::string_view) override {}
    bool IsWindow(HostWindow) const override { return true; }
    bool IsFolder(std::string_view path) const override { return path == Host().userDirectory; }
    void WaitUntil(const std::function<bool()>& isSo) override {
        if (answers) Host().Answer(std::string("errorCode= echoedRequest=") + answers);
        EXPECT_EQ(isSo(), answers != nullptr);
    }
    void Begin(std::string_view name) override { begun.emplace_back(name); }

    const char* answers = "get_sip_operation_mode";
    std::vector<std::string> begun;
};

std::vector<CString> g_kept; // by hosts that keep texts

int AnotherUuid(OutString identifier) {
    static int number = 0;
    *identifier = std::to_string(++number);
    return 1;
}

class HostTrials : public testing::Test {
protected:
    hostcheck::Findings Run() {
        const planfold::HostLookup usual = m_host.Lookup();
        return hostcheck::TryExports(
            [&](const char* name) { return instead.contains(name) ? instead.at(name) : usual(name); }, m_place,
            m_strings);
    }
    hostcheck::Finding Find(std::string_view name) {
        const auto exports = Run().exports;
        return *std::ranges::find(exports, name, &hostcheck::Finding::name);
    }

    HeapStringManager m_strings;
    FakeHost m_host;
    FakePlace m_place;
    std::map<std::string, AnyFunction> instead{{"pu_get_uuid", reinterpret_cast<AnyFunction>(AnotherUuid)}};
};

TEST_F(HostTrials, AGoodHostIsTriedWithAllThatHarmsNobody) {
    const hostcheck::Findings findings = Run();
    EXPECT_EQ(findings.exports.size(), std::size(sdk::kHostExportUses));
    for (const hostcheck::Finding& one : findings.exports)
        EXPECT_LE(one.state, State::untried) << one.name << ' ' << one.detail;
    EXPECT_EQ(Summary(findings), "30 of 37 exports are as they must be, 7 were not tried");
    EXPECT_EQ(m_place.begun.size(), 37);
    EXPECT_EQ(m_host.requests, planfold::test::Texts{"get_sip_operation_mode"});
    EXPECT_EQ(m_host.misuses, planfold::test::Texts());
    EXPECT_EQ(m_host.LiveControls(), 0);
    for (const char* call :
         {"register_hotkey", "pu_invoke_caution_order_confirmation", "pu_build_bskt_caution_order_map"})
        EXPECT_EQ(m_host.CallsOf(call), 0) << call;
}

template <class Function>
AnyFunction As(Function* function) {
    return reinterpret_cast<AnyFunction>(function);
}
#define INSTEAD(name, ...) #name, As(static_cast <sdk::fn::name*>(__VA_ARGS__))

TEST_F(HostTrials, AWrongAnswerIsNamed) {
    static const std::uint32_t noMonth[] = {20271301}, falling[] = {20270105, 20270104};
    static const NonTradingDates noDates{1, 0, nullptr}, wrongDates{1, 0, noMonth}, fallingDates{2, 0, falling};
    static VeskApp small{8, 0, nullptr, nullptr};
    static HeapStringManager another;
    const struct {
        const char* name;
        AnyFunction function;
        const char* detail;
    } cases[] = {
        {INSTEAD(pu_get_exe_app, []() -> VeskApp* { return nullptr; }), "gives no application"},
        {INSTEAD(pu_get_exe_app, [] { return &small; }), "gives a record of 8 bytes, not 24"},
        {INSTEAD(pu_is_actionright_enabled, [](InString) { return 1; }), "grants a right that there is not"},
        {INSTEAD(pu_is_actionright_enabled, [](InString) { return 0; }),
         "does not grant \"QV: Planfold\": nothing opens for this user"},
        {INSTEAD(pu_get_uuid,
                 [](OutString id) {
                     *id = "7";
                     return 1;
                 }),
         "gives \"7\" twice"},
        {INSTEAD(pu_get_uuid, [](OutString) { return 0; }), "gives none"},
        {INSTEAD(pu_get_UserDirectory,
                 [](OutString to) {
                     *to = "C:\\user\\";
                     return 1;
                 }),
         "gives \"C:\\user\\\", with a closing backslash"},
        {INSTEAD(pu_get_UserDirectory,
                 [](OutString to) {
                     *to = "C:\\none";
                     return 1;
                 }),
         "gives \"C:\\none\", which is no folder"},
        {INSTEAD(pu_add_to_tabbed_log,
                 [](ByValueString text) {
                     g_kept.push_back(*text);
                     text->~CString();
                     return 1;
                 }),
         "does not destroy the text that it is passed by value, or keeps it"},
        {INSTEAD(pu_read_settings_from_json,
                 [](InString, InString, OutString value, int) {
                     *value = "1";
                     return 1;
                 }),
         "tells \"1\" as the setting, not \"2\""},
        {INSTEAD(pu_get_non_trading_dates_map, [] { return &noDates; }), "gives a count without dates"},
        {INSTEAD(pu_get_non_trading_dates_map, [] { return &wrongDates; }),
         "gives 20271301, which is no date as yyyymmdd"},
        {INSTEAD(pu_get_non_trading_dates_map, [] { return &fallingDates; }),
         "gives dates that do not ascend, at 20270104"},
        {INSTEAD(pu_get_peer_data,
                 [](OutString broker, OutString, OutString) {
                     *broker = CString("B", another);
                     return 1;
                 }),
         "puts another manager's text in place of the plug-in's"},
        {INSTEAD(pu_get_ActiveClient,
                 [](OutString client) {
                     *client = std::string_view("C\0", 2);
                     return 1;
                 }),
         "leaves a text whose length is not that of its letters"},
        {INSTEAD(pu_get_ActiveClient,
                 [](OutString client) {
                     g_kept.push_back(*client = "C001");
                     return 1;
                 }),
         "keeps a text that is the plug-in's"},
        {INSTEAD(pu_is_valid_account, [](InString) { return 1; }), "takes \"NO-SUCH-THING\" for an account"},
        {INSTEAD(pu_is_valid_account, [](InString) { return 0; }),
         "does not know \"C001\", which the search found"},
        {INSTEAD(pu_get_client_name, [](OutString, InString) { return 1; }),
         "has a name for \"NO-SUCH-THING\""},
        {INSTEAD(pu_get_entered_text_results,
                 [](int, int* count, InString, int) -> const ClientResult* {
                     *count = 3;
                     return nullptr;
                 }),
         "gives a count without results"},
        {INSTEAD(pu_get_trading_symbol_n_token,
                 [](HostWindow, int, int, int, int, int, int, OutString s, OutString t) {
                     *s = "S";
                     *t = "1045";
                     return 1;
                 }),
         "tells \"S\" and \"1045\", not like \"nse_cm|1045\""},
        {INSTEAD(pu_get_scrip_details_from_TradSymbol,
                 [](InString, InString symbol, ScripDetails* out) {
                     return symbol->View() == "ARBORTEX-EQ" ? out : nullptr;
                 }),
         "tells a price multiplier that is not above 0"},
        {INSTEAD(pu_get_intersted_scrip_field, [](InString, int, int, OutString, OutString, OutString,
                                                  OutString, OutString, OutString) { return 1; }),
         "finds \"NO-SUCH-THING\""},
        {INSTEAD(GetKeloRxControl, [](int, CKeloRxNotifierBase*) -> RxControl* { return nullptr; }),
         "gives no control of kind 0"},
        {INSTEAD(pu_get_FontVariation,
                 [](std::intptr_t* more, std::intptr_t*, void*, void*) {
                     *more = 1 << 20;
                     return 1;
                 }),
         "gives a size of 0 points, and 1048576 more"},
    };
    for (const auto& [name, function, detail] : cases) {
        const auto usual = instead;
        instead[name] = function;
        const hostcheck::Finding found = Find(name);
        EXPECT_EQ(found.state, State::wrong) << name;
        EXPECT_EQ(found.detail, detail) << name;
        g_kept.clear();
        instead = usual;
    }
}

TEST_F(HostTrials, WhatNeedsAnotherExportIsNotTriedWithoutIt) {
    m_host.missing = {"pu_fill_scrip_combos", "pu_get_entered_text_results", "DestoryKeloRxCOntrol"};
    EXPECT_EQ(Find("pu_fill_scrip_combos").state, State::missing);
    for (const char* name : {"pu_get_trading_symbol_n_token", "pu_get_intersted_scrip_field",
                             "pu_get_scrip_details_from_TradSymbol", "pu_is_valid_account", "GetKeloRxControl"})
        EXPECT_EQ(Find(name).state, State::untried) << name;
    EXPECT_EQ(m_host.CallsOf("GetKeloRxControl"), 0);
    EXPECT_NE(AsText(Run(), "host").find("host: GetKeloRxControl was not tried: needs its counterpart\n"),
              std::string::npos);
}

TEST_F(HostTrials, TheServersAnswerComesFromTheLoopAndNamesItsRequest) {
    const struct {
        const char* answers;
        const char* detail;
    } cases[] = {
        {nullptr, "gives a control that \"get_sip_operation_mode\" brought no answer for in ten seconds"},
        {"add_sip_orders", "gives a control whose answers do not name their request"},
    };
    for (const auto& [answers, detail] : cases) {
        m_place.answers = answers;
        EXPECT_EQ(Find("GetKeloRxControl").detail, detail);
    }
    m_place.answers = "get_sip_operation_mode";
    m_host.onRequest = [&] { m_host.Answer("errorCode= echoedRequest=get_sip_operation_mode"); };
    EXPECT_EQ(Find("GetKeloRxControl").detail, "gives a control that answers from inside SendRequest");
    m_host.onRequest = nullptr;
    m_host.refuses = true;
    EXPECT_TRUE(Find("GetKeloRxControl").detail.starts_with("gives a control that refuses a request"));
}

} // namespace
