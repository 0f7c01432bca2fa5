#include "plugin/shell/HostCheck.h"

#include "planfold_version.h"
#include "plugin/messaging/HostCallbacks.h"

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
    constexpr std::uint32_t needed = offsetof(VeskApp, mainFrame) + sizeof(void*);
    return app && app->size >= needed ? app->mainFrame : nullptr;
}

int PreferredPointSize(int templatePoints, std::intptr_t size, std::intptr_t variation) {
    constexpr std::intptr_t smallest = 6, largest = 36;
    // The host's numbers are held first, so that their sum cannot overflow.
    const std::intptr_t base = size > 0 ? std::min(size, largest) : templatePoints;
    return static_cast<int>(std::clamp(base + std::clamp(variation, -largest, largest), smallest, largest));
}

namespace {

constexpr std::string_view kName = "Planfold";
constexpr std::string_view kVersion = PLANFOLD_VERSION;
constexpr std::uint32_t kBuildStamp = 29032010; // DDMMYYYY
constexpr std::uint32_t kInterfaceNumber = 58;

// The menu's entries, and the right without which one is not offered.
struct MenuRow {
    std::string_view entry;
    std::string_view right{};
};
constexpr MenuRow kMenu[] = {
    {kOrderEntryMenu},
    {kBasketMenu},
    {kBookMenu},
    {kRestrictedDatesMenu, kRestrictedDatesRight},
};

// New elements live in the host's own strings, so that they may outlive this library.
StringManager& ManagerFor(const CString* sibling, StringManager& ownStrings) {
    return sibling ? sibling->Manager() : ownStrings;
}

} // namespace

void FillPluginInfo(Pass pass, const HostLookup& lookup, CString* name, CString* version, CStringArray* menu,
                    std::uint32_t* buildStamp, std::uint32_t* interfaceNumber, StringManager& ownStrings) {
    StringManager& strings = ManagerFor(name ? name : version, ownStrings);
    if (name) *name = kName;
    if (version) *version = kVersion;
    if (menu) {
        for (const auto& [entry, right] : kMenu)
            if (right.empty() || AskRight(pass, lookup, strings, right).value_or(false))
                menu->Append(entry, strings);
    }
    if (buildStamp) *buildStamp = kBuildStamp;
    if (interfaceNumber) *interfaceNumber = kInterfaceNumber;
}

void FillRights(CString* root, CStringArray* names, StringManager& ownStrings) {
    StringManager& strings = ManagerFor(root, ownStrings);
    if (root) *root = kRightsRoot;
    if (!names) return;
    for (const std::string_view right : {kPluginRight, kCustomRight, kRestrictedDatesRight})
        names->Append(right, strings);
}

} // namespace planfold
