// The controls through which a plug-in reaches the trading server, wherever that runs.
//
// Thread: one (the GUI thread). A notifier may pump again, and destroy any control, its own included.
#pragma once

#include "host/server/RxHub.h"

namespace vesk {

class ControlHub {
public:
    ControlHub() = default;
    ControlHub(const ControlHub&) = delete;
    ControlHub& operator=(const ControlHub&) = delete;
    virtual ~ControlHub() = default;

    // `kind` as RxControlKind. Null for an unknown kind or without a notifier.
    virtual RxControl* Get(int kind, CKeloRxNotifierBase* notifier) = 0;
    virtual void Destroy(RxControl* control) = 0;
    virtual std::size_t LiveControls() const = 0;
    // The number of notifier calls made by this call, nested pumps not counted.
    virtual std::size_t Pump(std::int64_t nowMs) = 0;
    // Requests and deliveries that still wait.
    virtual std::size_t Waiting() const = 0;
};

// Of a server in the same process.
class EmbeddedHub final : public ControlHub {
public:
    EmbeddedHub(Server& server, UserIdentity user) : m_hub(server, std::move(user)) {}

    RxControl* Get(int kind, CKeloRxNotifierBase* notifier) override { return m_hub.Get(kind, notifier); }
    void Destroy(RxControl* control) override { m_hub.Destroy(control); }
    std::size_t LiveControls() const override { return m_hub.LiveControls(); }
    std::size_t Pump(std::int64_t nowMs) override { return m_hub.Pump(nowMs); }
    std::size_t Waiting() const override { return m_hub.Waiting(); }

private:
    RxHub m_hub;
};

} // namespace vesk
