// The controls through which a plug-in reaches the trading server, wherever that runs.
//
// Thread: one (the GUI thread). A notifier may pump again, and destroy any control, its own included.
#pragma once

#include "sdk/RxControl.h"

#include <cstddef>
#include <cstdint>

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
    // Delivers some of what waits; `nowMs` never goes back.
    // The number of notifier calls made by this call, nested pumps not counted.
    virtual std::size_t Pump(std::int64_t nowMs) = 0;
    // Requests and deliveries that still wait, a running query as one.
    virtual std::size_t Waiting() const = 0;
};

} // namespace vesk
