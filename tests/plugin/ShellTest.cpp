#include "framework/PendingTexts.h"
#include "plugin/shell/HostCheck.h"
#include "plugin/shell/PluginInfo.h"
#include "tests/plugin/HostDouble.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace planfold::test {
namespace {

std::vector<std::string> Texts(const CStringArray& array) {
    std::vector<std::string> texts;
    for (const CString& element : array.Elements())
        texts.emplace_back(element.View());
    return texts;
}

TEST(PluginInfo, OffersTheFourthEntryOnlyToHoldersOfTheRight) {
    struct Row {
        bool hostCanTell;
        bool right;
        std::size_t entries;
    };
    for (const Row& row : {Row{true, true, 4}, Row{true, false, 3}, Row{false, true, 3}}) {
        HostDouble host;
        if (!row.hostCanTell) host.missing.insert("pu_is_actionright_enabled");
        if (row.right) host.rights.insert("QV: Planfold: SIP Set Restricted Date");
        HeapStringManager own;
        {
            CString name(host.strings), version(host.strings);
            CStringArray menu;
            std::uint32_t stamp = 0, number = 0;
            FillPluginInfo(host.Lookup(), &name, &version, &menu, &stamp, &number, own);
            EXPECT_EQ(name.View(), "Planfold");
            EXPECT_EQ(version.View(), "4.5.2.10");
            EXPECT_EQ(stamp, 29032010u);
            EXPECT_EQ(number, 58u);
            std::vector<std::string> expected{"Order Entry", "SIP Basket Entry", "SIP Registration Book",
                                              "SIP Set Restricted Date"};
            expected.resize(row.entries);
            EXPECT_EQ(Texts(menu), expected);
            EXPECT_EQ(own.LiveBuffers(), 0) << "new elements belong to the host's manager";
        }
        EXPECT_EQ(host.strings.LiveBuffers(), 0);
    }
}

TEST(PluginInfo, AppendsToWhatIsThereAndPassesOverNulls) {
    HostDouble host;
    HeapStringManager own;
    CString root(host.strings);
    CStringArray rights;
    rights.Append("earlier", host.strings);
    FillRights(&root, &rights, own);
    EXPECT_EQ(root.View(), "QV");
    EXPECT_EQ(Texts(rights), (std::vector<std::string>{"earlier", "QV: Planfold", "QV: Planfold: Custom",
                                                       "QV: Planfold: SIP Set Restricted Date"}));
    FillRights(nullptr, nullptr, own);
    FillPluginInfo(host.Lookup(), nullptr, nullptr, nullptr, nullptr, nullptr, own);
}

TEST(CheckHost, RefusesWithTheTextOfTheFirstThingMissing) {
    const std::string old = "Initialisation failed. ZUP not compatible with Trader version.";
    struct Row {
        std::set<std::string> missing;
        std::set<std::string> rights;
        std::string refusal;
    };
    const Row rows[] = {
        {{}, {"QV: Planfold"}, ""},
        {{"pu_get_exe_app", "pu_get_peer_data"}, {"QV: Planfold"}, "Exe is not compatible with ZUP"},
        {{"pu_get_peer_data"}, {"QV: Planfold"}, old},
        {{"pu_is_actionright_enabled"}, {"QV: Planfold"}, old},
        {{}, {"QV: Planfold: Custom"}, "You are not enabled on Planfold."},
    };
    for (const Row& row : rows) {
        HostDouble host;
        host.missing = row.missing;
        host.rights = row.rights;
        const HostCheck check = CheckHost(host.Lookup(), host.IdentityStrings(), host.strings);
        EXPECT_EQ(check.refusal ? check.refusal : "", row.refusal);
        if (row.refusal.empty()) {
            EXPECT_EQ(check.app, &host.app);
            EXPECT_EQ(host.peerA + " " + host.peerB, "BROKER BRANCH");
        }
        EXPECT_EQ(host.strings.LiveBuffers(), 0);
    }
}

TEST(MainFrame, IsReadOnlyFromARecordThatHoldsIt) {
    int place = 0;
    const auto frame = reinterpret_cast<HostWindow>(&place); // any address; never read
    VeskApp app{sizeof(VeskApp), 0, frame, nullptr};
    EXPECT_EQ(MainFrame(&app), frame);
    app.size = 16;
    EXPECT_EQ(MainFrame(&app), frame);
    for (const std::uint32_t tooSmall : {0u, 8u, 15u}) {
        app.size = tooSmall;
        EXPECT_EQ(MainFrame(&app), nullptr);
    }
    EXPECT_EQ(MainFrame(nullptr), nullptr);
}

TEST(PreferredPointSize, StaysReadable) {
    struct Row {
        std::intptr_t size, variation;
        int points;
    };
    constexpr auto huge = INTPTR_MAX;
    for (const Row& row :
         {Row{0, 0, 8}, Row{0, 3, 11}, Row{0, -1, 7}, Row{0, -9, 6}, Row{12, 0, 12}, Row{12, -2, 10},
          Row{40, 0, 36}, Row{30, 10, 36}, Row{huge, huge, 36}, Row{-5, INTPTR_MIN, 6}})
        EXPECT_EQ(PreferredPointSize(8, row.size, row.variation), row.points)
            << row.size << " " << row.variation;
}

TEST(ResolveHostCallbacks, LooksUpTheRequestControlsAfterThePeerData) {
    HostDouble host;
    host.missing = {"pu_get_uuid"};
    const HostCallbacks callbacks = ResolveHostCallbacks(host.Lookup());
    EXPECT_EQ(callbacks.pu_get_uuid, nullptr);
    EXPECT_NE(callbacks.pu_get_peer_data, nullptr);
    ASSERT_EQ(host.lookedUp.size(), 33u);
    EXPECT_EQ(host.lookedUp[0], "pu_fill_scrip_combos");
    const std::vector<std::string> turned(host.lookedUp.begin() + 5, host.lookedUp.begin() + 13);
    EXPECT_EQ(turned,
              (std::vector<std::string>{"pu_InvokeDialog", "pu_add_to_tabbed_log", "pu_load_client_id_combo",
                                        "pu_get_peer_data", "GetKeloRxControl", "DestoryKeloRxCOntrol",
                                        "pu_get_client_search_time", "pu_get_uuid"}));
    EXPECT_EQ(host.lookedUp.back(), "pu_send_mrv_master_request");
}

TEST(PendingTexts, AreToldTogetherByOwnerUpToThirty) {
    framework::PendingTexts<int> pending;
    EXPECT_FALSE(pending.TakeNext());
    pending.Add(1, "a");
    pending.Add(2, "x");
    pending.Add(1, "b");
    auto box = pending.TakeNext();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->owner, 1);
    EXPECT_EQ(box->text, "a\nb");
    EXPECT_EQ(pending.TakeNext()->text, "x");
    EXPECT_FALSE(pending.TakeNext());

    for (int i = 1; i <= 32; ++i)
        pending.Add(1, std::to_string(i));
    const std::string text = pending.TakeNext()->text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 30);
    EXPECT_EQ(text.substr(text.rfind('\n')), "\n... and 2 more");
    EXPECT_FALSE(pending.TakeNext());
}

} // namespace
} // namespace planfold::test
