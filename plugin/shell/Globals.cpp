#include "plugin/shell/Globals.h"

planfold::CPlanfoldControlBlock* g_pControlBlock = nullptr;
HostInstance g_hHostModule = nullptr;
std::string g_strLoginId;
std::string g_strPeerIdA;
std::string g_strPeerIdB;
std::string g_strActiveClient;
