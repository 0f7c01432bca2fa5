// The trading server that the terminal works with, wherever it runs, and the hub through which the plug-ins
// reach it.
//
// Thread: one (the GUI thread).
#pragma once

#include "host/server/ControlHub.h"
#include "host/server/ServerCommands.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

struct LinkStatus {
    std::string text;
    bool isTrouble = false;
    bool operator==(const LinkStatus&) const = default;
};

// Called from Pump; none of them may pump.
struct LinkEvents {
    std::function<void(const std::string& line)> say; // for the log
    std::function<void()> restrictedDays;             // may have changed
};

class ServerLink {
public:
    ServerLink(const ServerLink&) = delete;
    ServerLink& operator=(const ServerLink&) = delete;
    virtual ~ServerLink() = default;

    RxControl* GetControl(int kind, CKeloRxNotifierBase* notifier) {
        return m_hub ? m_hub->Get(kind, notifier) : nullptr;
    }
    void DestroyControl(RxControl* control) {
        if (m_hub) m_hub->Destroy(control);
    }
    std::size_t LiveControls() const { return m_hub ? m_hub->LiveControls() : 0; }
    // Requests and deliveries.
    std::size_t Waiting() const { return m_hub ? m_hub->Waiting() : 0; }

    // Does some of what there is to do, and delivers.
    virtual void Pump() = 0;
    // Everything that is due has been executed, and everything is delivered.
    virtual bool IsIdle() const = 0;
    virtual LinkStatus Status() const = 0;
    // Of the server's clock, as 05-Mar-2027; empty while it is not known.
    virtual std::string Date() const = 0;
    // Those that are restricted, each as yyyymmdd.
    virtual std::vector<std::uint32_t> RestrictedDates() const = 0;
    // Number; empty without any, or when only the server knows.
    virtual std::string LatestRegistration() const { return {}; }
    // A line as ServerCommands takes. `told` is called once: now, or from Pump.
    virtual void Command(const std::string& line, std::function<void(const Told&)> told) = 0;

protected:
    ServerLink() = default;

    std::unique_ptr<ControlHub> m_hub; // null: there is no server, and no control
};

} // namespace vesk
