// Terminals without windows, and a server between which and them only TCP is.
#pragma once

#include "host/server/net/NetServer.h"
#include "host/server/net/RxClient.h"
#include "host/server/sample/SampleOrders.h"
#include "tests/net/ServerPlace.h"
#include "tests/server/ServerFixture.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

inline std::string Framed(FrameType type, std::string_view payload) {
    std::string bytes;
    EXPECT_TRUE(AppendFrame(bytes, type, payload));
    return bytes;
}
template <class Said>
std::string Framed(Said said) {
    std::string bytes;
    EXPECT_TRUE(net::Append(bytes, said));
    return bytes;
}

// One user's terminal: a control for requests, one for a stream, and what they were told.
class Terminal final : public CKeloRxNotifierBase {
public:
    Terminal(const ServerPlace& place, std::string login, const std::string& firm = "BROKER")
        : m_user(std::move(login)),
          m_client(std::make_unique<TcpChannel>(ServerAddress{"localhost", place.port}, place.secretsFile),
                   {m_user, firm, ""}, [this](LinkState, const std::string& text) { states.push_back(text); }),
          m_requests(m_client.Get(kRxRequests, this)), m_stream(m_client.Get(kRxIdentityStream, this)) {}

    // Of the firm, whoever placed it.
    bool Subscribe(std::uint32_t tag = tag::streamName, const char* value = kStreamName.data()) {
        const QmxDatum datum = qmx::Datum(value);
        return m_stream->Subscribe(nullptr, &tag, &datum, 1, m_stream, 0, 0, 1, nullptr) != 0;
    }
    bool Send(const Fields& fields) {
        const std::string bytes = Message(fields);
        const qmx::MessageReader reader(bytes);
        return m_requests->SendRequest(nullptr, reader.Handle(), 0, nullptr) != 0;
    }
    bool Place(const std::string& identifier) {
        // From 2099 on: no instalment of it is due.
        return Send(Order("loginId=" + m_user + " orderId=" + identifier + " startDate=4070908800"));
    }
    void Pump() { m_client.Pump(SteadyMs()); }
    RxClient& Client() { return m_client; }

    void OnBroadcast(void* message, std::uint32_t, void*) override {
        streamed.push_back(std::string(qmx::Text(message, tag::registrationNumber)) + " "
                           + std::string(qmx::Text(message, tag::sipStatus)));
        if (onUpdate) onUpdate(message);
    }
    void OnResponse(void*, void* message, void*) override {
        const bool isRow = qmx::Has(message, tag::queriedRow);
        answers.emplace_back(qmx::Text(message, isRow ? tag::registrationNumber : tag::userText));
        if (onAnswer) onAnswer(message);
    }

    std::vector<std::string> states, streamed, answers;
    std::function<void(void*message)> onAnswer, onUpdate;

private:
    std::string m_user;
    RxClient m_client;
    RxControl* m_requests;
    RxControl* m_stream;
};

using Texts = std::vector<std::string>;

// A server over TCP that is turned by the test.
class Net : public testing::Test {
protected:
    void Start(SessionLimits limits = {}) {
        if (!m_logins.Find("USER1")) {
            for (const char* name : {"USER1", "USER2", "SLOW"})
                m_logins.Add({name, "BROKER", ""});
            ASSERT_EQ(m_logins.Write(Place().secretsFile), "");
        }
        limits.logins = &m_logins;
        m_running.emplace(m_folder.File("journal"), m_config);
        m_commands.emplace(*m_running->server, SampleMarket{{"CL1"}, {{"nse_cm", "1013", "ARBORTEX-EQ"}}},
                           true);
        m_net.emplace(
            *m_running->server, *m_commands, [this](const std::string& line) { m_log.push_back(line); },
            limits);
        ASSERT_EQ(m_net->Listen(m_port), "");
        m_port = m_net->Port();
    }
    ServerPlace Place() const { return {m_port, m_folder.File("journal.secrets").string()}; }
    void Kill() {
        m_net.reset();
        m_running.reset();
    }
    void Fill(std::size_t count, const UserIdentity& user) {
        const FillPlan plan{count, {user}, {{"CL1"}, {{"nse_cm", "1013", "ARBORTEX-EQ"}}}};
        ASSERT_EQ(vesk::Fill(*m_running->server, plan), "");
    }
    template <class Condition>
    bool Until(Condition condition, std::initializer_list<Terminal*> terminals) {
        const std::int64_t end = SteadyMs() + 60'000;
        while (!condition() && SteadyMs() < end) {
            if (m_net) m_net->Turn(1);
            for (Terminal* terminal : terminals)
                terminal->Pump();
        }
        return condition();
    }

    TemporaryFolder m_folder;
    ServerConfig m_config;
    std::uint16_t m_port = 0;
    Logins m_logins;
    std::optional<RunningServer> m_running;
    std::optional<ServerCommands> m_commands;
    std::optional<NetServer> m_net;
    Texts m_log;
};

} // namespace vesk
