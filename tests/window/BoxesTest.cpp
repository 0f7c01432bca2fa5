// Message boxes run the host's loop: what arrives meanwhile waits, and is told in one box.
#include "tests/window/PluginTest.h"

#include <algorithm>

namespace {

class Boxes : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        dialog = OpenWithDefaults();
    }
    void SubmitWrong() {
        probe::SetEdit(dialog, order::kPeriod, "");
        probe::Press(dialog, order::kSubmit);
    }

    HWND dialog = nullptr;
};

TEST_F(Boxes, AnswersThatArriveWhileABoxIsOpenAreJoinedUpToThirty) {
    boxes.during = [&] {
        for (const char* text : {"second", "third"})
            host.Answer(Told(text));
    };
    host.Answer(Told("first"));
    EXPECT_EQ(boxes.Texts(), "first|second\nthird|");
    EXPECT_EQ(boxes.lastOwner, dialog);

    boxes.during = [&] {
        for (int i = 1; i <= 33; ++i)
            host.Answer(Told(("text " + std::to_string(i)).c_str()));
    };
    host.Answer(Told("first"));
    const std::string texts = boxes.Texts();
    EXPECT_TRUE(texts.ends_with("text 30\n... and 3 more|")) << texts;
    EXPECT_EQ(std::ranges::count(texts, '|'), 2);
}

TEST_F(Boxes, AQuestionComesWhenTheOpenBoxIsGone) {
    FillGoodOrder(dialog, "C009");
    boxes.during = [&] {
        probe::Press(dialog, order::kSubmit);
        EXPECT_EQ(host.requests.size(), 1u);
    };
    host.Answer(Told("first"));
    EXPECT_TRUE(probe::PumpUntil([&] { return host.requests.size() == 2; }));
    EXPECT_EQ(boxes.Texts(), "first|The terminal knows no client C009.\nPlace the order all the same?|");
    EXPECT_FALSE(boxes.anyNested);
}

TEST_F(Boxes, AnErrorThatArrivesWhileABoxIsOpenIsLoggedAtOnce) {
    std::size_t logged = 0;
    boxes.during = [&] {
        host.Answer("echoedRequest=add_sip_orders errorCode=5");
        logged = host.log.size();
    };
    SubmitWrong();
    EXPECT_EQ(logged, 1u);
    EXPECT_EQ(boxes.Texts(), "Enter a Month.|");
}

TEST_F(Boxes, WindowMayCloseUnderItsBox) {
    boxes.during = [&] {
        host.Answer(Told("waiting"));
        Close(dialog);
    };
    host.Answer(Told("first"));
    probe::Pump();
    EXPECT_EQ(OrderEntry(), nullptr);
    boxes.Texts();
    ASSERT_NE(OpenOrderEntry(), nullptr);
    host.Answer(Told("later"));
    EXPECT_EQ(boxes.Texts(), "later|");
}

TEST_F(Boxes, HostMayExitUnderABox) {
    for (const bool atSubmit : {true, false}) {
        SCOPED_TRACE(atSubmit ? "of Submit" : "of an answer");
        dialog = OpenOrderEntry();
        boxes.during = [&] { plugin->Exit(); };
        if (atSubmit)
            SubmitWrong();
        else
            host.Answer(Told("last words"));
        probe::Pump();
        EXPECT_FALSE(IsWindow(dialog));
        EXPECT_EQ(host.LiveControls(), 0);
    }
}

TEST_F(Boxes, SubmitDuringTheHostsQuestionDoesNothing) {
    for (const std::size_t requests : {2u, 3u}) {
        FillGoodOrder(dialog);
        host.duringCaution = [&] {
            probe::Press(dialog, order::kSubmit);
            probe::Press(dialog, order::kSubmit);
            host.Answer(Told("meanwhile"));
        };
        probe::Press(dialog, order::kSubmit);
        EXPECT_EQ(host.requests.size(), requests);
        EXPECT_TRUE(host.LastRequest().starts_with("add_sip_orders exchange=nse_cm ")) << host.LastRequest();
        EXPECT_TRUE(host.LastRequest().ends_with(" cautionaryFlag=N orderSource=TWS")) << host.LastRequest();
        EXPECT_EQ(boxes.Texts(), "meanwhile|");
    }
    EXPECT_EQ(host.CallsOf("pu_invoke_caution_order_confirmation"), 2);
}

TEST_F(Boxes, WindowMayCloseDuringTheHostsQuestion) {
    FillGoodOrder(dialog);
    host.duringCaution = [&] { Close(dialog); };
    probe::Press(dialog, order::kSubmit);
    EXPECT_EQ(OrderEntry(), nullptr);
    EXPECT_NE(OpenOrderEntry(), nullptr);
}

} // namespace
