// Delivery: when, in which order, to whom, and what happens when a notifier turns things upside down. The
// server is in the same process.

#include "host/server/net/RxClient.h"
#include "tests/server/ServerFixture.h"

#include <algorithm>
#include <functional>

namespace vesk {
namespace {

class Notifier : public CKeloRxNotifierBase {
public:
    explicit Notifier(std::vector<std::string>& log, std::string name) : m_log(log), m_name(std::move(name)) {}

    void OnBroadcast(void* message, std::uint32_t, void*) override {
        m_log.push_back(m_name + " stream " + std::string(qmx::Text(message, tag::registrationNumber)));
        Meanwhile(message);
    }
    void OnResponse(void*, void* message, void*) override {
        std::string line = m_name + " answer " + std::string(qmx::Text(message, tag::echoedRequest));
        if (qmx::Has(message, tag::queriedRow))
            line.append(" ")
                .append(qmx::Text(message, tag::registrationNumber))
                .append(" ")
                .append(qmx::Text(message, tag::sipStatus));
        m_log.push_back(line);
        if (onAnswer) onAnswer(message);
        Meanwhile(message);
    }

    std::function<void()> act; // once, in the middle of the next call
    std::function<void(void* message)> onAnswer;
    void* lastMessage = nullptr;

private:
    void Meanwhile(void* message) {
        lastMessage = message;
        const std::string before = qmx::Dump(message);
        if (const auto once = std::exchange(act, nullptr)) once();
        EXPECT_EQ(qmx::Dump(message), before) << "the message changed during the call";
    }

    std::vector<std::string>& m_log;
    std::string m_name;
};

class RxClientTest : public testing::Test {
protected:
    using Log = std::vector<std::string>;

    // A busy machine must not end a pump early.
    RxClient Client(const UserIdentity& user, std::chrono::milliseconds pumpTime = std::chrono::hours(1)) {
        return {std::make_unique<SessionChannel>(*m_running.server, m_commands),
                user,
                [this](LinkState, const std::string& text) {
                    if (m_onState) m_onState(text);
                },
                {},
                pumpTime};
    }
    int Send(RxControl* control, const Fields& fields) {
        const std::string bytes = Message(fields); // which is copied before that returns
        return control->SendRequest(&m_number, qmx::MessageReader(bytes).Handle(), 0, &m_error);
    }
    int Subscribe(RxControl* control, const Fields& fields) {
        std::vector<std::uint32_t> tags;
        std::vector<QmxDatum> values;
        for (const auto& [tag, text] : fields) {
            tags.push_back(tag);
            values.push_back(qmx::Datum(text));
        }
        std::uint64_t out = 0;
        return control->Subscribe(&out, tags.data(), values.data(), static_cast<std::uint32_t>(tags.size()),
                                  control, 0, 0, 1, &m_error);
    }
    Log Taken() { return std::exchange(m_log, {}); }

