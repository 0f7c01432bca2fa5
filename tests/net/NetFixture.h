// Terminals without windows, and a server between which and them only TCP is.
#pragma once

#include "host/server/net/NetServer.h"
#include "host/server/net/RxClient.h"
#include "tests/server/ServerFixture.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace vesk {

// One user's terminal: a control for requests, one for a stream, and what they were told.
class Terminal final : public CKeloRxNotifierBase {
public:
    Terminal(std::uint16_t port, std::string login)
        : m_user(std::move(login)),
          m_client(std::make_unique<TcpChannel>(ServerAddress{"localhost", port}), {m_user, "BROKER", ""},
                   [this](LinkState, const std::string& text) { states.push_back(text); }),
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

} // namespace vesk
