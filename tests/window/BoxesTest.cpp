// Message boxes run the host's loop: what arrives meanwhile waits, and is told in one box.
#include "tests/window/PluginTest.h"

#include <algorithm>

namespace {

Fields Told(const char* text) {
    return {{32767, "add_sip_orders"}, {20008, text}};
}

class Boxes : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        dialog = OpenOrderEntry();
        ASSERT_NE(dialog, nullptr);
        AnswerDefaults();
    }

    HWND dialog = nullptr;
};

TEST_F(Boxes, AnswersThatArriveWhileABoxIsOpenAreJoined) {
    boxes.during = [&] {
        for (const char* text : {"second", "third", "fourth"})
            host.Answer(kOrderEntryControl, Told(text));
    };
    host.Answer(kOrderEntryControl, Told("first"));
    EXPECT_EQ(boxes.Texts(), "first|second\nthird\nfourth|");
    EXPECT_FALSE(boxes.AnyNested());
    for (const auto& box : boxes.Boxes())
        EXPECT_EQ(box.owner, dialog);
}

TEST_F(Boxes, ManyWaitingTextsEndInTheirNumber) {
    boxes.during = [&] {
        for (int i = 1; i <= 33; ++i)
            host.Answer(kOrderEntryControl, Told(("text " + std::to_string(i)).c_str()));
    };
    host.Answer(kOrderEntryControl, Told("first"));
    ASSERT_EQ(boxes.Boxes().size(), 2u);
    const std::string& text = boxes.Boxes()[1].text;
    EXPECT_NE(text.find("text 30\n"), std::string::npos);
    EXPECT_EQ(text.find("text 31"), std::string::npos);
    EXPECT_NE(text.rfind('3'), std::string::npos) << "three others";
    EXPECT_EQ(std::ranges::count(text, '\n'), 30);
}

TEST_F(Boxes, AnErrorThatArrivesWhileABoxIsOpenIsLoggedAtOnce) {
    bool logged = false;
    boxes.during = [&] {
        host.Answer(kOrderEntryControl, {{32767, "add_sip_orders"}, {32766, "5"}});
        logged = host.log.size() == 1;
    };
    probe::SetEdit(dialog, order::kPeriod, "");
    probe::Press(dialog, order::kSubmit);
    EXPECT_TRUE(logged);
    EXPECT_EQ(boxes.Texts(), "Enter a Month.|");
}

TEST_F(Boxes, WindowMayCloseUnderItsBox) {
    boxes.during = [&] {
        host.Answer(kOrderEntryControl, Told("waiting"));
        SendMessageA(dialog, WM_CLOSE, 0, 0);
    };
    host.Answer(kOrderEntryControl, Told("first"));
    probe::Pump();
    EXPECT_EQ(OrderEntry(), nullptr);
    EXPECT_FALSE(boxes.AnyNested());
    boxes.Clear();
    ASSERT_NE(OpenOrderEntry(), nullptr);
    host.Answer(kOrderEntryControl, Told("later"));
    EXPECT_EQ(boxes.Texts(), "later|");
}

TEST_F(Boxes, HostMayExitUnderABox) {
    for (const bool atSubmit : {true, false}) {
        SCOPED_TRACE(atSubmit ? "of Submit" : "of an answer");
        dialog = OpenOrderEntry();
        boxes.during = [&] { plugin->Exit(); };
        if (atSubmit) {
            probe::SetEdit(dialog, order::kPeriod, "");
            probe::Press(dialog, order::kSubmit);
        } else {
            host.Answer(static_cast<int>(host.controls.size()) - host.LiveControls(), Told("last words"));
        }
        probe::Pump();
        EXPECT_FALSE(IsWindow(dialog));
        EXPECT_EQ(host.LiveControls(), 0);
    }
}

TEST_F(Boxes, SubmitDuringTheHostsQuestionDoesNothing) {
    host.requests.clear();
    FillGoodOrder(dialog);
    host.duringCaution = [&] {
        probe::Press(dialog, order::kSubmit);
        probe::Press(dialog, order::kSubmit);
    };
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.CallsOf("pu_invoke_caution_order_confirmation"), 1);
    EXPECT_TRUE(host.LastRequest().ends_with("53405=N;64756=TWS;")) << host.LastRequest();
    EXPECT_EQ(boxes.Texts(), "");

    FillGoodOrder(dialog);
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(host.requests.size(), 2u) << "the next press counts again";
}

TEST_F(Boxes, AnswersDuringTheHostsQuestionLeaveTheRequestWhole) {
    FillGoodOrder(dialog);
    host.duringCaution = [&] { host.Answer(kOrderEntryControl, Told("meanwhile")); };
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(boxes.Texts(), "meanwhile|");
    EXPECT_TRUE(host.LastRequest().starts_with("0=add_sip_orders;63001=nse_cm;"));
    EXPECT_TRUE(host.LastRequest().ends_with("53405=N;64756=TWS;"));
}

TEST_F(Boxes, WindowMayCloseDuringTheHostsQuestion) {
    FillGoodOrder(dialog);
    host.duringCaution = [&] { SendMessageA(dialog, WM_CLOSE, 0, 0); };
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(OrderEntry(), nullptr);
    EXPECT_NE(OpenOrderEntry(), nullptr);
}

} // namespace
