// Terminals at a server over TCP: what they see of each other, through the server's end and return, beside one
// that reads slowly, and when either side sends rubbish.

#include "host/server/net/ServerWatch.h"
#include "host/server/sample/SampleOrders.h"
#include "tests/net/NetFixture.h"

#include <algorithm>
#include <memory>

namespace vesk {
namespace {

Fields ListOf(const char* user) {
    return std::string("om_get_sip_orders loginId=") + user;
}

TEST_F(Net, WhatOneDoesTheOtherSeesThroughTheServersEndAndReturn) {
    Start();
    Terminal one(Place(), "USER1"), two(Place(), "USER2");
    ASSERT_TRUE(two.Subscribe() && two.Send("get_sip_operation_mode"));
    ASSERT_TRUE(Until([&] { return two.Client().Waiting() == 0; }, {&two}));
    ASSERT_TRUE(one.Place("a"));
    ASSERT_TRUE(Until([&] { return !one.answers.empty() && !two.streamed.empty(); }, {&one, &two}));
    const std::string number = "SIP2603020000001";
    EXPECT_EQ(one.answers, Texts{"SIP registered. Registration No : " + number});
    EXPECT_EQ(two.streamed, Texts{number + " active"});

    // The answer to a request, and the stream of it, are lost with the server that made the change.
    Until([&] { return one.Client().Waiting() == 0; }, {&one, &two});
    const Fields cancel = "cancel_sip_order registrationNumber=" + number + " orderId=b";
    ASSERT_TRUE(one.Send(cancel) && one.Place("c"));
    one.Pump();
    const auto heard = [&] { return m_running->server->Held().All().size() == 2; };
    ASSERT_TRUE(Until(heard, {}));
    Kill();
    ASSERT_TRUE(Until([&] { return two.Client().State() == LinkState::lost; }, {&two}));
    // Made while there is no server.
    ASSERT_TRUE(one.Place("d"));
    Start();
    const auto seen = [&] {
        return std::ranges::all_of(
            Texts{"SIP2603020000001 cancelled", "SIP2603020000002 active", "SIP2603020000003 active"},
            [&](const std::string& text) {
                return std::ranges::find(two.streamed, text) != two.streamed.end();
            });
    };
    ASSERT_TRUE(Until([&] { return one.answers.size() == 4 && seen(); }, {&one, &two}));
    EXPECT_EQ(one.answers[1], "SIP cancelled. Registration No : " + number);
    EXPECT_EQ(m_running->server->Held().All().size(), 3u);
    EXPECT_EQ(two.states.back(), "connected");
    EXPECT_EQ(one.Client().Waiting(), 0u);
}

TEST_F(Net, CommandsOfATerminalReachTheServerAndEveryTerminalHearsItsState) {
    Texts told;
    const auto tell = [&](const Told& one) { told.push_back((one.isDone ? "" : "-") + one.text); };
    Start();
    Terminal one(Place(), "USER1"), two(Place(), "USER2");
    one.Client().Command("clock 1", tell);
    ASSERT_TRUE(two.Subscribe());
    const auto areThere = [&] {
        return one.Client().Server().date == 20260302 && two.Client().Server().date == 20260302;
    };
    ASSERT_TRUE(Until(areThere, {&one, &two}));
    EXPECT_EQ(std::exchange(told, {}), Texts{"-There is no connection to the server"});

    for (const char* line : {"other 2", "clock next", "rubbish"})
        one.Client().Command(line, tell);
    // Its state may overtake the updates of a server that has much to do.
    const auto hears = [&](bool isDue, std::size_t updates) {
        return two.Client().Server().hasDue == isDue && two.streamed.size() == updates;
    };
    ASSERT_TRUE(Until([&] { return told.size() == 3 && hears(true, 2); }, {&one, &two}));
    EXPECT_EQ(std::exchange(told, {}),
              (Texts{"Another session placed 2 orders", "Server clock at the next instalment: 03-Mar-2026",
                     "-\"rubbish\" is no command"}));
    EXPECT_EQ(one.Client().Server().date, 20260303u);
    EXPECT_EQ(m_running->server->Clock().ExecuteDue({}).fault, "");
    // Not before what was executed.
    ASSERT_TRUE(Until([&] { return hears(false, 4); }, {&two}));

    ASSERT_TRUE(one.Send("calendar_add_restricted_dates restrictedYear=2026 startDate=5 restrictedTo=6"));
    one.onAnswer = [&](void*) { EXPECT_EQ(one.Client().Server().restricted.size(), 24u); };
    ASSERT_TRUE(Until([&] { return one.answers.size() == 1; }, {&one}));
    one.onAnswer = {};

    // Asked, and never told of; and one more than may wait.
    constexpr std::size_t most = 1000;
    for (std::size_t i = 0; i <= most; ++i)
        one.Client().Command("clock 1", tell);
    one.Pump();
    Kill();
    ASSERT_TRUE(Until([&] { return told.size() == most + 1; }, {&one}));
    EXPECT_EQ(std::ranges::count(told, "-The connection was lost; whether it was done is not known"), most);
    EXPECT_EQ(std::ranges::count(told, "-Too many commands wait for the server"), 1);
}

// What the server had received counts, whenever the terminal goes and however slow the server is.
TEST_F(Net, WhatATerminalAskedForIsDoneAlthoughItIsGone) {
    constexpr std::size_t orders = 300; // more than are read at a time
    const struct {
        RequestFault fault;
        SessionLimits limits;
        std::size_t least, most; // done
    } rows[] = {
        {{}, {.requests = 16, .turns = 1}, orders, orders},               // most are still unread
        {{.errorCode = {}, .delayMs = kMostDelayMs}, {}, orders, orders}, // not due before the server's end
        {{.errorCode = {}, .disconnects = 1}, {}, orders / 4, orders},    // the server cuts the line itself
        {{.errorCode = {}, .disconnectsBefore = 1}, {}, 0, 0},            // nothing has come
    };
    for (const auto& row : rows) {
        m_config.faults["add_sip_orders"] = row.fault;
        Start(row.limits);
        const std::size_t before = m_running->server->Held().All().size();
        auto gone = std::make_unique<Terminal>(Place(), "USER1");
        for (std::size_t i = 0; i < orders; ++i)
            ASSERT_TRUE(gone->Place(std::to_string(before) + "-" + std::to_string(i)));
        ASSERT_TRUE(Until([&] { return gone->Client().State() == LinkState::connected; }, {gone.get()}));
        gone->Pump();
        gone.reset();
        for (int turn = 0; turn < 20; ++turn)
            m_net->Turn(1);
        m_net->FinishRest();
        ASSERT_TRUE(Until([&] { return m_net->Connections() == 0; }, {}));
        const std::size_t done = m_running->server->Held().All().size() - before;
        EXPECT_GE(done, row.least);
        EXPECT_LE(done, row.most);
        Kill();
    }
}

// Of more than goes into the output at a time.
TEST_F(Net, WhatIsNotYetOnItsWayMayBeWithdrawnAlsoWhileConnected) {
    constexpr std::uint64_t orders = 800;
    Start();
    Terminal one(Place(), "USER1");
    ASSERT_TRUE(Until([&] { return one.Client().State() == LinkState::connected; }, {&one}));
    for (std::uint64_t i = 1; i <= orders; ++i)
        ASSERT_TRUE(one.Place(std::to_string(i)));
    EXPECT_FALSE(one.Client().Withdraw(1));
    EXPECT_TRUE(one.Client().Withdraw(orders));
    one.Pump();
    EXPECT_EQ(one.answers, Texts{"Withdrawn by the user"});
    ASSERT_TRUE(Until([&] { return one.Client().Requests().Size() == 0; }, {&one}));
    EXPECT_EQ(m_running->server->Held().All().size(), orders - 1);
    EXPECT_EQ(m_running->server->Held().All().back().Text(tag::orderId), std::to_string(orders - 1));
}

TEST_F(Net, RowsOfAQueryComeOnceWhenTheConnectionBreaksInItsMiddle) {
    Start({.outputBytes = 4096});
    Fill(2000, m_running->user);
    Terminal one(Place(), "USER1");
    ASSERT_TRUE(one.Send(ListOf("USER1")));
    for (std::size_t enough : {10, 700, 1300}) {
        ASSERT_TRUE(Until([&] { return one.answers.size() >= enough; }, {&one}));
        Kill();
        Start({.outputBytes = 4096});
    }
    ASSERT_TRUE(Until([&] { return one.Client().Waiting() == 0; }, {&one}));
    ASSERT_EQ(one.answers.size(), 2001u);
    EXPECT_EQ(one.answers.back(), "") << "the end of the rows";
    one.answers.pop_back();
    Texts sorted = one.answers;
    std::ranges::sort(sorted);
    EXPECT_EQ(one.answers, sorted);
    EXPECT_EQ(std::ranges::unique(sorted).size(), 0u);
}

TEST_F(Net, SlowReaderEndsAndHoldsUpNobody) {
    const struct {
        SessionLimits limits;
        const char* reason;
    } rows[] = {
        {{.outputBytes = 1 << 16, .streamBacklog = 10}, "SLOW is cut off: too many updates wait for it"},
        {{.outputBytes = 1 << 16, .stalledMs = 200}, "SLOW is cut off: it takes nothing more"},
    };
    Start();
    // More rows than the system keeps for a connection that is not read from.
    Fill(20'000, {"SLOW", "", ""});
    Kill();
    int identifiers = 0;
    for (const auto& row : rows) {
        Start(row.limits);
        Terminal fast(Place(), "USER1"), slow(Place(), "SLOW");
        ASSERT_TRUE(slow.Subscribe() && fast.Subscribe() && slow.Send(ListOf("SLOW")));
        ASSERT_TRUE(Until([&] { return !slow.answers.empty(); }, {&slow, &fast}));
        std::size_t sent = 0;
        const auto isCut = [&] {
            if (fast.Client().Waiting() == 0) fast.Place("id" + std::to_string(++identifiers)), ++sent;
            return !m_log.empty();
        };
        ASSERT_TRUE(Until(isCut, {&fast}));
        EXPECT_EQ(std::exchange(m_log, {}), Texts{row.reason});
        ASSERT_TRUE(Until([&] { return fast.Client().Waiting() == 0; }, {&fast}));
        EXPECT_EQ(fast.answers.size(), sent);
        EXPECT_EQ(fast.streamed.size(), sent);
        Kill();
    }
}

TEST_F(Net, TerminalThatBreaksTheRulesIsToldAndEnded) {
    Start();
    const std::string hello = Framed(net::Hello{net::kProtocolVersion, "USER1", "B", "", 1});
    std::string damaged = hello;
    damaged.back() ^= 1;
    qmx::MessageWriter many;
    many.Start();
    for (std::uint32_t tag = 1; tag <= net::kMostRequestFields + 1; ++tag)
        many.Add(tag, "");
    const std::string manyFields = many.Finish();
    const auto requestOf = [](std::size_t bytes) {
        qmx::MessageWriter writer(2 * net::kLongestRequest);
        const std::size_t around = writer.Add(tag::orderId, "").Finish().size();
        return Framed(net::ControlRequest{
            1, 1, writer.Start().Add(tag::orderId, std::string(bytes - around, 'x')).Finish()});
    };
    const struct {
        std::string bytes;
        const char* reason; // empty: it goes on
    } rows[] = {
        {hello + Framed(net::OpenControl{1, 1}) + Framed(net::CloseControl{1}) + Framed(net::CloseControl{7})
             + Framed(net::OpenControl{1, 0}),
         ""},
        {hello + requestOf(net::kLongestRequest), ""},
        {hello + requestOf(net::kLongestRequest + 1), "a request that is too long"},
        {hello + Framed(net::Subscribe{9, 1, false, {}}) + Framed(net::Stop{9}), ""},
        {damaged, "a frame's checksum is wrong"},
        {std::string("\x01\x00\x10\x00", 4) + "xxxx", "a frame is too long"},
        {Framed(FrameType::end, ""), "a frame's type is unknown"},
        {Framed(net::Hello{1, "USER1", "", "", 1}), "the server speaks version 4, not 1"},
        {Framed(net::Hello{}), "a terminal without a login"},
        {Framed(net::OpenControl{1, 1}), "a terminal says hello first"},
        {hello + hello, "a second hello"},
        {hello + Framed(net::OpenControl{1, 1}) + Framed(net::OpenControl{1, 1}), "a control opened twice"},
        {hello + Framed(net::ControlRequest{1, 1, "rubbish"}), "a request that is no message"},
        {hello + Framed(net::ControlRequest{1, 1, manyFields}), "a request that is too long"},
        {hello + Framed(net::ControlRequest{1, 1, std::string(net::kMostTerminalFrameBytes, 'x')}),
         "a frame is too long"},
        {hello + Framed(net::OpenControl{9, 1})
             + Framed(net::Subscribe{9, 1, false, Subscription(net::kMostSubscribedFields + 1)}),
         "a subscription to too much"},
        {hello + Framed(FrameType::subscribe, std::string(12, '\xFF')), "a frame that cannot be read"},
        {hello + Framed(net::RequestDone{1}), "a frame that a server sends"},
    };
    for (const auto& row : rows) {
        ServerSession session(*m_running->server, *m_commands, {});
        for (const char byte : row.bytes)
            session.Take({&byte, 1}, 0);
        EXPECT_EQ(session.EndReason(), row.reason);
        EXPECT_TRUE(session.Output().Bytes().ends_with(row.reason));
    }
}

TEST_F(Net, TerminalThatAsksForMuchIsNotReadUntilThatIsDone) {
    Start();
    Fill(300, {"USER1", "", ""});
    std::string bytes =
        Framed(net::Hello{net::kProtocolVersion, "USER1", "B", "", 1}) + Framed(net::OpenControl{1, 0});
    for (std::uint64_t number = 1; number <= 4; ++number)
        bytes += Framed(net::ControlRequest{1, number, Message(ListOf("USER1"))});
    const struct {
        SessionLimits limits;
        int pumps; // before which it is not read
    } rows[] = {{{.requests = 4, .turns = 8}, 2}, {{.requestBytes = 100, .turns = 1}, 1}, {{}, 0}};
    for (const auto& row : rows) {
        ServerSession session(*m_running->server, *m_commands, row.limits);
        session.Take(bytes, 0);
        for (int pump = 0; pump < row.pumps; ++pump) {
            EXPECT_FALSE(session.TakesInput()) << pump;
            session.Pump(0);
        }
        while (session.HasWork(0))
            session.Output().Clear(), session.Pump(0);
        EXPECT_TRUE(session.TakesInput());
    }
}

TEST_F(Net, NothingIsAnsweredOrToldBeforeAllThatIsInHandIsOnTheDisk) {
    Start();
    const std::string hello =
        Framed(net::Hello{net::kProtocolVersion, "USER1", "BROKER", "", 1}) + Framed(net::OpenControl{1, 0})
        + Framed(net::OpenControl{2, 1})
        + Framed(net::Subscribe{2, 1, false, {{tag::streamName, std::string(kStreamName)}}});
    std::string asked;
    for (std::uint64_t number = 1; number <= 3; ++number)
        asked += Framed(net::ControlRequest{1, number, Message(Order("orderId=" + std::to_string(number)))});
    asked += Framed(net::ControlRequest{1, 4, Message(ListOf("USER1"))});
    ServerSession session(*m_running->server, *m_commands, {});
    session.Take(hello, 0);
    session.Pump(0);
    session.Output().Clear();
    session.Take(asked, 0);
    m_running->server->Hold();
    session.Handle(0);
    EXPECT_EQ(FileText(m_folder.File("journal")), "");
    EXPECT_EQ(session.Output().Bytes(), "");
    session.Deliver(m_running->server->Release());
    EXPECT_EQ(ReadJournalText(FileText(m_folder.File("journal"))).records.size(), 3u);
    EXPECT_EQ(m_running->server->Journal().TakeFlushTimes().size(), 1u);
    EXPECT_GT(session.Output().Size(), 3000u); // answers, updates and rows

    session.Output().Clear();
    session.Take(Framed(net::CloseControl{2}), 0);
    m_running->Ask(Order("orderId=5"));
    session.Pump(0);
    EXPECT_EQ(session.Output().Bytes(), "") << "its stream has ended";
}

TEST(Streams, SubscriptionsAreBounded) {
    const struct {
        std::size_t fields, length, others;
        const char* fault;
    } rows[] = {
        {kMostSubscriptionFields, kLongestText, 255, nullptr},
        {kMostSubscriptionFields + 1, 1, 0, "a subscription of too many fields"},
        {1, kLongestText + 1, 0, "a value that no record has"},
        {1, 1, 256, "too many subscriptions"},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(
            FaultOf(Subscription(row.fields, {tag::account, std::string(row.length, 'x')}), row.others),
            row.fault);
}

TEST_F(Net, InstalmentsThatAreDueShareTheFlushOfTheRequestsBesideThem) {
    constexpr std::size_t instalments = 300; // more than are executed at a time
    Start();
    Fill(instalments, {"USER1", "BROKER", ""});
    m_running->server->Clock().AdvanceToNextInstalment();
    Terminal one(Place(), "USER1");
    ASSERT_TRUE(one.Subscribe() && one.Place("a"));
    ASSERT_TRUE(Until([&] { return one.answers.size() == 1; }, {&one}));
    ASSERT_TRUE(one.Place("b"));
    one.Pump();
    const std::size_t writes = m_running->server->Journal().Writes();
    std::size_t executed = 0;
    while (executed == 0)
        m_net->Turn(0, [&] {
            if (m_running->server->Held().All().size() < instalments + 2) return;
            executed = m_running->server->Clock().ExecuteDue(std::chrono::seconds(1)).instalments;
        });
    EXPECT_GT(executed, 0u);
    EXPECT_EQ(m_running->server->Journal().Writes(), writes + 1);
    ASSERT_TRUE(Until([&] { return one.streamed.size() == executed + 2 && one.answers.size() == 2; }, {&one}));
}

TEST_F(Net, WhatTheServerHasToDoIsToldEachMinuteAndBesideTheJournal) {
    const auto path = m_folder.File("journal");
    bool isCurrent = true;
    Start();
    {
        ServerWatch watch(*m_net, *m_running->server, path, 0);
        Terminal one(Place(), "USER1");
        ASSERT_TRUE(one.Subscribe());
        for (const char* id : {"a", "b", "c", "d", "e", "f"}) {
            const std::size_t before = one.answers.size();
            ASSERT_TRUE(one.Place(id));
            ASSERT_TRUE(Until([&] { return one.answers.size() > before; }, {&one}));
        }
        EXPECT_EQ(watch.Look(30'000, 1'000), "");
        const std::string line = watch.Look(60'000, 1'030);
        EXPECT_TRUE(line.starts_with("1 sessions, 0.1 requests and 0.1 updates a second, journal 0.0 MB, "
                                     "6 flushes, longest "))
            << line;
        EXPECT_EQ(ServerWatch::Read(path, 1'033, isCurrent), line + ", 3 s ago");
        EXPECT_TRUE(isCurrent);
        EXPECT_EQ(watch.Look(61'000, 1'031), "");
        ServerWatch::Read(path, 1'061, isCurrent);
        EXPECT_FALSE(isCurrent);
        EXPECT_TRUE(
            watch.Look(120'000, 1'090)
                .starts_with("1 sessions, 0.0 requests and 0.0 updates a second, journal 0.0 MB, 0 flushes, "));
    }
    EXPECT_EQ(ServerWatch::Read(path, 1'091, isCurrent), "no server serves this journal");
}

TEST_F(Net, RubbishFromTheServerEndsTheConnectionAndNothingElse) {
    const std::string challenge = Framed(net::Challenge{}), welcome = challenge + Framed(net::Welcome{});
    const struct {
        std::string bytes;
        const char* state;
    } rows[] = {
        {"rubbish, and more of it", "a frame is too long"},
        {Framed(net::Welcome{}), "a server challenges first"},
        {challenge + Framed(net::RequestDone{1}), "a server welcomes first"},
        {welcome + challenge, "a second challenge"},
        {Framed(net::Challenge{2, ""}), "the server speaks version 2"},
        {Framed(net::Challenge{net::kProtocolVersion, "nonce"}),
         "the server asks for a proof: none: file not found"},
        {Framed(net::ConnectionRefused{"full\x1B[2J\n\xFF"}), "the server refuses: full\\x1B[2J\\x0A\\xFF"},
        {welcome + Framed(net::RequestDone{5}), "the end of a request that nobody made"},
        {welcome + Framed(net::Response{1, 5, ""}), "an answer that nobody asked for"},
        {welcome + Framed(net::Response{1, 1, "rubbish"}), "a message that cannot be read"},
        {welcome + Framed(net::CommandDone{1, true, ""}), "the answer of a command that nobody gave"},
        {welcome + Framed(net::Stop{1}), "a frame that a terminal sends"},
        {welcome + Framed(FrameType::update, "x"), "a frame that cannot be read"},
    };
    for (const auto& row : rows) {
        std::string error;
        Socket listener = Socket::Listen(0, error);
        Terminal terminal({listener.Port(), "none"}, "USER1");
        terminal.Send("any");
        Socket server;
        std::string_view left = row.bytes;
        const auto isLost = [&] {
            if (!server) server = listener.Accept();
            if (server && !left.empty()) server.Send(left);
            return terminal.states.size() > 1 && terminal.Client().State() == LinkState::lost;
        };
        ASSERT_TRUE(Until(isLost, {&terminal})) << row.state;
        EXPECT_EQ(terminal.states.back(), row.state);
        EXPECT_EQ(terminal.Client().Waiting(), 1u) << "the request is kept for the next server";
    }
}

} // namespace
} // namespace vesk