    TemporaryFolder m_folder;
    RunningServer m_running{m_folder.File("journal")};
    Log m_log;
    Notifier m_one{m_log, "one"};
    Notifier m_two{m_log, "two"};
    ServerCommands m_commands{*m_running.server, {}};
    std::function<void(const std::string& text)> m_onState;
    RxClient m_client = Client(m_running.user);
    std::uint64_t m_number = 0;
    QmxError m_error{};
};

TEST_F(RxClientTest, AnswersComeFromThePumpInOrderToTheirSenders) {
    RxControl* one = m_client.Get(kRxRequests, &m_one);
    RxControl* two = m_client.Get(kRxRequests, &m_two);
    ASSERT_TRUE(Send(one, "a"));
    ASSERT_TRUE(Send(two, "b"));
    ASSERT_TRUE(Send(one, "c"));
    EXPECT_EQ(m_number, 3u);
    EXPECT_EQ(m_log, Log{});
    EXPECT_EQ(m_client.Pump(0), 3u);
    EXPECT_EQ(m_log, (Log{"one answer a", "two answer b", "one answer c"}));
    EXPECT_EQ(m_client.Pump(0), 0u);
    // Valid during the call only.
    EXPECT_FALSE(qmx::Has(m_one.lastMessage, tag::echoedRequest));
}

TEST_F(RxClientTest, ChangesGoOnceToEverySubscriberTheyConcern) {
    const struct {
        int kind;
        std::vector<std::string> subscriptions;
        const char* delivered; // of an order of USER1, BROKER, CL1 ("own") and one of USER2, BROKER, BR2, CL2
    } rows[] = {
        {2, {"streamName=PLANFOLD registrationNumber= peerIdA="}, "own"},
        {1, {"loginId= registrationNumber="}, "own"},
        {2, {"streamName=PLANFOLD registrationNumber= peerIdA=BROKER"}, "own other"},
        {1, {"peerIdA=BROKER registrationNumber="}, "own other"},
        {1, {"peerIdA=NOBODY registrationNumber="}, ""},
        {1, {"peerIdB=BR2 registrationNumber="}, ""},
        {1, {"loginId=USER1 registrationNumber="}, "own"},
        {2, {"streamName=PLANFOLD registrationNumber= loginId=USER2"}, ""},
        {2, {"streamName=PLANFOLD registrationNumber= loginId=USER"}, ""},
        {2, {"streamName=PLANFOLD registrationNumber= account=CL1"}, "own"},
        {2, {"streamName=PLANFOLD registrationNumber= account=CL2"}, "other"},
        {2, {"streamName=PLANFOLD registrationNumber= loginId=USER1 account=CL2"}, ""},
        {2, {"streamName=NONE account=CL1"}, ""},
        {2,
         {"streamName=PLANFOLD account=CL1", "streamName=PLANFOLD account=CL2",
          "streamName=PLANFOLD account=CL1"},
         "own other"},
        {2, {"streamName=PLANFOLD account=CL1", "streamName=PLANFOLD loginId=USER1"}, "own"},
    };
    const std::pair<const char*, std::string> orders[] = {{"own", ""},
                                                          {"other", "loginId=USER2 peerIdB=BR2 account=CL2"}};
    RxClient other = Client({"USER2", "BROKER", "BR2"});
    RxControl* senders[] = {m_client.Get(kRxRequests, &m_one), other.Get(kRxRequests, &m_one)};
    int order = 0;
    for (const auto& row : rows) {
        RxControl* control = m_client.Get(row.kind, &m_two);
        for (const std::string& subscription : row.subscriptions) {
            ASSERT_TRUE(Subscribe(control, subscription)) << subscription << m_error.text;
        }
        for (const auto& [name, fields] : orders) {
            Fields changes(fields);
            changes[tag::orderId] = "id" + std::to_string(++order);
            m_client.Pump(0);
            ASSERT_TRUE(Send(senders[&fields != &orders[0].second], Order(changes)));
            other.Pump(0);
            m_client.Pump(0);
            Log expected{"one answer add_sip_orders"};
            if (std::string(row.delivered).find(name) != std::string::npos)
                expected.push_back("two stream " + std::string(m_running.server->Held().All().back().Number()));
            EXPECT_EQ(Taken(), expected) << name << " for " << row.subscriptions[0];
        }
        m_client.Destroy(control);
    }
}

TEST_F(RxClientTest, OneRefusedSubscriptionLeavesTheOthersOfItsControlAlsoOnTheNextConnection) {
    RxControl* sender = m_client.Get(kRxRequests, &m_one);
    RxControl* stream = m_client.Get(kRxIdentityStream, &m_two);
    std::size_t refused = 0;
    m_onState = [&](const std::string& text) { refused += text.starts_with("a subscription was refused"); };
    for (const char* fields : {"account=CL1", "loginId=USER2", "account=CL2"})
        ASSERT_TRUE(Subscribe(stream, fields));
    for (int order = 1; order <= 4; ++order) {
        m_client.Pump(order * 1000);
        EXPECT_EQ(refused, 1u) << "it is not asked for again";
        m_log.clear(); // of what was perhaps missed
        ASSERT_TRUE(Send(sender, Order("orderId=" + std::to_string(order) + " account=CL" + "21"[order % 2])));
        m_client.Pump(order * 1000);
        const std::string number(m_running.server->Held().All().back().Number());
        EXPECT_EQ(Taken(), (Log{"one answer add_sip_orders", "two stream " + number}));
        if (order == 2) m_client.Leave();
    }
}

TEST_F(RxClientTest, StopEndsTheStreamAlsoForWhatAlreadyWaits) {
    RxControl* sender = m_client.Get(kRxRequests, &m_one);
    RxControl* stream = m_client.Get(kRxIdentityStream, &m_two);
    ASSERT_TRUE(Subscribe(stream, "loginId=USER1"));
    m_one.act = [&] { EXPECT_TRUE(stream->Stop(0)); };
    ASSERT_TRUE(Send(sender, Order()));
    m_client.Pump(0);
    EXPECT_EQ(m_log, Log{"one answer add_sip_orders"});
    EXPECT_EQ(m_client.LiveControls(), 2u);
}

TEST_F(RxClientTest, QueryGivesItsRowsOverManyPumpsAndAsTheyAreThen) {
    const auto enter = [&](const std::string& orderId) {
        m_running.Ask(Order("orderId=" + orderId));
        return std::string(m_running.server->Held().All().back().Number());
    };
    for (int i = 0; i < 300; ++i)
        enter(std::to_string(i));
    const auto number = [&](std::size_t row) {
        return std::string(m_running.server->Held().All()[row].Number());
    };
    RxClient client = Client(m_running.user, std::chrono::milliseconds(0));
    RxControl* asking = client.Get(kRxRequests, &m_one);
    RxControl* stream = client.Get(kRxAccountStream, &m_two);
    ASSERT_TRUE(Subscribe(stream, "loginId=USER1"));
    const Fields query = "om_get_sip_orders loginId=USER1";
    const std::string row = "one answer om_get_sip_orders ";

    ASSERT_TRUE(Send(asking, query));
    while (m_log.empty())
        client.Pump(0);
    EXPECT_EQ(m_log, Log{row + number(0) + " active"});
    m_running.Ask("pause_sip_order registrationNumber=" + number(299));
    const std::string later = enter("later");
    m_one.act = [&] { EXPECT_EQ(client.Pump(0), 1u) << "a nested pump goes on with the next row"; };
    EXPECT_EQ(client.Pump(0), 1u);
    EXPECT_EQ(m_log.size(), 3u);
    while (client.Waiting())
        client.Pump(0);
    const Log log = Taken();
    EXPECT_EQ(std::ranges::count(log, row + number(299) + " Paused"), 1);
    EXPECT_EQ(std::ranges::count(log, "two stream " + number(299)), 1);
    EXPECT_EQ(std::ranges::count(log, "two stream " + later), 1);
    EXPECT_EQ(log.size(), 303u);
    EXPECT_LT(std::ranges::find(log, "two stream " + number(299)),
              std::ranges::find(log, row + number(299) + " Paused"))
        << "no row is older than an update behind it";

    // Ended in its middle, and with it what stands behind it.
    ASSERT_TRUE(Send(asking, query));
    m_one.act = [&] { client.Destroy(asking); };
    while (client.Waiting())
        client.Pump(0);
    EXPECT_EQ(Taken(), Log{row + number(0) + " active"});
}

TEST_F(RxClientTest, NestedPumpDeliversTheRestOnce) {
    RxControl* one = m_client.Get(kRxRequests, &m_one);
    for (const char* name : {"a", "b", "c"})
        ASSERT_TRUE(Send(one, name));
    m_one.act = [&] {
        ASSERT_TRUE(Send(one, "d"));
        EXPECT_EQ(m_log.size(), 1u) << "nothing is delivered from inside SendRequest";
        EXPECT_EQ(m_client.Pump(0), 3u);
    };
    EXPECT_EQ(m_client.Pump(0), 1u);
    EXPECT_EQ(m_log, (Log{"one answer a", "one answer b", "one answer c", "one answer d"}));
}

TEST_F(RxClientTest, ControlMayBeDestroyedInItsOwnCallAndItsAnswersAreDropped) {
    RxControl* one = m_client.Get(kRxRequests, &m_one);
    RxControl* two = m_client.Get(kRxRequests, &m_two);
    m_one.act = [&] { m_client.Destroy(one); };
    ASSERT_TRUE(Send(one, "a"));
    ASSERT_TRUE(Send(one, Order()));
    ASSERT_TRUE(Send(two, "b"));
    m_client.Pump(0);
    EXPECT_EQ(m_log, (Log{"one answer a", "two answer b"}));
    EXPECT_EQ(m_running.server->Held().All().size(), 1u) << "what was sent is still served";
    EXPECT_EQ(m_client.LiveControls(), 1u);
    m_client.Destroy(one); // a stranger by now
    m_client.Destroy(nullptr);
    EXPECT_EQ(m_client.LiveControls(), 1u);
}

TEST_F(RxClientTest, SessionThatEndsIsALostConnectionAndWhatWasAskedIsAskedAgain) {
    RxControl* one = m_client.Get(kRxRequests, &m_one);
    RxControl* stream = m_client.Get(kRxIdentityStream, &m_two);
    ASSERT_TRUE(Subscribe(stream, "loginId=USER1"));
    m_running.server->Config().faults["add_sip_orders"].disconnects = 1;
    ASSERT_TRUE(Send(one, Order()));
    m_client.Pump(0);
    EXPECT_EQ(m_client.State(), LinkState::lost);
    EXPECT_EQ(m_log, Log{});
    m_client.Pump(1000);
    const std::string number(m_running.server->Held().All().back().Number());
    EXPECT_EQ(Taken(), (Log{"one answer add_sip_orders", "two stream " + number})) << "with what was missed";
    EXPECT_EQ(m_running.server->Held().All().size(), 1u);
    EXPECT_EQ(m_client.Waiting(), 0u);
}

// Ends once, over what is to be sent.
class BreakingChannel final : public Channel {
public:
    BreakingChannel(Server& server, ServerCommands& commands, bool& breaks)
        : m_channel(server, commands), m_breaks(breaks) {}
    std::string Name() const override { return m_channel.Name(); }
    Checksum Sums() const override { return m_channel.Sums(); }
    Loaded<std::string> Secret(const std::string& loginId) const override { return m_channel.Secret(loginId); }
    std::string Open() override { return m_channel.Open(); }
    void Close() override { m_channel.Close(); }
    Exchanged Exchange(std::string_view& output, FrameReader* reader, std::int64_t nowMs) override {
        if (m_breaks && !output.empty()) {
            m_breaks = false;
            return {.over = "broken"};
        }
        return m_channel.Exchange(output, reader, nowMs);
    }
    std::size_t Waiting() const override { return m_channel.Waiting(); }

private:
    SessionChannel m_channel;
    bool& m_breaks;
};

TEST_F(RxClientTest, TheNextConnectionBeginsWithNothingOfTheOneBefore) {
    bool breaks = false;
    Log states;
    RxClient client{std::make_unique<BreakingChannel>(*m_running.server, m_commands, breaks),
                    m_running.user,
                    [&](LinkState, const std::string& text) { states.push_back(text); },
                    {},
                    std::chrono::hours(1)};
    RxControl* one = client.Get(kRxRequests, &m_one);
    client.Pump(0);
    ASSERT_EQ(client.State(), LinkState::connected);
    breaks = true;
    ASSERT_TRUE(Send(one, Order()));
    states.clear();
    for (const std::int64_t now : {1, 1'000, 2'000})
        client.Pump(now);
    EXPECT_EQ(client.State(), LinkState::connected);
    EXPECT_EQ(states.size(), 3u) << "lost, connecting, connected";
    EXPECT_EQ(Taken(), Log{"one answer add_sip_orders"});
    EXPECT_EQ(m_running.server->Held().All().size(), 1u);
}

TEST_F(RxClientTest, RequestThatNeverLeftIsWithdrawnAnsweredAndNeverSent) {
    RxControl* one = m_client.Get(kRxRequests, &m_one);
    m_running.server->Config().faults["*"].disconnects = 1;
    ASSERT_TRUE(Send(one, Order()));
    m_client.Pump(0);
    ASSERT_EQ(m_client.State(), LinkState::lost);
    ASSERT_TRUE(Send(one, Order({{tag::orderId, "id-2"}, {tag::echoedNumber, "7"}})));
    ASSERT_TRUE(Send(one, Order({{tag::orderId, "id-3"}})));
    ASSERT_TRUE(Send(one, "pause_sip_order registrationNumber=SIP2603020000001"));
    EXPECT_EQ(m_client.Requests().Numbers(), (std::vector<std::uint64_t>{1, 2, 3, 4}));
    const struct {
        std::uint64_t number;
        const char* answer; // empty: it has left, or is gone
    } rows[] = {{1, ""},
                {2, "32767=add_sip_orders 32766=111 20008=Withdrawn by the user 32760=7 54158=id-2"},
                {2, ""},
                {4, "32767=pause_sip_order 32766=111 20008=Withdrawn by the user 64804=SIP2603020000001"},
                {5, ""}};
    for (const auto& row : rows) {
        std::string answer;
        m_one.onAnswer = [&](void* message) { answer = qmx::Dump(message); };
        const auto waiting = m_client.Requests().Find(row.number);
        EXPECT_EQ(waiting && !waiting->hasLeft, *row.answer != 0) << row.number;
        EXPECT_EQ(m_client.Withdraw(row.number), *row.answer != 0) << row.number;
        m_client.Pump(0);
        EXPECT_EQ(answer, row.answer);
    }
    m_one.onAnswer = {};
    m_client.Pump(1000);
    ASSERT_EQ(m_running.server->Held().All().size(), 2u);
    EXPECT_EQ(m_running.server->Held().All()[1].Text(tag::orderId), "id-3");
    EXPECT_EQ(m_client.Requests().Size(), 0u);
}

TEST_F(RxClientTest, WrongUseIsRefusedWithAnError) {
    EXPECT_EQ(m_client.Get(3, &m_one), nullptr);
    EXPECT_EQ(m_client.Get(-1, &m_one), nullptr);
    EXPECT_EQ(m_client.Get(kRxRequests, nullptr), nullptr);
    RxControl* requests = m_client.Get(kRxRequests, &m_one);
    RxControl* stream = m_client.Get(kRxAccountStream, &m_one);

    EXPECT_FALSE(requests->SendRequest(&m_number, nullptr, 0, &m_error));
    EXPECT_EQ(m_error.code, kQmxBadHandle);
    EXPECT_FALSE(Send(stream, "a"));
    EXPECT_EQ(m_error.code, kQmxBadArgument);
    EXPECT_FALSE(Subscribe(requests, "loginId="));
    EXPECT_FALSE(Subscribe(stream, {}));
    EXPECT_FALSE(Subscribe(stream, "token=1"));
    const std::vector<std::uint32_t> tags(17, tag::loginId);
    const std::vector<QmxDatum> values(tags.size());
    EXPECT_FALSE(stream->Subscribe(nullptr, tags.data(), values.data(), 17, stream, 0, 0, 1, &m_error));
    const std::uint32_t tag = tag::loginId;
    const QmxDatum value{nullptr, 4};
    EXPECT_FALSE(stream->Subscribe(nullptr, &tag, &value, 1, stream, 0, 0, 1, &m_error));
    EXPECT_FALSE(stream->Subscribe(nullptr, nullptr, &value, 1, stream, 0, 0, 1, &m_error));
    EXPECT_FALSE(stream->Subscribe(nullptr, &tag, &value, 0xFFFFFFFF, requests, 0, 0, 1, &m_error));
    EXPECT_EQ(m_error.code, kQmxBadArgument);
    EXPECT_STRNE(m_error.text, "");
    EXPECT_EQ(m_client.Waiting(), 0u);
}

} // namespace
} // namespace vesk
