#include "framework/PendingTexts.h"
#include "plugin/shell/HostCheck.h"
#include "sdk/HeapStringManager.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace planfold::test {
namespace {

Texts TextsOf(const CStringArray& array) {
    Texts texts;
    for (const CString& element : array.Elements())
        texts.emplace_back(element.View());
    return texts;
}

TEST(PluginInfo, AppendsAndOffersTheFourthEntryOnlyToHoldersOfTheRight) {
    struct Row {
        bool hostCanTell;
        bool right;
        std::size_t entries;
    };
    for (const Row& row : {Row{true, true, 4}, Row{true, false, 3}, Row{false, true, 3}}) {
        FakeHost host;
        if (!row.hostCanTell) host.missing.insert("pu_is_actionright_enabled");
        if (row.right) host.rights.insert("QV: Planfold: SIP Set Restricted Date");
        HeapStringManager own;
        {
            CString name(host.strings), version(host.strings);
            CStringArray menu, rights;
            menu.Append("earlier", host.strings);
            std::uint32_t stamp = 0, number = 0;
            FillPluginInfo(kPass, host.Lookup(), &name, &version, &menu, &stamp, &number, own);
            EXPECT_EQ(std::string(name.View()) + " " + std::string(version.View()), "Planfold 4.5.2.10");
            EXPECT_EQ(std::pair(stamp, number), std::pair(29032010u, 58u));
            Texts expected{"earlier", "Order Entry", "SIP Basket Entry", "SIP Registration Book",
                           "SIP Set Restricted Date"};
            expected.resize(1 + row.entries);
            EXPECT_EQ(TextsOf(menu), expected);
            EXPECT_EQ(own.LiveBuffers(), 0) << "new elements belong to the host's manager";
            FillRights(&name, &rights, own);
            EXPECT_EQ(name.View(), "QV");
            EXPECT_EQ(TextsOf(rights),
                      (Texts{"QV: Planfold", "QV: Planfold: Custom", "QV: Planfold: SIP Set Restricted Date"}));
            FillRights(nullptr, nullptr, own);
            FillPluginInfo(kPass, host.Lookup(), nullptr, nullptr, nullptr, nullptr, nullptr, own);
        }
        EXPECT_EQ(host.strings.Live() + host.strings.Faults() + own.LiveBuffers(), 0);
    }
}

TEST(CheckHost, TellsWhatIsMissingAndTakesTheIdentity) {
    const char* const old = "Initialisation failed. ZUP not compatible with Trader version.";
    const struct {
        const char* missing;
        bool right;
        const char* refusal; // empty: none
        const char* peers;
    } rows[] = {
        {"pu_get_exe_app", true, "Exe is not compatible with ZUP", ""},
        {"pu_get_peer_data", true, old, ""},
        {"pu_is_actionright_enabled", true, old, "PEERAPEERB"},
        {"", false, "You are not enabled on Planfold.", "PEERAPEERB"},
        {"", true, "", "PEERAPEERB"},
    };
    for (const auto& row : rows) {
        FakeHost host;
        host.missing.insert(row.missing);
        if (!row.right) host.rights.clear();
        std::string loginId, peerIdA, peerIdB, client;
        const HostCheck check =
            CheckHost(kPass, host.Lookup(), {loginId, peerIdA, peerIdB, client}, host.strings);
        EXPECT_STREQ(check.refusal ? check.refusal : "", row.refusal) << row.missing;
        EXPECT_EQ(peerIdA + peerIdB, row.peers) << row.missing;
        EXPECT_EQ(host.strings.Live() + host.strings.Faults(), 0);
    }
}

TEST(PreferredPointSize, StaysReadable) {
    struct Row {
        std::intptr_t size, variation;
        int points;
    };
    constexpr auto huge = INTPTR_MAX;
    for (const Row& row : {Row{0, 0, 8}, Row{0, 3, 11}, Row{0, -9, 6}, Row{12, -2, 10}, Row{40, 0, 36},
                           Row{30, 10, 36}, Row{huge, huge, 36}, Row{-5, INTPTR_MIN, 6}})
        EXPECT_EQ(PreferredPointSize(8, row.size, row.variation), row.points)
            << row.size << " " << row.variation;
}

TEST(ResolveHostCallbacks, LooksUpTheRequestControlsAfterThePeerData) {
    FakeHost host;
    host.missing = {"pu_get_uuid"};
    const HostCallbacks callbacks = ResolveHostCallbacks(host.Lookup());
    EXPECT_EQ(callbacks.pu_get_uuid, nullptr);
    EXPECT_NE(callbacks.pu_get_peer_data, nullptr);
    ASSERT_EQ(host.lookedUp.size(), 33u);
    EXPECT_EQ(host.lookedUp[0], "pu_fill_scrip_combos");
    EXPECT_EQ(Texts(host.lookedUp.begin() + 5, host.lookedUp.begin() + 13),
              (Texts{"pu_InvokeDialog", "pu_add_to_tabbed_log", "pu_load_client_id_combo", "pu_get_peer_data",
                     "GetKeloRxControl", "DestoryKeloRxCOntrol", "pu_get_client_search_time", "pu_get_uuid"}));
    EXPECT_EQ(host.lookedUp.back(), "pu_send_mrv_master_request");
}

TEST(PendingTexts, AreToldTogetherByOwnerUpToThirty) {
    framework::PendingTexts<int> pending;
    for (const auto& [owner, text] : {std::pair(1, "a"), {2, "x"}, {1, "b"}})
        pending.Add(owner, text);
    auto box = pending.TakeNext();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->owner, 1);
    EXPECT_EQ(box->text, "a\nb");
    EXPECT_EQ(pending.TakeNext()->text, "x");
    for (int i = 1; i <= 32; ++i)
        pending.Add(1, std::to_string(i));
    const std::string text = pending.TakeNext()->text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 30);
    EXPECT_EQ(text.substr(text.rfind('\n')), "\n... and 2 more");
    EXPECT_FALSE(pending.TakeNext());
}

} // namespace
} // namespace planfold::test
