// The process-wide names. Only entry points and window classes use them; all other code gets what it needs
// as a parameter.
#pragma once

#include "sdk/HostWindow.h"

#include <string>

namespace planfold {
class CPlanfoldControlBlock;
}

// From the first successful menu pick until ExitVeskPlugin.
extern planfold::CPlanfoldControlBlock* g_pControlBlock;
// The host executable, in which its callbacks are found; set when the library is attached.
extern HostInstance g_hHostModule;
// From InitVeskPlugin.
extern std::string g_strLoginId;
// From the host's peer data.
extern std::string g_strPeerIdA;
extern std::string g_strPeerIdB;
// The client made active in the host.
extern std::string g_strActiveClient;
