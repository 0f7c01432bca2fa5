// The restricted dates window in a host: keys, a second life, answers while it is closed, an exit under its
// box.
#include "tests/window/PluginTest.h"

namespace {

constexpr int kLists[] = {IDC_RESTRICT_FROM, IDC_RESTRICT_TO, IDC_RESTRICT_YEAR},
              kHeld[] = {IDC_HELD_FROM, IDC_HELD_TO, IDC_HELD_YEAR};

class Restricted : public PluginTest {
protected:
    HWND Open() {
        Pick("SIP Set Restricted Date");
        return probe::FindDialog("SIP Set Restricted Date");
    }
    std::string Texts(HWND dialog, const int (&controls)[3]) {
        std::string texts;
        for (const int control : controls)
            texts += probe::Text(dialog, control) + "|";
        return texts;
    }
};

TEST_F(Restricted, IsWorkedByKeysAndBeginsAnewAtEachOpening) {
    const Fields held("echoedRequest=calendar_get_restricted_dates startDate=7 restrictedYear=2030");
    const int thisYear = DaysFromNow(0).wYear;
    for (const bool escape : {true, false}) {
        HWND dialog = Open();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(Texts(dialog, kLists) + Texts(dialog, kHeld), "||||||");
        SetFocus(GetDlgItem(dialog, kLists[0]));
        for (const char digit : {'1', '5'}) // which are one number
            PostMessageA(GetFocus(), WM_CHAR, static_cast<WPARAM>(digit), 1);
        for (const WPARAM key : {VK_TAB, VK_DOWN, VK_END, VK_TAB, VK_DOWN, VK_TAB, VK_RETURN})
            probe::PressKey(key);
        EXPECT_EQ(host.LastRequest(),
                  "calendar_add_restricted_dates startDate=15 restrictedTo=31 restrictedYear="
                      + std::to_string(thisYear));
        EXPECT_EQ(Open(), dialog) << "a pick brings up the window that is there";
        probe::Press(dialog, IDC_RESTRICT_GET);
        host.AnswerSender(held);
        EXPECT_EQ(Texts(dialog, kHeld), "7||2030|");
        escape ? probe::PressKey(VK_ESCAPE) : Close(dialog);
        EXPECT_FALSE(IsWindow(dialog));
        host.AnswerSender(held);
        host.AnswerSender("echoedRequest=calendar_add_restricted_dates");
        EXPECT_EQ(boxes.Texts(), "Restricted Date configured Succesfully|") << "also without a window";
    }
}

TEST_F(Restricted, AnExitUnderItsBoxesIsTheEnd) {
    for (const bool answered : {false, true}) {
        host.calls.clear();
        HWND dialog = Open();
        for (const int list : kLists)
            SendDlgItemMessageA(dialog, list, CB_SETCURSEL, 3, 0);
        host.refuses = !answered;
        boxes.during = [&] { plugin->Exit(); };
        probe::PressKey(VK_RETURN);
        if (answered) host.AnswerSender("echoedRequest=calendar_add_restricted_dates");
        EXPECT_FALSE(IsWindow(dialog));
        EXPECT_EQ(host.CallsOf("pu_resend_nontradingDate_Request"), 0);
    }
    EXPECT_EQ(boxes.Texts(), "Sending Request calendar_add_restricted_dates Failed|"
                             "Restricted Date configured Succesfully|");
}

} // namespace
