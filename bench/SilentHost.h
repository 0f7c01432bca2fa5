// A host that does nothing and keeps nothing.
#pragma once

#include "bench/Rounds.h"
#include "host/connectvesk/QmxHost.h"
#include "plugin/messaging/Session.h"
#include "sdk/HeapStringManager.h"
#include "sdk/RxControl.h"

namespace bench {

class SilentNotices final : public planfold::Notices {
public:
    void ShowMessage(planfold::Pass, std::string_view) override {}
};

// Takes the bytes and drops them.
class SilentControl final : public RxControl {
public:
    int SendRequest(std::uint64_t*, void* message, int, QmxError* error) override {
        QmxDatum bytes{};
        const int good = qmx_message_bytes(message, &bytes, error);
        Keep(bytes.data);
        return good;
    }
    int Subscribe(std::uint64_t*, const std::uint32_t*, const QmxDatum*, std::uint32_t, RxControl*, int, int,
                  int, QmxError*) override {
        return 1;
    }
    int Stop(int) override { return 1; }
    void Reserved0() override {}
    void Reserved1() override {}
    void Reserved2() override {}
    void Reserved3() override {}
    void Reserved6() override {}
    void Reserved7() override {}
    void Reserved8() override {}
    void Reserved9() override {}
    void Reserved10() override {}
    void Reserved11() override {}
    void Reserved12() override {}
    void Reserved13() override {}
    void Reserved14() override {}
};

// A dealer's session with it, the message's handles open.
struct SilentHost {
    SilentHost() {
        session.host.pu_get_uuid = [](OutString) { return 1; };
        session.m_nSipOperationMode = 1;
        session.OpenHandles(pass, notices);
    }
    SilentHost(const SilentHost&) = delete;
    SilentHost& operator=(const SilentHost&) = delete;

    // What a call needs that lets the host in.
    const planfold::Pass pass = [] {
        std::optional<planfold::Pass> made;
        planfold::Lifetime::Last([&](planfold::Pass one) { made = one; });
        return *made;
    }();
    HeapStringManager strings;
    std::string loginId = "DEALER1", peerA = "BROKER", peerB = "BRANCH", active;
    planfold::Session session{
        [](const char*) -> planfold::AnyFunction { return nullptr; }, {loginId, peerA, peerB, active}, strings};
    SilentNotices notices;
    SilentControl control;
};

} // namespace bench
