// A window's own request control, held from construction to destruction.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

namespace planfold {

class RxLink {
public:
    // Each of the two exports that is missing is told once, here; no control is taken then.
    RxLink(const HostLookup& lookup, RxControlKind kind, CKeloRxNotifierBase* notifier, Notices& notices);
    RxLink(const RxLink&) = delete;
    RxLink& operator=(const RxLink&) = delete;
    ~RxLink();

    // Gives the control back.
    void Release();
    // Null when the host gave none.
    RxControl* Control() const { return m_control; }

private:
    sdk::fn::DestoryKeloRxCOntrol* m_destroy;
    RxControl* m_control = nullptr;
};

} // namespace planfold
