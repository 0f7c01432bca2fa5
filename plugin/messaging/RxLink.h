// A window's own request control, held from construction to destruction.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

namespace planfold {

class RxLink {
public:
    // Each of the two exports that is missing is told once, here; no control is taken then. A window that takes
    // several controls tells it with the first alone: `notices` may be null.
    RxLink(const HostLookup& lookup, RxControlKind kind, CKeloRxNotifierBase* notifier, Notices* notices);
    RxLink(const RxLink&) = delete;
    RxLink& operator=(const RxLink&) = delete;
    ~RxLink();

    // Gives the control back; a stream's is stopped first.
    void Release();
    // Null when the host gave none.
    RxControl* Control() const { return m_control; }

private:
    RxControlKind m_kind;
    sdk::fn::DestoryKeloRxCOntrol* m_destroy;
    RxControl* m_control = nullptr;
};

} // namespace planfold
