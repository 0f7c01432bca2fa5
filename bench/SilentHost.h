// A host that does nothing and keeps nothing.
#pragma once

#include "bench/Rounds.h"
#include "host/connectvesk/QmxHost.h"
#include "plugin/messaging/Session.h"
#include "plugin/record/OrderRecord.h"

#include "sdk/HeapStringManager.h"
#include "sdk/RxControl.h"
#include <cstdio>
#include <unistd.h>

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

// A host without a folder for the user keeps no record.
struct NoRecord final : planfold::RecordFiles {
    bool HasFolder() const override { return false; }
    std::optional<std::string> Read(const planfold::LocalDateTime&) override { return std::nullopt; }
    bool Append(const planfold::LocalDateTime&, std::string_view, bool, std::size_t&) override { return false; }
};

// One on this machine's disk, flushed as the plug-in wishes.
struct DiskRecord final : planfold::RecordFiles {
    DiskRecord() : file(std::tmpfile()) {}
    ~DiskRecord() { std::fclose(file); }
    bool HasFolder() const override { return true; }
    std::optional<std::string> Read(const planfold::LocalDateTime&) override { return std::string(); }
    bool Append(const planfold::LocalDateTime&, std::string_view lines, bool flush, std::size_t&) override {
        return std::fwrite(lines.data(), 1, lines.size(), file) == lines.size() && std::fflush(file) == 0
               && (!flush || fdatasync(fileno(file)) == 0);
    }
    std::FILE* file;
};

// A dealer's session with it, the message's handles open.
struct SilentHost {
    explicit SilentHost(planfold::RecordFiles& itsFiles) : files(itsFiles) {
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
    planfold::RecordFiles& files;
    planfold::OrderRecord record{files, [] { return planfold::LocalDateTime{2027, 1, 31, 9, 15, 0}; }};
    planfold::Session session{[](const char*) -> planfold::AnyFunction { return nullptr; },
                              {loginId, peerA, peerB, active},
                              strings,
                              record};
    SilentNotices notices;
    SilentControl control;
};

} // namespace bench
