// What the plug-in tells the host about itself, and whether this host can carry it and this user may use it.
// That is asked at every menu pick, so that a right taken away counts at the next one.
#pragma once

#include "plugin/messaging/HostCallbacks.h"
#include "plugin/messaging/Session.h"
#include "sdk/CString.h"
#include "sdk/CStringArray.h"

#include <cstdint>

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

inline constexpr std::string_view kOrderEntryMenu = "Order Entry";
inline constexpr std::string_view kBasketMenu = "SIP Basket Entry";
inline constexpr std::string_view kBookMenu = "SIP Registration Book";
inline constexpr std::string_view kRestrictedDatesMenu = "SIP Set Restricted Date";

// Pointers that the host leaves null are passed over. The restricted dates entry is offered only when the
// host can be asked for the right and grants it.
void FillPluginInfo(Pass pass, const HostLookup& lookup, CString* name, CString* version, CStringArray* menu,
                    std::uint32_t* buildStamp, std::uint32_t* interfaceNumber, StringManager& ownStrings);
void FillRights(CString* root, CStringArray* names, StringManager& ownStrings);

} // namespace planfold
