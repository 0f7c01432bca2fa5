// What a plug-in library (`*.zup`) exports and a host looks for, by these undecorated names.
//
// Thread:   all are called on the GUI thread.
// Owner:    strings and arrays passed by pointer stay the host's, and are filled; `menuEntry` is passed by
// value and
//           destroyed by the plug-in (CString.h).
// Lifetime: the host releases every string that the plug-in made before it unloads the library. After
// ExitVeskPlugin
//           only the loader calls into it.
// Failure:  as said at each; nothing throws across.
//
// The order of a session: load the library; GetVeskPluginInfo and GetOptionalVeskPluginInfo once, for menu and
// rights; InitVeskPlugin for every menu pick; AlertOn_ClientActivation and ApplyFontVarPreference when the user
// changes the active client or the font; ExitVeskPlugin once; unload.
//
// Example, a host that picks a menu entry:
//
//     auto* init = reinterpret_cast<sdk::plugin::InitVeskPlugin*>(GetProcAddress(library, "InitVeskPlugin"));
//     PassedString entry("Order Entry", strings);
//     init(nullptr, "DEALER01", 1, entry.Hand());
#pragma once

#include "sdk/CString.h"
#include "sdk/CStringArray.h"

namespace sdk::plugin {

// The plug-in's name and version for the host's dialogs, the entries of its menu (appended to `menu`), the day
// of its build as ddmmyyyy, and the number of the interface that it was built for. Always 1.
using GetVeskPluginInfo = int(CString* name, CString* version, CStringArray* menu, std::uint32_t* buildStamp,
                              std::uint32_t* interfaceNumber);
// The root of the plug-in's action rights and their names, which the host's administrators grant. `rightNames`
// is appended to; the last two pointers are not used.
using GetOptionalVeskPluginInfo = void(CString* rightsRoot, CStringArray* rightNames, void*, void*);
// The user picked this entry. `loginId` is the user's, zero-terminated; `loginMode` 0 to 2 chooses the identity
// that requests carry, anything else the login itself. A refusal is shown to the user in a message box, whose
// message loop may bring the next call.
using InitVeskPlugin = void(void* unused, const char* loginId, std::int32_t loginMode, CString* menuEntry);
// For window messages that a host wants to offer; the plug-in takes none. Always 0.
using ProcessVeskPluginMsg = int(void* message);
// Once, at shutdown: takes all windows away and gives every control back. The result has no meaning.
using ExitVeskPlugin = std::intptr_t();
// This client is active now; empty for none. 0 before the first successful menu pick, else 1.
using AlertOn_ClientActivation = int(CString* client);
// The user changed the font: the plug-in asks pu_get_FontVariation, handing the last two pointers on, and lays
// its windows out anew.
using ApplyFontVarPreference = void(void*, void*, void*, void*);
// The version of the GUI library that hosts ask for: 0x36020 for 36.20.
using GetBCGCBProVersion = int();
// 1 to 12 for "Jan" to "Dec"; 0 for a null pointer or any other text.
using vesku_get_formatted_month_in_number = int(const char* month);

} // namespace sdk::plugin
