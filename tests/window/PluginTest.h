// A test with a host, a plug-in loaded for it alone, and a recorder of message boxes. What every test must
// leave behind, nothing, is checked at its end.
#pragma once

#include "framework/resource.h"
#include "plugin/resources/resource.h"
#include "tests/support/BoxRecorder.h"
#include "tests/support/FakeHost.h"
#include "tests/support/ImageEdit.h"
#include "tests/support/LoadedPlugin.h"
#include "tests/support/WindowProbe.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <optional>

using namespace planfold::test;
using probe::WhenShown;

class PluginTest : public testing::Test {
protected:
    void SetUp() override { plugin.emplace(); }
    void TearDown() override;

    void Pick(std::string_view entry) { plugin->Pick(entry, host.strings); }
    // Picks the menu entry; the window, null when there is none.
    HWND OpenOrderEntry();
    HWND OrderEntry() const { return probe::FindDialog("Planfold Order Entry"); }
    // Opens it with the server's answer without a list: "daily", "weekly", "monthly", and 1 to 60 periods.
    HWND OpenWithDefaults();
    void AnswerDefaults() { host.Answer("echoedRequest=get_sip_operation_mode frequency=0"); }
    void Close(HWND dialog) const { SendMessageA(dialog, WM_CLOSE, 0, 0); }
    // What a good order needs, in an open window that has its frequencies; the client by the combo or the
    // search box, whichever this host's window has.
    void FillGoodOrder(HWND dialog, std::string_view client = "C002");
    std::vector<HWND> PluginWindows() const;
    // What is selected of an edit, "0-3 focus" with the keyboard in it.
    static std::string SelectedAt(HWND dialog, int edit);

    // The window of a long run; null while there is none.
    static HWND Progress();
    static int Rows(HWND list) { return static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)); }
    static int Next(HWND list, UINT flags, int from = -1) {
        return static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(from), flags));
    }
    // The row menu, once it is open.
    static std::string MenuOf(HWND list, LPARAM at = MAKELPARAM(60, 60));

    FakeHost host;
    BoxRecorder boxes;
    std::optional<LoadedPlugin> plugin;
};

// The message that a server sends about an order.
Fields Told(const char* text);
// The date so many days from now.
SYSTEMTIME DaysFromNow(int days);
