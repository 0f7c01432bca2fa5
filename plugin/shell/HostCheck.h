// Whether this host can carry the plug-in and this user may use it. Asked at every menu pick, so that a
// right taken away counts at the next one.
#pragma once

#include "plugin/messaging/Session.h"

namespace planfold {

struct HostCheck {
    const char* refusal = nullptr; // the text for the user; null when all is well
    const VeskApp* app = nullptr;  // the host's; may be null even then
};

// Fills the peer identities on the way.
HostCheck CheckHost(Pass pass, const HostLookup& lookup, Identity identity, StringManager& strings);

// Null while the host has no main frame, or its record is too small to hold one.
HostWindow MainFrame(const VeskApp* app);

// Points for a dialog whose template has `templatePoints`, after the host's preference.
int PreferredPointSize(int templatePoints, std::intptr_t size, std::intptr_t variation);

} // namespace planfold
