// What the plug-in tells the host about itself.
#pragma once

#include "plugin/messaging/HostCallbacks.h"
#include "sdk/CString.h"
#include "sdk/CStringArray.h"

#include <cstdint>

namespace planfold {

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
