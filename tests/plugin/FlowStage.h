// The plug-in's core over the real connection library and trading server.
#pragma once

#include "host/server/net/RxClient.h"
#include "tests/plugin/Doubles.h"
#include "tests/server/ServerFixture.h"

namespace planfold::test {

inline constexpr LocalDateTime kNow{2027, 1, 10, 15, 30, 0};

inline vesk::ServerClock FlowClock() {
    return {[] { return ToSeconds(kNow); },
            [](std::int64_t seconds) {
                const LocalDateTime local = ToLocal(seconds);
                return std::chrono::year(local.year) / local.month / local.day;
            }};
}

// Hands a part of the plug-in what its controls bring.
template <class Part>
struct Line final : CKeloRxNotifierBase {
    void OnResponse(void*, void* message, void*) noexcept override { part->OnResponse(message); }
    void OnBroadcast(void* message, std::uint32_t, void*) noexcept override {
        if constexpr (requires { part->OnBroadcast(message); }) part->OnBroadcast(message);
    }

    Part* part = nullptr;
};

struct FlowStage : Stage {
    void Pump() {
        do
            rxClient.Pump(now += 1000);
        while (rxClient.Waiting() > 0);
    }

    // Another terminal at the server, without a plug-in.
    void Send(const vesk::UserIdentity& user, const Fields& request) {
        server.Handle(Received(request).Message(), user);
    }
    // The number of the order.
    std::string Place(const vesk::UserIdentity& user, const std::string& changes) {
        Fields order =
            Order("loginId=" + user.loginId + " peerIdA=" + user.peerIdA + " peerIdB=" + user.peerIdB
                  + " startDate=" + std::to_string(ToSeconds(kNow) + 5 * kSecondsPerDay) + " " + changes);
        order.push_back({tag::orderSource, {"TWS"}});
        Send(user, order);
        return std::string(server.Held().All().back().Number());
    }

    const vesk::UserIdentity own{"DEALER1", "BROKER", "BRANCH"};
    const vesk::TemporaryFolder folder;
    vesk::JournalOpening opening = vesk::Journal::Open(folder.File("journal"));
    vesk::Server server{{}, *opening.journal, opening.records, FlowClock()};
    vesk::ServerCommands commands{server, {}};
    vesk::RxClient rxClient{std::make_unique<vesk::SessionChannel>(server, commands), own};
    std::int64_t now = 0;
};

} // namespace planfold::test
