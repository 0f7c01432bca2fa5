// Who may come to a server, what only some may do there, and whose place another one gets.

#include "host/server/net/OwnerFile.h"
#include "host/server/net/Proof.h"
#include "tests/net/NetFixture.h"

#include <algorithm>
#include <list>

namespace vesk {
namespace {

constexpr const char* kNotProven = "the login is unknown here, or its secret or firm is another";

// What the session has said of this type, last.
template <class Said>
std::optional<Said> LastOf(ServerSession& session) {
    FrameReader reader;
    reader.Add(session.Output().Bytes());
    std::optional<Said> said;
    while (const auto frame = reader.Next())
        if (frame->type == Said::kType) said = net::Read<Said>(frame->payload);
    return said;
}

TEST(Proof, IsSignedAsEverywhere) {
    std::string expected("\x5B\xDC\xC1\x46\xBF\x60\x75\x4E\x6A\x04\x24\x26\x08\x95\x75\xC7"
                         "\x5A\x00\x3F\x08\x9D\x27\x39\x83\x9D\xEC\x58\xB9\x64\xEC\x38\x43",
                         32);
    EXPECT_EQ(HmacSha256("Jefe", "what do ya want for nothing?"), expected);
    EXPECT_TRUE(AreSame(expected, expected));
    for (char& c : expected) {
        const std::string before = expected;
        c ^= 1;
        EXPECT_FALSE(AreSame(before, expected));
    }
    EXPECT_FALSE(AreSame("", "a"));
    EXPECT_NE(RandomBytes(32), RandomBytes(32));
}

TEST_F(Net, OnlyWhoKnowsTheSecretOfALoginIsThatLogin) {
    Start();
    const std::string secret = m_logins.Find("USER1")->secret, other = m_logins.Find("USER2")->secret;
    const net::Hello good{net::kProtocolVersion, "USER1", "BROKER", "", 1, {}};
    std::string old;
    {
        ServerSession session(*m_running->server, *m_commands, {.logins = &m_logins});
        old = ProofOf(secret, LastOf<net::Challenge>(session)->nonce, good);
    }
    const struct {
        const char* name;
        void (*change)(net::Hello& hello); // behind the proof
        std::string secret, proof;         // of the good hello, unless there is a proof
        const char* reason;                // empty: welcome
    } rows[] = {
        {"good", nullptr, secret, "", ""},
        {"no proof", [](net::Hello& hello) { hello.proof.clear(); }, secret, "", kNotProven},
        {"half a proof", [](net::Hello& hello) { hello.proof.resize(16); }, secret, "", kNotProven},
        {"another's secret", nullptr, other, "", kNotProven},
        {"of another connection", nullptr, "", old, kNotProven},
        {"another's login", [](net::Hello& hello) { hello.loginId = "USER2"; }, secret, "", kNotProven},
        {"unknown", [](net::Hello& hello) { hello.loginId = "NOBODY"; }, secret, "", kNotProven},
        {"another firm", [](net::Hello& hello) { hello.peerIdA = "OTHER"; }, secret, "", kNotProven},
        {"another terminal", [](net::Hello& hello) { ++hello.terminal; }, secret, "", kNotProven},
        {"too long", [](net::Hello& hello) { hello.loginId.assign(kLongestName + 1, 'x'); }, secret, "",
         "a hello with a name that is none"},
        {"control characters", [](net::Hello& hello) { hello.peerIdB = "\x1B[2J"; }, secret, "",
         "a hello with a name that is none"},
    };
    for (const auto& row : rows) {
        ServerSession session(*m_running->server, *m_commands, {.logins = &m_logins});
        const std::string nonce = LastOf<net::Challenge>(session)->nonce;
        EXPECT_EQ(nonce.size(), 32u);
        net::Hello hello = good;
        hello.proof = row.proof.empty() ? ProofOf(row.secret, nonce, hello) : row.proof;
        if (row.change) row.change(hello);
        session.Take(
            Framed(hello) + Framed(net::OpenControl{1, kRxRequests})
                + Framed(net::ControlRequest{1, 1, Message(Order("orderId=" + std::string(row.name)))}),
            0);
        session.Pump(0);
        EXPECT_EQ(session.EndReason(), row.reason) << row.name;
        EXPECT_EQ(LastOf<net::Welcome>(session).has_value(), !*row.reason) << row.name;
    }
    EXPECT_EQ(m_running->server->Held().All().size(), 1u) << "nothing else is done for a stranger";

    // Signed for a firm that is not the login's.
    net::Hello hello = good;
    hello.peerIdA = "OTHER";
    ServerSession session(*m_running->server, *m_commands, {.logins = &m_logins});
    hello.proof = ProofOf(secret, LastOf<net::Challenge>(session)->nonce, hello);
    session.Take(Framed(hello), 0);
    EXPECT_EQ(session.EndReason(), kNotProven);
}

TEST_F(Net, CommandsOfTerminalsAreRefusedWhereTheyAreNotAllowed) {
    Start({.takesCommands = false});
    Terminal one(Place(), "USER1");
    Texts told;
    ASSERT_TRUE(Until([&] { return one.Client().State() == LinkState::connected; }, {&one}));
    one.Client().Command("clock 2099-01-01", [&](const Told& it) { told.push_back(it.text); });
    ASSERT_TRUE(Until([&] { return !told.empty(); }, {&one}));
    EXPECT_EQ(told, Texts{"The server takes no commands from terminals; --allow-commands lets it"});
    EXPECT_EQ(m_running->server->Clock().Today(),
              RunningServer(m_folder.File("other")).server->Clock().Today());
}

TEST_F(Net, StreamOfAnotherIsRefusedAsItsQueryIs) {
    m_logins.Add({"STRANGER", "ELSEWHERE", ""});
    Start();
    const struct {
        std::uint32_t tag;
        const char *value, *state; // last told; updates come when it is connected
        std::size_t updates;
    } rows[] = {
        {tag::loginId, "USER1", "a subscription was refused: The user is not the one who is logged in", 0},
        {tag::peerIdA, "BROKER", "a subscription was refused: The user is not the one who is logged in", 0},
        {tag::peerIdA, "ELSEWHERE", "connected", 0},
        {tag::streamName, kStreamName.data(), "connected", 0},
    };
    Terminal one(Place(), "USER1");
    int orders = 0;
    for (const auto& row : rows) {
        Terminal stranger(Place(), "STRANGER", "ELSEWHERE");
        ASSERT_TRUE(stranger.Subscribe(row.tag, row.value) && stranger.Send("get_sip_operation_mode"));
        ASSERT_TRUE(Until([&] { return stranger.Client().Waiting() == 0; }, {&stranger, &one}));
        ASSERT_TRUE(one.Place(std::to_string(++orders)));
        ASSERT_TRUE(Until([&] { return one.Client().Waiting() == 0; }, {&stranger, &one}));
        stranger.Send("get_sip_operation_mode");
        ASSERT_TRUE(Until([&] { return stranger.Client().Waiting() == 0; }, {&stranger, &one}));
        EXPECT_EQ(stranger.states.back(), row.state);
        EXPECT_EQ(stranger.streamed.size(), row.updates) << row.value;
    }
}

TEST_F(Net, SecretsAreMadeOnceAndForTheirOwnerOnly) {
    const std::string path = m_folder.File("made").string();
    const UserIdentity users[] = {{"DEALER01", "BROKER", "BRANCH"}, {"DEALER02", "", ""}};
    std::string made;
    ASSERT_TRUE(Logins::LoadWith(path, std::span(users, 1), made));
    EXPECT_EQ(made, "DEALER01");
    const auto first = Logins::Load(path);
    ASSERT_TRUE(first) << first.Fault().Text();
    WriteFileText(path + ".new", "left by a crash");
    ASSERT_TRUE(Logins::LoadWith(path, users, made));
    EXPECT_EQ(made, "DEALER02");
    const auto second = Logins::Load(path);
    ASSERT_TRUE(second);
    EXPECT_EQ(second.Value().Find("DEALER01")->secret, first.Value().Find("DEALER01")->secret);
    EXPECT_EQ(second.Value().Find("DEALER01")->user.peerIdB, "BRANCH");
    EXPECT_NE(second.Value().Find("DEALER01")->secret, second.Value().Find("DEALER02")->secret);
    EXPECT_TRUE(IsForOwner(path));

    const std::string secret(32, 's');
    const std::pair<std::string, std::string> faults[] = {
        {"{\n\"A\": {\"secret\": \"short\"}}", ":2: \"A\" needs a secret of 32 to 256 characters"},
        {"{\"A\": {\"secret\": \"" + secret + "\", \"right\": \"\"}}",
         ":1: \"A\" has an unknown member, \"right\""},
        {"{\"\": {\"secret\": \"" + secret + "\"}}", ":1: \"\" is no login"},
        {"{\"A\": []}", ":1: \"A\" is not an object"},
        {"{\"A\": {\"secret\": 1}}", ":1: \"A\" \"secret\" is not a text"},
    };
    for (const auto& [text, fault] : faults) {
        const auto logins = Logins::Parse(text, "f");
        ASSERT_FALSE(logins) << text;
        EXPECT_EQ(logins.Fault().Text(), "f" + fault);
    }
#ifndef _WIN32
    std::filesystem::permissions(path, std::filesystem::perms::others_read, std::filesystem::perm_options::add);
    EXPECT_EQ(Logins::Load(path).Fault().Text(),
              "made: others may read it; make it readable for its owner only");
#endif
}

// A connection that says nothing, or what it is given.
Socket Connected(std::uint16_t port, std::string_view says = {}) {
    std::string error;
    Socket socket = Socket::Connect("localhost", port, error);
    SocketEvents came[] = {{&socket, false, true}};
    Wait(came, 1000);
    socket.Send(says);
    return socket;
}

TEST_F(Net, StrangersAndIdleTerminalsLockNobodyOut) {
    constexpr std::size_t places = 256;
    const auto isIn = [](Terminal& one) {
        return [&] { return one.Client().State() == LinkState::connected; };
    };
    Start({.greetingMs = 3'600'000, .graceMs = 0, .idleMs = 0, .loginSessions = places});
    std::list<Socket> strangers;
    const auto crowd = [&] {
        for (std::size_t i = 0; i < places; ++i) {
            strangers.push_back(Connected(m_port, "\x09"));
            m_net->Turn(0);
        }
    };
    crowd();
    EXPECT_EQ(m_net->Connections(), places);
    EXPECT_TRUE(m_log.empty());
    std::list<Terminal> watching, idle;
    // Strangers go for them, and none of them for strangers.
    for (std::size_t i = 0; i < places - 1; ++i) {
        Terminal& one = watching.emplace_back(Place(), "USER1");
        one.Subscribe();
        ASSERT_TRUE(Until(isIn(one), {&one})) << i;
    }
    crowd();
    const std::int64_t later = SteadyMs() + 1000;
    ASSERT_TRUE(Until([&] { return SteadyMs() > later; }, {}));
    crowd();
    EXPECT_NE(m_log.back().find(" others before)"), std::string::npos) << m_log.back();
    m_log.clear();
    const std::int64_t begun = SteadyMs();
    Terminal& last = idle.emplace_back(Place(), "USER2");
    ASSERT_TRUE(Until(isIn(last), {&last}));
    EXPECT_LE(static_cast<std::int64_t>(m_log.size()), 2 + (SteadyMs() - begun) / 1000)
        << "strangers have a line a second in the log";
    // It wants nothing, and goes for another one.
    Terminal& newest = watching.emplace_back(Place(), "USER2");
    newest.Subscribe();
    ASSERT_TRUE(Until(isIn(newest), {&newest}));
    EXPECT_EQ(m_log.back(), "USER2 is cut off: another terminal needs its place");
    crowd();
    for (Terminal& one : watching)
        one.Pump();
    EXPECT_TRUE(std::ranges::all_of(watching, [](Terminal& one) { return one.states.size() == 2; }));
    EXPECT_EQ(m_net->Connections(), places);
}

TEST_F(Net, LoginHasItsNumberOfPlacesWhateverItsTerminalsDo) {
    constexpr const char* refused = "the server refuses: too many terminals of this login";
    const struct {
        const char* login;
        bool subscribes;
        const char* state; // last told
        const char* cut;   // in the log, last
    } rows[] = {
        {"USER1", true, "connected", ""},
        {"USER1", false, "connected", ""},
        {"USER2", false, "connected", ""},
        {"USER1", true, "connected", "USER1 is cut off: another terminal needs its place"},
        {"USER1", true, refused, "USER1 is cut off: too many terminals of this login"},
        {"USER2", true, "connected", ""},
    };
    Start({.idleMs = 0, .loginSessions = 2});
    std::list<Terminal> terminals;
    for (const auto& row : rows) {
        Terminal& one = terminals.emplace_back(Place(), row.login);
        if (row.subscribes) one.Subscribe();
        m_log.assign(1, "");
        ASSERT_TRUE(Until([&] { return one.states.size() == 2; }, {&one}));
        EXPECT_EQ(one.states.back(), row.state) << &row - rows;
        EXPECT_EQ(m_log.back(), row.cut) << &row - rows;
    }
}

TEST_F(Net, WhoIsRefusedSubscriptionsAndReadsNoneIsNotReadEither) {
    Start();
    ServerSession session(*m_running->server, *m_commands, {.outputBytes = 4096});
    session.Take(Framed(net::Hello{net::kProtocolVersion, "USER1", "B", "", 1}), 0);
    std::size_t taken = 0;
    for (; taken < 1000 && session.TakesInput(); ++taken)
        session.Take(Framed(net::Subscribe{7, 1, false, {}}), 0);
    EXPECT_LT(taken, 1000u);
    session.Output().Clear();
    EXPECT_TRUE(session.TakesInput());
}

} // namespace
} // namespace vesk
