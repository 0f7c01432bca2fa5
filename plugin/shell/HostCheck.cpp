#include "plugin/shell/HostCheck.h"

#include "plugin/messaging/Rights.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr char kNotCompatible[] = "Initialisation failed. ZUP not compatible with Trader version.";

} // namespace

HostCheck CheckHost(Pass pass, const HostLookup& lookup, Identity identity, StringManager& strings) {
    const auto getApp = Find<sdk::fn::pu_get_exe_app>(lookup, "pu_get_exe_app");
    if (!getApp) return {"Exe is not compatible with ZUP"};
    const VeskApp* app = getApp(pass);

    const auto getPeerData = Find<sdk::fn::pu_get_peer_data>(lookup, "pu_get_peer_data");
    if (!getPeerData) return {kNotCompatible, app};
    CString peerIdA(identity.peerIdA, strings);
    CString peerIdB(identity.peerIdB, strings);
    CString other(strings);
    getPeerData(pass, &peerIdA, &peerIdB, &other);
    identity.peerIdA = peerIdA.View();
    identity.peerIdB = peerIdB.View();

    const auto enabled = AskRight(pass, lookup, strings, kPluginRight);
    if (!enabled) return {kNotCompatible, app};
    if (!*enabled) return {"You are not enabled on Planfold.", app};
    return {nullptr, app};
}

HostWindow MainFrame(const VeskApp* app) {
    constexpr std::uint32_t needed = offsetof(VeskApp, mainFrame) + sizeof(HostWindow);
    return app && app->size >= needed ? app->mainFrame : nullptr;
}

int PreferredPointSize(int templatePoints, std::intptr_t size, std::intptr_t variation) {
    constexpr std::intptr_t smallest = 6, largest = 36;
    // The host's numbers are held first, so that their sum cannot overflow.
    const std::intptr_t base = size > 0 ? std::min(size, largest) : templatePoints;
    return static_cast<int>(std::clamp(base + std::clamp(variation, -largest, largest), smallest, largest));
}

} // namespace planfold
