#include "plugin/messaging/RxLink.h"

#include <utility>

namespace planfold {

namespace {

template <class Function>
Function* FindOrTell(const HostLookup& lookup, const char* name, Notices* notices) {
    // These two only connect: they let nobody in.
    auto* const found = reinterpret_cast<Function*>(lookup(name));
    if (!found && notices) notices->ShowLast("Exe is not compatible with the plugin");
    return found;
}

} // namespace

RxLink::RxLink(const HostLookup& lookup, RxControlKind kind, CKeloRxNotifierBase* notifier, Notices* notices)
    : m_kind(kind), m_destroy(nullptr) {
    const auto get = FindOrTell<sdk::fn::GetKeloRxControl>(lookup, "GetKeloRxControl", notices);
    m_destroy = FindOrTell<sdk::fn::DestoryKeloRxCOntrol>(lookup, "DestoryKeloRxCOntrol", notices);
    // What cannot be given back is not taken.
    if (get && m_destroy) m_control = get(kind, notifier);
}

RxLink::~RxLink() {
    Release();
}

void RxLink::Release() {
    RxControl* control = std::exchange(m_control, nullptr);
    if (!control) return;
    if (m_kind != kRxRequests) control->Stop(0);
    m_destroy(control);
}

} // namespace planfold
