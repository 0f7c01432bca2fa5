// The restricted dates window in a host: keys, a second life, answers while it is closed, an exit under its
// box.
#include "tests/window/PluginTest.h"

namespace {

constexpr int kFrom = 5008, kTo = 5009, kYear = 5010, kHeldFrom = 5012, kHeldTo = 5013, kHeldYear = 5014,
              kGet = 5015;

class Restricted : public PluginTest {
protected:
    HWND Open() {
        Pick("SIP Set Restricted Date");
        return Dialog();
    }
    HWND Dialog() const { return probe::FindDialog("SIP Set Restricted Date"); }
    void Key(WPARAM key) {
        probe::PostKey(key);
        probe::Pump();
    }
};

TEST_F(Restricted, IsWorkedByKeysAndBeginsAnewAtEachOpening) {
    const int thisYear = DaysFromNow(0).wYear;
    for (const bool escape : {true, false}) {
        HWND dialog = Open();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
        const Texts years = probe::Items(dialog, kYear);
        ASSERT_EQ(years.size(), 21u);
        EXPECT_EQ(years.front() + years.back(), std::to_string(thisYear) + std::to_string(thisYear + 20));
        for (const int control : {kFrom, kTo, kYear, kHeldFrom, kHeldTo, kHeldYear})
            EXPECT_EQ(probe::Text(dialog, control), "");

        SetForegroundWindow(dialog);
        Key(VK_RETURN);
        EXPECT_EQ(boxes.Texts(), "Please select a From date|");
        SetFocus(GetDlgItem(dialog, kFrom));
        for (const WPARAM key : {VK_DOWN, VK_DOWN, VK_TAB, VK_DOWN, VK_END, VK_TAB, VK_DOWN, VK_TAB})
            Key(key);
        Key(VK_RETURN);
        EXPECT_EQ(host.LastRequest(),
                  "0=calendar_add_restricted_dates 49165=2 63025=31 46000=" + years.front());
        EXPECT_EQ(Open(), dialog) << "a pick brings up the window that is there";
        probe::Press(dialog, kGet);
        EXPECT_EQ(host.LastRequest(), "0=calendar_get_restricted_dates");
        host.AnswerSender({{32767, {"calendar_get_restricted_dates"}}, {49165, {"7"}}, {46000, {"2030"}}});
        EXPECT_EQ(probe::Text(dialog, kHeldFrom) + probe::Text(dialog, kHeldTo)
                      + probe::Text(dialog, kHeldYear),
                  "72030");
        if (escape)
            Key(VK_ESCAPE);
        else
            Close(dialog);
        EXPECT_FALSE(IsWindow(dialog));
        host.AnswerSender({{32767, {"calendar_get_restricted_dates"}}, {49165, {"7"}}});
        host.AnswerSender({{32767, {"calendar_add_restricted_dates"}}});
        EXPECT_EQ(boxes.Texts(), "Restricted Date configured Succesfully|") << "also without a window";
    }
}

TEST_F(Restricted, AnExitUnderItsBoxesIsTheEnd) {
    for (const bool answered : {false, true}) {
        host.calls.clear();
        HWND dialog = Open();
        for (const int list : {kFrom, kTo, kYear})
            SendDlgItemMessageA(dialog, list, CB_SETCURSEL, 3, 0);
        host.refuses = !answered;
        boxes.during = [&] { plugin->Exit(); };
        Key(VK_RETURN);
        if (answered) host.AnswerSender({{32767, {"calendar_add_restricted_dates"}}});
        EXPECT_FALSE(IsWindow(dialog));
        EXPECT_EQ(host.CallsOf("pu_resend_nontradingDate_Request"), 0);
    }
    EXPECT_EQ(boxes.Texts(), "Sending Request calendar_add_restricted_dates Failed|"
                             "Restricted Date configured Succesfully|");
}

} // namespace
