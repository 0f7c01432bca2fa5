// A test with a host, a plug-in loaded for it alone, and a recorder of message boxes. What every test must
// leave behind, nothing, is checked at its end.
#pragma once

#include "tests/support/BoxRecorder.h"
#include "tests/support/FakeHost.h"
#include "tests/support/ImageEdit.h"
#include "tests/support/LoadedPlugin.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

#include <optional>

// Controls of the order entry window.
namespace order {
inline constexpr int kExchange = 1003, kSeries = 1005, kSymbol = 1008, kAction = 1040, kOrderType = 1018;
inline constexpr int kClient = 1053, kClientSearch = 1057, kProduct = 1019, kInvestBy = 1041, kValue = 1025,
                     kFrequency = 1026;
inline constexpr int kStartDate = 1030, kPeriod = 1037, kPeriodHint = 1047, kSubmit = 1034, kCancel = 2;
inline constexpr int kPeriodIcons[] = {1035, 1036};
inline constexpr char kTitle[] = "Planfold Order Entry";
} // namespace order

class PluginTest : public testing::Test {
protected:
    static constexpr int kOrderEntryControl = 0; // the first that is taken

    void SetUp() override { plugin.emplace(host.strings); }
    void TearDown() override;

    // Picks the menu entry; the window, null when there is none.
    HWND OpenOrderEntry();
    HWND OrderEntry() const { return probe::FindDialog(order::kTitle); }
    // The server's answer without a list: "daily", "weekly", "monthly", and 1 to 60 periods.
    void AnswerDefaults();
    // By the combo or the search box, whichever this host's window has.
    void ChooseClient(HWND dialog, std::string_view client);
    // Sets what a good order needs, in an open window that has its frequencies.
    void FillGoodOrder(HWND dialog);
    std::vector<HWND> PluginWindows() const;
    bool HasChildWithText(HWND dialog, std::string_view text) const;

    FakeHost host;
    BoxRecorder boxes;
    std::optional<LoadedPlugin> plugin;
};

// The request with "DATE" for the start date, which is another one every day.
std::string WithoutDate(std::string request);
// Local midnight of the date in seconds since 1970.
std::string WireDate(const SYSTEMTIME& date);
// The date so many days from now.
SYSTEMTIME DaysFromNow(int days);
