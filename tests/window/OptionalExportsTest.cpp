// A host that lacks one of the optional exports: every window opens, and an order goes out all the same.
#include "tests/window/PluginTest.h"

namespace {

TEST_F(PluginTest, NoMissingOptionalExportKeepsAWindowFromOpeningOrAnOrderFromGoingOut) {
    const std::string incompatible = "Exe is not compatible with the plugin|";
    for (const std::string_view name : sdk::kHostExportNames) {
        if (name == "pu_get_peer_data") continue; // required
        SCOPED_TRACE(name);
        const bool takesControls = name.find("KeloRx") == name.npos;
        const HiddenExport hidden(name.data());
        // Without a record nobody asks about the same order again.
        const HiddenExport noFolder("pu_get_UserDirectory");
        host.requests.clear();
        HWND dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(boxes.Texts().starts_with(incompatible), !takesControls);
        if (takesControls) AnswerDefaults();
        FillGoodOrder(dialog);
        probe::Press(dialog, IDC_SUBMIT);
        EXPECT_EQ(boxes.Texts(), takesControls ? "" : "Sending Request add_sip_orders Failed|");
        EXPECT_EQ(host.LastRequest().starts_with("add_sip_orders "), takesControls) << host.LastRequest();
        EXPECT_EQ(plugin->Activate("C001", host.strings), 1);
        plugin->ApplyFont();
        for (const char* entry : {"SIP Basket Entry", "SIP Registration Book", "SIP Set Restricted Date"})
            Pick(entry);
        EXPECT_EQ(boxes.Texts().find(incompatible), std::string::npos) << "told at the construction only";
        plugin->Exit();
    }
}

} // namespace
