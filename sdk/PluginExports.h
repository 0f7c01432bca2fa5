// What a plug-in library (`*.zup`) exports and a host looks for, by these undecorated names.
//
// Thread: the GUI thread. Owner: strings and arrays passed by pointer stay the host's; `menuEntry` is passed
// by value and destroyed by the plug-in. Failure: as said at each.
#pragma once

#include "sdk/CString.h"
#include "sdk/CStringArray.h"

namespace sdk::plugin {

// Always 1. `menu` is appended to.
using GetVeskPluginInfo = int(CString* name, CString* version, CStringArray* menu, std::uint32_t* buildStamp,
                              std::uint32_t* interfaceNumber);
// `rightNames` is appended to.
using GetOptionalVeskPluginInfo = void(CString* rightsRoot, CStringArray* rightNames, void*, void*);
// One call a menu pick. Failures are told to the user in a message box.
using InitVeskPlugin = void(void* unused, const char* loginId, std::int32_t loginMode, CString* menuEntry);
// Always 0.
using ProcessVeskPluginMsg = int(void* message);
// Once, at shutdown. The result has no meaning.
using ExitVeskPlugin = std::intptr_t();
// 0 before the first successful menu pick, else 1.
using AlertOn_ClientActivation = int(CString* client);
using ApplyFontVarPreference = void(void*, void*, void*, void*);
using GetBCGCBProVersion = int();
// 1 to 12 for "Jan" to "Dec"; 0 for a null pointer or any other text.
using vesku_get_formatted_month_in_number = int(const char* month);

} // namespace sdk::plugin
