// The process-wide names. Only entry points and window classes use them; all other code gets what it needs
// as a parameter.
#pragma once

#include "sdk/HostWindow.h"

#include <string>

namespace planfold {
class CPlanfoldControlBlock;
}

// Set from the first successful menu pick until ExitVeskPlugin.
inline planfold::CPlanfoldControlBlock* g_pControlBlock = nullptr;
// The host executable, in which its callbacks are found; set when the library is attached.
inline HostInstance g_hHostModule = nullptr;
// Set by InitVeskPlugin.
inline std::string g_strLoginId;
// Set from the host's peer data.
inline std::string g_strPeerIdA;
inline std::string g_strPeerIdB;
// The client made active in the host.
inline std::string g_strActiveClient;
